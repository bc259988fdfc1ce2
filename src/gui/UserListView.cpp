#include "gui/UserListView.h"

#include "chat/BotElement.h"
#include "commands/AliasesAndGroups.h"
#include "commands/BlocksAndFilters.h"
#include "gui/ClanMemberMenu.h"
#include "gui/IconPainter.h"
#include "platform/ListModel.h"
#include "presentation/UserColors.h"
#include "presentation/UserTooltip.h"
#include "session/SlotTable.h"
#include "social/ClanPacket.h"
#include "statistics/UserNames.h"

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QPointer>
#include <QStyledItemDelegate>
#include <QToolTip>

namespace {

constexpr int kIcon = 16;

// Icon, then the text in the item's colour; the ping column has its number
// at the right with the bars behind it.
class ListItemDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        QStyleOptionViewItem base = option;
        initStyleOption(&base, index);
        base.text.clear();
        base.icon = QIcon();
        const QWidget* widget = option.widget;
        QStyle* style = widget ? widget->style() : QApplication::style();
        style->drawControl(QStyle::CE_ItemViewItem, &base, painter, widget);

        const QString text = index.data(Qt::DisplayRole).toString();
        const QString icon = index.data(ListModel::IconKeyRole).toString();
        const QColor color = option.state & QStyle::State_Selected
                                 ? option.palette.highlightedText().color()
                                 : IconPainter::fromBgr(index.data(ListModel::ColorRole).toUInt());
        const QRect r = option.rect.adjusted(3, 0, -3, 0);
        const QRect iconRect(0, r.center().y() - kIcon / 2 + 1, kIcon, kIcon);
        painter->save();
        painter->setPen(color);
        if (index.column() == 0) {
            if (!icon.isEmpty())
                IconPainter::paint(*painter, iconRect.translated(r.left(), 0), icon);
            const QRect textRect = r.adjusted(kIcon + 5, 0, 0, 0);
            painter->drawText(
                textRect, Qt::AlignVCenter | Qt::AlignLeft,
                option.fontMetrics.elidedText(text, Qt::ElideRight, textRect.width()));
        } else {
            const QRect textRect = r.adjusted(0, 0, -(kIcon + 4), 0);
            painter->drawText(textRect, Qt::AlignVCenter | Qt::AlignRight, text);
            if (!icon.isEmpty())
                IconPainter::paint(*painter, iconRect.translated(r.right() - kIcon + 1, 0), icon);
        }
        painter->restore();
    }

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        QSize size = QStyledItemDelegate::sizeHint(option, index);
        size.setHeight(std::max(kIcon + 4, option.fontMetrics.height() + 4));
        return size;
    }
};

// Games whose statistics the server keeps, as the menu names them.
struct StatsGame {
    const char* caption;
    const char* product;
};
constexpr StatsGame kStatsGames[] = {
    {"StarCraft", "STAR"},
    {"StarCraft: BroodWar", "SEXP"},
    {"StarCraft: Japanese", "JSTR"},
    {"StarCraft: ShareWare", "SSHR"},
    {"WarCraft II", "W2BN"},
    {"WarCraft III: Reign of Chaos", "WAR3"},
    {"WarCraft III: Frozen Throne", "W3XP"},
};

} // namespace

