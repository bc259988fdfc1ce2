#include "web/PageFeed.h"

#include "chat/BotElement.h"
#include "chat/TimedEvents.h"
#include "config/FileStamp.h"
#include "control/ChatFeed.h"
#include "control/FeedMessages.h"
#include "platform/ListModel.h"
#include "presentation/Theme.h"
#include "session/SlotTable.h"
#include "statistics/FlagNames.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

const QString kType = QStringLiteral("event");

QString cssColour(quint32 bgr) {
    const quint32 rgb = ((bgr & 0xFF) << 16) | (bgr & 0xFF00) | ((bgr >> 16) & 0xFF);
    return QStringLiteral("#%1").arg(rgb, 6, 16, QLatin1Char('0'));
}

QByteArray compact(const QJsonObject& object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

QJsonObject usersOf(int slot) {
    ListModel& list = lvUsers(slot);
    BotElement& bot = Bots(slot);
    QJsonArray items;
    for (int i = 1; i <= list.count(); ++i) {
        const ListItem& item = list.item(i);
        const int position = bot.UserFind(item.tag);
        const qint32 flags = position > 0 ? bot.user(position).Flags : 0;
        items.append(QJsonObject{{QStringLiteral("n"), item.text},
                                 {QStringLiteral("i"), item.iconKey},
                                 {QStringLiteral("c"), cssColour(item.color)},
                                 {QStringLiteral("p"), item.subText},
                                 {QStringLiteral("pi"), item.subIconKey},
                                 {QStringLiteral("f"), GetUserFlagNames(quint32(flags))}});
    }
    return {{kType, QStringLiteral("users")},
            {QStringLiteral("profile"), bot.Profile()},
            {QStringLiteral("channel"), bot.Channel()},
            {QStringLiteral("items"), items}};
}

QJsonObject slotsNow() {
    SlotTable& table = SlotTable::instance();
    QJsonArray loaded;
    for (int i = 1; i <= table.highestIndex(); ++i) {
        BotElement& bot = Bots(i);
        if (!bot.IsLoaded) continue;
        loaded.append(QJsonObject{{QStringLiteral("slot"), i},
                                  {QStringLiteral("profile"), bot.Profile()},
                                  {QStringLiteral("online"), bot.Online()},
                                  {QStringLiteral("channel"), bot.Channel()},
                                  {QStringLiteral("users"), lvUsers(i).count()}});
    }
    const ThemeRecord& theme = CurrentTheme();
    return {{kType, QStringLiteral("slots")},
            {QStringLiteral("slots"), loaded},
            {QStringLiteral("profiles"), QJsonArray::fromStringList(table.unloadedProfiles())},
            {QStringLiteral("back"), cssColour(theme.interface.BackColor)},
            {QStringLiteral("fore"), cssColour(theme.interface.ForeColor)}};
}

QJsonObject statusNow() {
    return {{kType, QStringLiteral("status")},
            {QStringLiteral("text"), TimedEvents::instance().StatusLine()}};
}

// The profile a line belongs to as the followers name it; the console's is
// empty.
QString profileOf(int slot) {
    return slot > 0 ? Bots(slot).Profile() : QString();
}

} // namespace

PageFeed::PageFeed(QObject* parent) : QObject(parent) {
    connect(&ChatFeed::instance(), &ChatFeed::linesWritten, this, &PageFeed::linesWritten);
    SlotTable& table = SlotTable::instance();
    for (int i = 1; i <= table.highestIndex(); ++i)
        watchUsers(i);
    connect(&table, &SlotTable::slotCreated, this, &PageFeed::watchUsers);
    // Loads, renames, going on- and offline, a new channel, the status line,
    // the user lists: looked at twice a second, sent when they differ.
    m_stateTimer.setInterval(500);
    connect(&m_stateTimer, &QTimer::timeout, this, &PageFeed::flushState);
}

void PageFeed::setListening(bool listening) {
    if (listening == m_listening) return;
    m_listening = listening;
    if (!listening) {
        m_stateTimer.stop();
        return;
    }
    // The pages start from the snapshot: only what comes after it is news.
    m_dirtyUsers.clear();
    m_lastSlots = compact(slotsNow());
    m_lastStatus = compact(statusNow());
    m_stateTimer.start();
}

void PageFeed::watchUsers(int slot) {
    if (slot == 0) return;
    ListModel* users = &lvUsers(slot);
    const auto dirty = [this, slot] {
        if (m_listening) m_dirtyUsers.insert(slot);
    };
    connect(users, &QAbstractItemModel::rowsInserted, this, dirty);
    connect(users, &QAbstractItemModel::rowsRemoved, this, dirty);
    connect(users, &QAbstractItemModel::dataChanged, this, dirty);
    connect(users, &QAbstractItemModel::modelReset, this, dirty);
}

// A burst of lines goes to the pages as one message of many lines.
void PageFeed::linesWritten(const QList<FeedLine>& lines) {
    if (!m_listening || lines.isEmpty()) return;
    QByteArray messages;
    messages.reserve(256 * lines.size());
    for (const FeedLine& line : lines)
        FeedMessages::AppendLine(messages, line, profileOf(line.slot));
    Q_EMIT this->lines(messages, int(lines.size()));
}

void PageFeed::flushState() {
    // Names of flags and pings, one look at their override file for the lot.
    const FileStamp::Burst burst;
    const QByteArray slots = compact(slotsNow());
    if (slots != m_lastSlots) {
        m_lastSlots = slots;
        Q_EMIT state(QStringLiteral("slots"), slots);
    }
    const QByteArray status = compact(statusNow());
    if (status != m_lastStatus) {
        m_lastStatus = status;
        Q_EMIT state(QStringLiteral("status"), status);
    }
    for (int slot : std::as_const(m_dirtyUsers)) {
        if (slot <= SlotTable::instance().highestIndex() && Bots(slot).IsLoaded)
            Q_EMIT state(QStringLiteral("users %1").arg(slot), compact(usersOf(slot)));
    }
    m_dirtyUsers.clear();
}

// The caller flushes the chat feed first, so that no line is both in the
// snapshot and still on its way.
std::vector<QByteArray> PageFeed::snapshot() const {
    const FileStamp::Burst burst;
    std::vector<QByteArray> messages{compact(slotsNow()), compact(statusNow())};
    const ChatFeed& feed = ChatFeed::instance();
    SlotTable& table = SlotTable::instance();
    for (int i = 0; i <= table.highestIndex(); ++i) {
        if (i > 0 && !Bots(i).IsLoaded) continue;
        QByteArray recent;
        for (const FeedLine& line : feed.recentLines(i, kRecentLines))
            FeedMessages::AppendLine(recent, line, profileOf(i));
        if (!recent.isEmpty()) messages.push_back(recent);
        if (i > 0) messages.push_back(compact(usersOf(i)));
    }
    return messages;
}
