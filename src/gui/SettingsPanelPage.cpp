#include "gui/SettingsPanelPage.h"

#include "config/SettingsWrapper.h"
#include "gui/BrowseFolder.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace {

SettingsWrapper& settings() {
    return SettingsWrapper::instance();
}

} // namespace

SettingsPanelPage::SettingsPanelPage(const QString& caption, QWidget* parent)
    : ControlPanelPage(parent) {
    m_body = new QVBoxLayout(this);
    m_body->addWidget(new QLabel(caption));
}

void SettingsPanelPage::load() {
    for (const Binding& binding : m_bindings)
        binding.load();
    for (const auto& refresh : m_afterLoad)
        refresh();
}

bool SettingsPanelPage::save() {
    bool saved = true;
    for (const Binding& binding : m_bindings)
        saved = binding.save() && saved;
    return saved;
}

void SettingsPanelPage::bind(std::function<void()> load, std::function<bool()> save) {
    m_bindings.push_back({std::move(load), std::move(save)});
}

QLabel* SettingsPanelPage::addNote(const QString& text, QBoxLayout* into) {
    auto* note = new QLabel(text);
    note->setWordWrap(true);
    (into ? into : m_body)->addWidget(note);
    return note;
}

QList<QCheckBox*> SettingsPanelPage::addChecks(std::initializer_list<Check> rows,
                                               QBoxLayout* into) {
    QList<QCheckBox*> boxes;
    for (const Check& row : rows) {
        auto* box = new QCheckBox(QString::fromUtf8(row.caption));
        box->setObjectName(QLatin1String(row.control));
        (into ? into : m_body)->addWidget(box);
        bind([box, get = row.get] { box->setChecked((settings().*get)()); },
             [box, set = row.set] {
                 (settings().*set)(box->isChecked());
                 return true;
             });
        boxes.append(box);
    }
    return boxes;
}

QLineEdit* SettingsPanelPage::addText(const Text& row, QBoxLayout* into) {
    auto* edit = new QLineEdit;
    edit->setObjectName(QLatin1String(row.control));
    (into ? into : m_body)->addWidget(edit);
    bind([edit, get = row.get] { edit->setText((settings().*get)()); },
         [edit, set = row.set] {
             (settings().*set)(edit->text());
             return true;
         });
    return edit;
}

QLineEdit* SettingsPanelPage::addPath(const Text& row, const QString& browseTitle,
                                      const QString& appended, QBoxLayout* into) {
    auto* line = new QHBoxLayout;
    QLineEdit* edit = addText(row, line);
    auto* find = new QPushButton(QStringLiteral("Find..."));
    find->setObjectName(QLatin1String(row.control) + QStringLiteral("find"));
    line->addWidget(find);
    (into ? into : m_body)->addLayout(line);
    connect(find, &QPushButton::clicked, this, [this, edit, browseTitle, appended] {
        const QString folder = BrowseFolder(this, browseTitle);
        if (!folder.isEmpty()) edit->setText(folder + appended);
    });
    return edit;
}

QList<QRadioButton*> SettingsPanelPage::addOptions(std::initializer_list<Option> rows,
                                                   std::function<int()> get,
                                                   std::function<void(int)> set) {
    auto* group = new QButtonGroup(this);
    QList<QRadioButton*> buttons;
    for (const Option& row : rows) {
        auto* button = new QRadioButton(QString::fromUtf8(row.caption));
        button->setObjectName(QLatin1String(row.control));
        group->addButton(button, int(buttons.size()));
        buttons.append(button);
    }
    bind(
        [group, get = std::move(get)] {
            const int chosen = get();
            if (QAbstractButton* button = group->button(chosen)) {
                button->setChecked(true);
                return;
            }
            // An exclusive group keeps one ticked; none is shown only by
            // lifting the rule for a moment.
            group->setExclusive(false);
            for (QAbstractButton* button : group->buttons())
                button->setChecked(false);
            group->setExclusive(true);
        },
        [group, set = std::move(set)] {
            set(group->checkedId());
            return true;
        });
    return buttons;
}

QPlainTextEdit* SettingsPanelPage::addLines(const char* control, const QString& file,
                                            std::function<QStringList()> show,
                                            std::function<bool(const QStringList&)> store) {
    auto* edit = new QPlainTextEdit;
    edit->setObjectName(QLatin1String(control));
    edit->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_body->addWidget(edit, 1);
    bind(
        [edit, show = std::move(show)] {
            const QStringList lines = show();
            edit->setPlainText(lines.isEmpty() ? QString() : lines.join(u'\n') + u'\n');
        },
        [this, edit, file, store = std::move(store)] {
            QStringList lines = edit->toPlainText().split(u'\n');
            // The line end of the last line leaves nothing behind it.
            if (lines.last().isEmpty()) lines.removeLast();
            for (QString& line : lines) {
                if (line.endsWith(u'\r')) line.chop(1);
            }
            if (store(lines)) return true;
            warnNotSaved(file);
            return false;
        });
    return edit;
}

QStringList SettingsPanelPage::entriesOf(QStringList list) {
    list.removeAll(QString());
    return list;
}

void SettingsPanelPage::makeMaster(QCheckBox* master, const QWidgetList& companions) {
    const auto follow = [master, companions] {
        for (QWidget* companion : companions)
            companion->setEnabled(master->isChecked());
    };
    connect(master, &QCheckBox::toggled, this, follow);
    m_afterLoad.push_back(follow);
}

void SettingsPanelPage::warnNotSaved(const QString& file) {
    auto* box = new QMessageBox(QMessageBox::Warning, QStringLiteral("Not saved"),
                                QStringLiteral("Could not write %1 in the settings folder; "
                                               "the panel still shows what you typed.")
                                    .arg(file),
                                QMessageBox::Ok, this);
    box->setObjectName(QStringLiteral("msgNotSaved"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}
