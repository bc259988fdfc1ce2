#pragma once

#include "gui/ControlPanelPage.h"

#include <QList>
#include <QString>
#include <functional>
#include <vector>

class QBoxLayout;
class QCheckBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QRadioButton;
class SettingsWrapper;

// A panel whose controls each stand for one stored value. Pages describe
// their controls as tables (control name, caption, the setting's get and
// set); the load shows every value and the save stores every control, so a
// control is bound in exactly one place.
class SettingsPanelPage : public ControlPanelPage {
    Q_OBJECT
public:
    // The caption stands above the page's controls.
    explicit SettingsPanelPage(const QString& caption, QWidget* parent = nullptr);

    void load() override;
    bool save() override;

    // A check box over a Boolean setting.
    struct Check {
        const char* control;
        const char* caption;
        bool (SettingsWrapper::*get)() const;
        void (SettingsWrapper::*set)(bool);
    };
    // A text box over a text setting.
    struct Text {
        const char* control;
        QString (SettingsWrapper::*get)() const;
        void (SettingsWrapper::*set)(const QString&);
    };
    // One option button of a group.
    struct Option {
        const char* control;
        const char* caption;
    };

protected:
    // Where the page's controls go, top to bottom.
    QBoxLayout* body() const { return m_body; }
    QLabel* addNote(const QString& text, QBoxLayout* into = nullptr);
    QList<QCheckBox*> addChecks(std::initializer_list<Check> rows, QBoxLayout* into = nullptr);
    QLineEdit* addText(const Text& row, QBoxLayout* into);
    // A text box for a path with its find button (the control's name and
    // "find"), which asks for a folder and puts it, followed by the appended
    // file name, into the box.
    QLineEdit* addPath(const Text& row, const QString& browseTitle, const QString& appended,
                       QBoxLayout* into);
    // Exclusive options, for the page to place; get gives the index of the
    // chosen one (-1 for none) and set takes it (-1 when none is chosen).
    QList<QRadioButton*> addOptions(std::initializer_list<Option> rows, std::function<int()> get,
                                    std::function<void(int)> set);
    // A text box over a file of the settings folder, shown and stored one
    // line a line; store says whether the file was written, and a failure
    // is told to the user.
    QPlainTextEdit* addLines(const char* control, const QString& file,
                             std::function<QStringList()> show,
                             std::function<bool(const QStringList&)> store);
    // The entries of a list held in memory, without the empty slot that an
    // empty list keeps.
    static QStringList entriesOf(QStringList list);
    // Clearing the master disables the companions and leaves their ticks
    // alone, on a click and on every load.
    void makeMaster(QCheckBox* master, const QWidgetList& companions);
    // Anything else the load shows or the save stores; save says whether it
    // could.
    void bind(std::function<void()> load, std::function<bool()> save);

private:
    void warnNotSaved(const QString& file);

    struct Binding {
        std::function<void()> load;
        std::function<bool()> save;
    };
    std::vector<Binding> m_bindings;
    std::vector<std::function<void()>> m_afterLoad;
    QBoxLayout* m_body = nullptr;
};
