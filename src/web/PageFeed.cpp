#include "web/PageFeed.h"

#include "chat/BotElement.h"
#include "chat/TimedEvents.h"
#include "platform/ChatDocument.h"
#include "platform/ListModel.h"
#include "presentation/Theme.h"
#include "session/SlotTable.h"
#include "statistics/FlagNames.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

const QString kType = QStringLiteral("t");

QString cssColour(quint32 bgr) {
    const quint32 rgb = ((bgr & 0xFF) << 16) | (bgr & 0xFF00) | ((bgr >> 16) & 0xFF);
    return QStringLiteral("#%1").arg(rgb, 6, 16, QLatin1Char('0'));
}

int styleBits(const CharFormat& f) {
    return (f.bold ? 1 : 0) | (f.italic ? 2 : 0) | (f.underline ? 4 : 0) | (f.strike ? 8 : 0);
}

QByteArray compact(const QJsonObject& object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

// The document's runs from `from` to `to` as lines, each a list of runs
// [text, colour, style]; the text between holds whole lines only.
QJsonArray linesOf(const ChatDocument& document, int from, int to, int* count) {
    QJsonArray lines;
    QJsonArray line;
    int pos = 0;
    for (const TextRun& run : document.runs()) {
        const int runEnd = pos + int(run.text.size());
        const int a = std::max(pos, from);
        const int b = std::min(runEnd, to);
        if (a < b) {
            const QString piece = run.text.mid(a - pos, b - a);
            const QString colour = cssColour(run.format.color);
            const int style = styleBits(run.format);
            qsizetype start = 0;
            while (start < piece.size()) {
                const qsizetype end = piece.indexOf(QLatin1String("\r\n"), start);
                const qsizetype stop = end < 0 ? piece.size() : end;
                if (stop > start)
                    line.append(QJsonArray{piece.mid(start, stop - start), colour, style});
                if (end < 0) break;
                lines.append(line);
                line = QJsonArray();
                start = end + 2;
            }
        }
        pos = runEnd;
        if (pos >= to) break;
    }
    if (count) *count = int(lines.size());
    return lines;
}

// Where the document's last complete line ends; 0 when it holds none.
int completeEnd(const ChatDocument& document, int from) {
    const qsizetype last = document.textFrom(from).lastIndexOf(QLatin1String("\r\n"));
    return last < 0 ? from : from + int(last) + 2;
}

// Where the last `n` lines of the text before `end` start.
int recentStart(const ChatDocument& document, int end, int n) {
    const QString text = document.text().left(end);
    qsizetype pos = text.size() - 2; // skip the last line's own end
    for (int i = 0; i < n && pos > 0; ++i) {
        pos = text.lastIndexOf(QLatin1String("\r\n"), pos - 1);
        if (pos < 0) return 0;
    }
    return pos <= 0 ? 0 : int(pos) + 2;
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
            {QStringLiteral("slot"), slot},
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

QJsonObject linesMessage(int slot, const QString& view, const QJsonArray& lines) {
    return {{kType, QStringLiteral("lines")},
            {QStringLiteral("slot"), slot},
            {QStringLiteral("view"), view},
            {QStringLiteral("lines"), lines}};
}

} // namespace

PageFeed::PageFeed(QObject* parent) : QObject(parent) {
    SlotTable& table = SlotTable::instance();
    for (int i = 0; i <= table.highestIndex(); ++i)
        watch(i);
    connect(&table, &SlotTable::slotCreated, this, &PageFeed::watch);
    // Loads, renames, going on- and offline, a new channel, the status line:
    // looked at twice a second, sent when they differ.
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
    for (Watched& w : m_watched)
        w.sent = completeEnd(*w.document, 0);
    m_dirtyUsers.clear();
    m_lastSlots = compact(slotsNow());
    m_lastStatus = compact(statusNow());
    m_stateTimer.start();
}

void PageFeed::watch(int slot) {
    watchDocument(&rtbChat(slot), slot, QStringLiteral("chat"));
    watchDocument(&rtbWhisper(slot), slot, QStringLiteral("whisper"));
    if (slot == 0) return;
    ListModel* users = &lvUsers(slot);
    const auto dirty = [this, slot] {
        if (!m_listening) return;
        m_dirtyUsers.insert(slot);
    };
    connect(users, &QAbstractItemModel::rowsInserted, this, dirty);
    connect(users, &QAbstractItemModel::rowsRemoved, this, dirty);
    connect(users, &QAbstractItemModel::dataChanged, this, dirty);
    connect(users, &QAbstractItemModel::modelReset, this, dirty);
}

void PageFeed::watchDocument(ChatDocument* document, int slot, const QString& view) {
    m_watched.push_back({document, slot, view, completeEnd(*document, 0)});
    const size_t index = m_watched.size() - 1;
    connect(document, &ChatDocument::changed, this, [this] { scheduleLines(); });
    connect(document, &ChatDocument::cleared, this, [this, index] {
        Watched& w = m_watched[index];
        w.sent = 0;
        if (!m_listening) return;
        Q_EMIT state(QStringLiteral("clear %1 %2").arg(w.slot).arg(w.view),
                     compact({{kType, QStringLiteral("clear")},
                              {QStringLiteral("slot"), w.slot},
                              {QStringLiteral("view"), w.view}}));
    });
}

void PageFeed::scheduleLines() {
    // A line is finished by the writer (escapes applied) before it goes.
    if (!m_listening || m_linesPending) return;
    m_linesPending = true;
    QMetaObject::invokeMethod(this, &PageFeed::flushLines, Qt::QueuedConnection);
}

void PageFeed::flushLines() {
    m_linesPending = false;
    if (!m_listening) return;
    for (Watched& w : m_watched) {
        const int end = completeEnd(*w.document, w.sent);
        if (end <= w.sent) continue;
        int count = 0;
        const QJsonArray lines = linesOf(*w.document, w.sent, end, &count);
        w.sent = end;
        if (count > 0) Q_EMIT this->lines(compact(linesMessage(w.slot, w.view, lines)), count);
    }
}

void PageFeed::flushState() {
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
        if (slot <= SlotTable::instance().highestIndex())
            Q_EMIT state(QStringLiteral("users %1").arg(slot), compact(usersOf(slot)));
    }
    m_dirtyUsers.clear();
}

std::vector<QByteArray> PageFeed::snapshot() const {
    std::vector<QByteArray> messages{compact(slotsNow()), compact(statusNow())};
    for (const Watched& w : m_watched) {
        if (w.slot > 0 && !Bots(w.slot).IsLoaded) continue;
        const int end = m_listening ? w.sent : completeEnd(*w.document, 0);
        const int start = recentStart(*w.document, end, kRecentLines);
        const QJsonArray lines = linesOf(*w.document, start, end, nullptr);
        if (!lines.isEmpty()) messages.push_back(compact(linesMessage(w.slot, w.view, lines)));
    }
    SlotTable& table = SlotTable::instance();
    for (int i = 1; i <= table.highestIndex(); ++i) {
        if (Bots(i).IsLoaded) messages.push_back(compact(usersOf(i)));
    }
    return messages;
}