UserListView::UserListView(Kind kind, QWidget* parent) : QTreeView(parent), m_kind(kind) {
    static const char* const names[] = {"lvUsers", "lvFriends", "lvClan"};
    setObjectName(QString::fromLatin1(names[int(kind)]));
    setRootIsDecorated(false);
    setItemsExpandable(false);
    setUniformRowHeights(true);
    setHeaderHidden(true);
    setAllColumnsShowFocus(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setMouseTracking(true);
    viewport()->setMouseTracking(true);
    setItemDelegate(new ListItemDelegate(this));
    m_renameClick.setSingleShot(true);
    connect(&m_renameClick, &QTimer::timeout, this, [this] { renameSelected(); });
    showSlot(0);
}

void UserListView::showSlot(int index) {
    forgetHover();
    m_slot = index;
    switch (m_kind) {
    case Kind::Users:
        m_list = &lvUsers(index);
        break;
    case Kind::Friends:
        m_list = &lvFriends(index);
        break;
    case Kind::Clan:
        m_list = &lvClan(index);
        break;
    }
    if (model() != m_list) {
        setModel(m_list);
        configureColumns();
    }
}

void UserListView::configureColumns() {
    QHeaderView* head = header();
    head->setStretchLastSection(false);
    head->setSectionResizeMode(0, QHeaderView::Stretch);
    head->setSectionResizeMode(1, QHeaderView::Fixed);
    head->resizeSection(1, fontMetrics().horizontalAdvance(QStringLiteral("00000")) + kIcon + 12);
}

QString UserListView::selectedUser() const {
    const QModelIndexList rows =
        selectionModel() ? selectionModel()->selectedRows() : QModelIndexList();
    if (rows.isEmpty()) return {};
    return rows.first().data(ListModel::TagRole).toString();
}

QString UserListView::serverName(const QString& username) const {
    return ConvertUsername(username, true, m_slot);
}

QString UserListView::tooltipFor(int row) const {
    if (!m_list || row < 0 || row >= m_list->count()) return {};
    const auto tip = BuildUserTooltip(m_slot, m_list->item(row + 1).tag);
    if (!tip) return {};
    return (QStringList{tip->title} + tip->lines).join(u'\n');
}

// The tooltip is built when the pointer comes onto another item, and shown
// at once; staying on the same item builds nothing.
void UserListView::hover(const QPoint& pos) {
    if (m_kind != Kind::Users) return;
    const QModelIndex index = indexAt(pos);
    BotElement& bot = Bots(m_slot);
    if (!index.isValid()) {
        if (bot.HoveredItem != 0) QToolTip::hideText();
        forgetHover();
        return;
    }
    const int item = index.row() + 1;
    if (item == bot.HoveredItem) return;
    bot.HoveredItem = item;
    bot.HoveredIcon = 0;
    ++m_tooltipBuilds;
    const QString text = tooltipFor(index.row());
    if (text.isEmpty()) {
        QToolTip::hideText();
        return;
    }
    // The title line in bold over the user's lines.
    QStringList lines = text.split(u'\n');
    QString html =
        QStringLiteral("<b>") + lines.takeFirst().toHtmlEscaped() + QStringLiteral("</b>");
    for (const QString& line : lines)
        html += QStringLiteral("<br>") + line.toHtmlEscaped().replace(u' ', QChar::Nbsp);
    const QRect itemRect = visualRect(index).united(visualRect(index.siblingAtColumn(1)));
    QToolTip::showText(viewport()->mapToGlobal(pos), html, viewport(), itemRect);
}

void UserListView::forgetHover() {
    if (m_slot <= SlotTable::instance().highestIndex()) {
        Bots(m_slot).HoveredItem = 0;
        Bots(m_slot).HoveredIcon = 0;
    }
}

void UserListView::lookupProfile(int slot, const QString& name) {
    Bots(slot).Connection.Output_ProfileRequest(slot, name);
}

QMenu* UserListView::contextMenu() {
    const QString user = selectedUser();
    if (user.isEmpty() || m_kind == Kind::Friends) return nullptr;
    // Made anew each time: the captions and the user change.
    delete m_menu;
    if (m_kind == Kind::Clan) return m_menu = ClanMemberMenu(m_slot, user, this);
    m_menu = new QMenu(this);
    m_menu->setObjectName(QStringLiteral("mnuRclick"));
    const int slot = m_slot;
    const QString name = serverName(user);
    const auto command = [this, slot, name](const QString& word) {
        return [this, slot, name, word] { Q_EMIT lineRequested(slot, word + name); };
    };
    QAction* whisper = m_menu->addAction(QStringLiteral("Whisper"), this,
                                         [this, user] { Q_EMIT whisperRequested(user); });
    whisper->setObjectName(QStringLiteral("mnuWhisperUser"));
    m_menu->setDefaultAction(whisper);
    const int position = Bots(slot).UserFind(user);
    const bool squelched = position > 0 && (Bots(slot).user(position).Flags & 0x20);
    m_menu
        ->addAction(
            squelched ? QStringLiteral("Unsquelch") : QStringLiteral("Squelch"),
            command(squelched ? QStringLiteral("/unsquelch ") : QStringLiteral("/squelch ")))
        ->setObjectName(QStringLiteral("mnuSquelchUser"));
    addBlockAction(ConvertUsername(user, false, -1));
    m_menu->addSeparator();
    m_menu->addAction(QStringLiteral("Ban"), command(QStringLiteral("/ban ")))
        ->setObjectName(QStringLiteral("mnuBanUser"));
    m_menu->addAction(QStringLiteral("Designate"), command(QStringLiteral("/designate ")))
        ->setObjectName(QStringLiteral("mnuDesignateUser"));
    m_menu->addSeparator();
    QMenu* stats = m_menu->addMenu(QStringLiteral("Stats"));
    stats->setObjectName(QStringLiteral("mnuStatsUser"));
    for (const StatsGame& game : kStatsGames) {
        const QString product = QString::fromLatin1(game.product);
        stats->addAction(QString::fromLatin1(game.caption), this, [this, slot, name, product] {
            Q_EMIT lineRequested(slot, QStringLiteral("/stats ") + name + u' ' + product);
        });
    }
    m_menu->addAction(QStringLiteral("Whois"), command(QStringLiteral("/whois ")))
        ->setObjectName(QStringLiteral("mnuWhois"));
    m_menu->addAction(QStringLiteral("Profile"), this, [slot, name] { lookupProfile(slot, name); })
        ->setObjectName(QStringLiteral("mnuProfileUser"));
    m_menu
        ->addAction(QStringLiteral("Invite to clan"), this,
                    [slot, user] { ClanPacket::InviteUser(slot, user); })
        ->setObjectName(QStringLiteral("mnuInviteUser"));
    m_menu->addSeparator();
    addMembershipMenu(QStringLiteral("Alias"), ConvertUsername(user, false, -1), Membership::Alias);
    addMembershipMenu(QStringLiteral("Group"), ConvertUsername(user, false, -1), Membership::Group);
    return m_menu;
}

// The blocked list is asked by the user's plain name; the block itself goes
// the road of the BLOCK and UNBLOCK commands, with their refusals and replies.
void UserListView::addBlockAction(const QString& name) {
    const bool blocked = IsBlocked(name);
    const int slot = m_slot;
    const QString line = (blocked ? QStringLiteral("/unblock ") : QStringLiteral("/block ")) + name;
    m_menu
        ->addAction(blocked ? QStringLiteral("Unblock") : QStringLiteral("Block"), this,
                    [this, slot, line] {
                        Q_EMIT lineRequested(slot, line);
                        RecolorUserLists();
                    })
        ->setObjectName(QStringLiteral("mnuBlockUser"));
}

void UserListView::addMembershipMenu(const QString& caption, const QString& name, Membership kind) {
    const bool alias = kind == Membership::Alias;
    QMenu* menu = m_menu->addMenu(caption);
    menu->setObjectName(alias ? QStringLiteral("mnuAlias") : QStringLiteral("mnuGroup"));
    const int row = alias ? AliasesRow : GroupsRow;
    menu->addAction(alias ? QStringLiteral("Edit Aliases") : QStringLiteral("Edit Groups"), this,
                    [this, row] { Q_EMIT controlPanelRequested(row); })
        ->setObjectName(alias ? QStringLiteral("mnuEditAliases") : QStringLiteral("mnuEditGroups"));
    menu->addSeparator();
    const int slot = m_slot;
    // "None" takes the user out of the alias or group they are in; a row
    // moves them into that one.
    const auto leave = [alias, name] {
        const QString current = alias ? FindAlias(name) : FindGroup(name);
        if (current.isEmpty()) return;
        if (alias)
            RemoveAliasMember(current, name);
        else
            RemoveGroupMember(current, name);
    };
    menu->addAction(QStringLiteral("None"), this,
                    [leave, slot] {
                        leave();
                        RefreshAliasesAndGroups(slot);
                    })
        ->setObjectName(alias ? QStringLiteral("mnuNoAlias") : QStringLiteral("mnuNoGroup"));
    menu->addSeparator();
    QStringList names;
    const int last = alias ? ListAliases(names) : ListGroups(names);
    for (int i = 0; i <= last && i < names.size(); ++i) {
        const QString target = names[i];
        if (target.isEmpty()) continue;
        menu->addAction(target, this, [leave, alias, target, name, slot] {
            leave();
            if (alias)
                AddAliasMember(target, name);
            else
                AddGroupMember(target, name);
            RefreshAliasesAndGroups(slot);
        });
    }
}

QLineEdit* UserListView::renameSelected() {
    const QModelIndexList rows =
        selectionModel() ? selectionModel()->selectedRows() : QModelIndexList();
    if (m_kind != Kind::Users || rows.isEmpty()) return nullptr;
    endRename(false);
    const QModelIndex index = rows.first();
    const QString text = index.data(Qt::DisplayRole).toString();
    m_rename.begin(m_slot, index.data(ListModel::TagRole).toString(), text);
    m_renameEditor = new QLineEdit(text, viewport());
    m_renameEditor->setObjectName(QStringLiteral("lvUsersLabelEdit"));
    m_renameEditor->setGeometry(visualRect(index).adjusted(kIcon + 4, 0, 0, 0));
    m_renameEditor->selectAll();
    m_renameEditor->installEventFilter(this);
    connect(m_renameEditor, &QLineEdit::returnPressed, this, [this] { endRename(true); });
    connect(m_renameEditor, &QLineEdit::editingFinished, this, [this] {
        // Leaving the box ends the edit as Enter does; Escape has ended it
        // already.
        if (m_renameEditor) endRename(true);
    });
    m_renameEditor->show();
    m_renameEditor->setFocus();
    return m_renameEditor;
}

// A refused name leaves nothing changed; the editor goes either way.
void UserListView::endRename(bool commit) {
    if (!m_renameEditor) return;
    QPointer<QLineEdit> editor = m_renameEditor;
    m_renameEditor = nullptr;
    const QString text = editor->text();
    editor->hide();
    // Gone at once for anyone looking for the editor; deleted once its own
    // signal has returned.
    editor->setObjectName({});
    editor->deleteLater();
    if (commit && m_rename.active()) m_rename.finish(text);
    setFocus();
}

bool UserListView::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_renameEditor && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        endRename(false);
        return true;
    }
    return QTreeView::eventFilter(watched, event);
}

