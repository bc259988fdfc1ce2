#pragma once

#include <QRect>
#include <QStringList>
#include <QWidget>
#include <vector>

class QMenu;
class QToolButton;

// The tab strip: the console's tab, one tab per loaded profile in slot order,
// and at the right the add, overflow and close buttons. Tabs that don't fit
// go to the overflow menu instead. The strip only shows the slots; what a
// click does is the window's business.
class ProfileTabBar : public QWidget {
    Q_OBJECT
public:
    explicit ProfileTabBar(QWidget* parent = nullptr);

    // The strip's timer: rebuilds the tabs when the width or the number of
    // loaded profiles changed since the last run, and otherwise only sets
    // their pictures and tooltips.
    void tmrUpdate_Timer();
    // Builds the tabs again at once, for a change the timer doesn't look for:
    // a loaded profile took a new name.
    void rebuildNow();

    // Profiles that have a tab, in order, and those in the overflow menu.
    QStringList tabProfiles() const;
    QStringList overflowProfiles() const { return m_overflow; }
    // The rows of the overflow menu as shown ("-" when empty).
    QStringList profilesListRows() const;
    // Where the tab of a profile stands; empty without a tab. The console's
    // tab is the empty name.
    QRect tabRect(const QString& profile) const;
    // The picture and tooltip a tab shows; the console's is the empty name.
    QString tabPicture(const QString& profile) const;
    QString tabTooltip(const QString& profile) const;

    QToolButton* guiProfileAdd() const { return m_add; }
    QToolButton* guiProfileDrop() const { return m_drop; }
    QToolButton* guiCloseTab() const { return m_close; }
    QMenu* mnuProfilesList() const { return m_profilesList; }

    QSize sizeHint() const override;

Q_SIGNALS:
    // A mouse button went up over a tab; slot 0 is the console.
    void tabReleased(int slot, Qt::MouseButton button, const QPoint& globalPos);
    void closeClicked();
    // A row of the overflow menu was chosen.
    void overflowChosen(const QString& profile);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    struct Tab {
        int slot = 0;
        QString profile;
        QRect rect;
        QString picture;
        QString tooltip;
    };
    void rebuild();
    void refreshStates();
    void fillProfilesList();
    void placeButtons();
    int buttonsWidth() const;
    const Tab* tabAt(const QPoint& pos) const;
    const Tab* findTab(const QString& profile) const;

    Tab m_console;
    std::vector<Tab> m_tabs;
    QStringList m_overflow;
    int m_builtWidth = -1;
    int m_builtCount = -1;
    int m_hoveredSlot = -1;
    QToolButton* m_add;
    QToolButton* m_drop;
    QToolButton* m_close;
    QMenu* m_profilesList;
};
