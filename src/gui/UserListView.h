#pragma once

#include "commands/AliasLabelEdit.h"

#include <QTimer>
#include <QTreeView>

class ListModel;
class QLineEdit;
class QMenu;

// One of the side lists of the active slot: the channel's users, the friends
// or the clan. Items show their icon, name in their colour, and the ping
// with its bars. The user list adds the tooltip of a user, the keys and the
// context menu; what they ask for is handed to the window as signals.
class UserListView : public QTreeView {
    Q_OBJECT
public:
    enum class Kind { Users, Friends, Clan };

    explicit UserListView(Kind kind, QWidget* parent = nullptr);

    // Shows the list of this kind of a slot.
    void showSlot(int index);
    int slot() const { return m_slot; }
    ListModel* list() const { return m_list; }

    // The raw name of the selected item; empty with none.
    QString selectedUser() const;
    // The tooltip for the item of a row (0-based) as it is shown: the title
    // line, then the user's lines; empty when the user isn't in the channel.
    QString tooltipFor(int row) const;
    // How often a tooltip was built, for the hover rule.
    int tooltipBuilds() const { return m_tooltipBuilds; }
    // The context menu as it would pop up for the selected item; null with
    // no selection. Owned by the view.
    QMenu* contextMenu();
    // Starts editing the selected user's name in place (F2, or a click on the
    // chosen name): what is typed becomes the user's alias. Returns the
    // editor, null with no selection.
    QLineEdit* renameSelected();

    // The control panel's rows that the menu opens.
    static constexpr int AliasesRow = 11;
    static constexpr int GroupsRow = 15;

Q_SIGNALS:
    // Space, a double click or "Whisper" on a user.
    void whisperRequested(const QString& username);
    // A line for the slot's send road: server commands about a user.
    void lineRequested(int slot, const QString& line);
    // "Edit Aliases" or "Edit Groups": the control panel, opened on that row.
    void controlPanelRequested(int row);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void hover(const QPoint& pos);
    void forgetHover();
    // The user's name as the server takes it from this profile.
    QString serverName(const QString& username) const;
    void configureColumns();
    // The Profile item and Enter: the selected user's profile.
    static void lookupProfile(int slot, const QString& name);
    enum class Membership { Alias, Group };
    void addMembershipMenu(const QString& caption, const QString& name, Membership kind);
    void addBlockAction(const QString& name);
    void endRename(bool commit);

    Kind m_kind;
    int m_slot = 0;
    ListModel* m_list = nullptr;
    QMenu* m_menu = nullptr;
    int m_tooltipBuilds = 0;
    QLineEdit* m_renameEditor = nullptr;
    bool m_renameOnRelease = false;
    QTimer m_renameClick;
    AliasLabelEdit m_rename;
};