void UserListView::keyPressEvent(QKeyEvent* event) {
    if (m_kind == Kind::Users && event->key() == Qt::Key_F2 && renameSelected()) return;
    if (m_kind == Kind::Users && m_list && m_list->count() > 0) {
        if (event->key() == Qt::Key_Space && event->modifiers() == Qt::NoModifier) {
            const QString user = selectedUser();
            if (!user.isEmpty()) Q_EMIT whisperRequested(user);
            return;
        }
        if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
            const QString user = selectedUser();
            if (!user.isEmpty()) lookupProfile(m_slot, serverName(user));
            return;
        }
        if (event->matches(QKeySequence::Copy)) {
            const QModelIndexList rows = selectionModel()->selectedRows();
            if (!rows.isEmpty())
                QApplication::clipboard()->setText(rows.first().data(Qt::DisplayRole).toString());
            return;
        }
    }
    QTreeView::keyPressEvent(event);
}

void UserListView::mouseMoveEvent(QMouseEvent* event) {
    hover(event->position().toPoint());
    QTreeView::mouseMoveEvent(event);
}

void UserListView::mousePressEvent(QMouseEvent* event) {
    // A click on the name already chosen edits it, once the wait for a
    // double click has passed.
    const QModelIndex index = indexAt(event->position().toPoint());
    m_renameOnRelease = m_kind == Kind::Users && event->button() == Qt::LeftButton &&
                        index.isValid() && index.column() == 0 &&
                        selectionModel()->isRowSelected(index.row(), {});
    QTreeView::mousePressEvent(event);
}

void UserListView::mouseReleaseEvent(QMouseEvent* event) {
    QTreeView::mouseReleaseEvent(event);
    if (m_renameOnRelease) {
        m_renameOnRelease = false;
        m_renameClick.start(QApplication::doubleClickInterval());
    }
    if (event->button() != Qt::RightButton) return;
    const QModelIndex index = indexAt(event->position().toPoint());
    if (index.isValid()) setCurrentIndex(index);
    if (QMenu* menu = contextMenu()) menu->popup(event->globalPosition().toPoint());
}

void UserListView::mouseDoubleClickEvent(QMouseEvent* event) {
    m_renameClick.stop();
    m_renameOnRelease = false;
    QTreeView::mouseDoubleClickEvent(event);
    const QString user = selectedUser();
    if (m_kind == Kind::Users && !user.isEmpty()) Q_EMIT whisperRequested(user);
}

void UserListView::leaveEvent(QEvent* event) {
    if (m_kind == Kind::Users && Bots(m_slot).HoveredItem != 0) QToolTip::hideText();
    forgetHover();
    QTreeView::leaveEvent(event);
}

bool UserListView::viewportEvent(QEvent* event) {
    // The user's tooltip follows the pointer; the item views' own tooltip
    // would hide it again after its delay.
    if (event->type() == QEvent::ToolTip && m_kind == Kind::Users) return true;
    return QTreeView::viewportEvent(event);
}
