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

QString compact(const QJsonObject& object) {
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

// JSON text written by hand: a line costs the chat path a few appends
// rather than a tree of JSON values built and serialised.
void appendJsonString(QString& out, QStringView text) {
    out += u'"';
    qsizetype plain = 0; // start of the stretch that needs no escape
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t u = text[i].unicode();
        if (u != u'"' && u != u'\\' && u >= 0x20) continue;
        out += text.mid(plain, i - plain);
        out += u < 0x20 ? QStringLiteral("\\u%1").arg(int(u), 4, 16, QLatin1Char('0'))
                        : QString{u'\\', QChar(u)};
        plain = i + 1;
    }
    out += text.mid(plain);
    out += u'"';
}

void appendColour(QString& out, quint32 bgr) {
    static const char16_t digits[] = u"0123456789abcdef";
    const quint32 rgb = ((bgr & 0xFF) << 16) | (bgr & 0xFF00) | ((bgr >> 16) & 0xFF);
    out += u"\"#";
    for (int shift = 20; shift >= 0; shift -= 4)
        out += QChar(digits[(rgb >> shift) & 0xF]);
    out += u'"';
}

// The document's runs from `from` to `to` as a JSON list of lines, each a
// list of runs [text, colour, style]; the text between holds whole lines.
QString linesOf(const ChatDocument& document, int from, int to, int* count) {
    QString out;
    out.reserve(2 * (to - from) + 64);
    out += u'[';
    int lines = 0;
    bool lineOpen = false;
    bool firstRun = true;
    // New text is at the end: find its first run from there, not from the
    // start of a view that holds thousands.
    const std::vector<TextRun>& runs = document.runs();
    size_t first = runs.size();
    int pos = document.length();
    while (first > 0 && pos > from) {
        --first;
        pos -= int(runs[first].text.size());
    }
    for (size_t r = first; r < runs.size() && pos < to; ++r) {
        const TextRun& run = runs[r];
        const int runEnd = pos + int(run.text.size());
        const int a = std::max(pos, from);
        const int b = std::min(runEnd, to);
        const QStringView piece = QStringView(run.text).mid(a - pos, b - a);
        qsizetype start = 0;
        while (a < b && start < piece.size()) {
            const qsizetype end = piece.indexOf(u"\r\n", start);
            const qsizetype stop = end < 0 ? piece.size() : end;
            if (!lineOpen) {
                out += lines > 0 ? u",[" : u"[";
                lineOpen = true;
                firstRun = true;
            }
            if (stop > start) {
                out += firstRun ? u"[" : u",[";
                firstRun = false;
                appendJsonString(out, piece.mid(start, stop - start));
                out += u',';
                appendColour(out, run.format.color);
                out += u',';
                out += QChar(u'0' + styleBits(run.format));
                out += u']';
            }
            if (end < 0) break;
            out += u']';
            lineOpen = false;
            ++lines;
            start = end + 2;
        }
        pos = runEnd;
    }
    out += u']';
    if (count) *count = lines;
    return out;
}

// Where the document's last complete line ends, looking back from the end
// no further than `from`; `from` when no line ended after it.
int completeEnd(const ChatDocument& document, int from) {
    const std::vector<TextRun>& runs = document.runs();
    int end = document.length();
    QChar after; // the first character of the run after the one looked at
    for (size_t r = runs.size(); r > 0 && end > from; --r) {
        const QString& text = runs[r - 1].text;
        if (after == u'\n' && text.endsWith(u'\r')) return end + 1;
        const qsizetype last = text.lastIndexOf(QLatin1String("\r\n"));
        if (last >= 0) return std::max(from, end - int(text.size()) + int(last) + 2);
        after = text.isEmpty() ? after : text.front();
        end -= int(text.size());
    }
    return from;
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

QString linesMessage(int slot, const QString& view, const QString& lines) {
    return QStringLiteral("{\"t\":\"lines\",\"slot\":%1,\"view\":\"%2\",\"lines\":")
               .arg(slot)
               .arg(view) +
           lines + u'}';
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
        const QString lines = linesOf(*w.document, w.sent, end, &count);
        w.sent = end;
        if (count > 0) Q_EMIT this->lines(linesMessage(w.slot, w.view, lines), count);
    }
}

void PageFeed::flushState() {
    const QString slots = compact(slotsNow());
    if (slots != m_lastSlots) {
        m_lastSlots = slots;
        Q_EMIT state(QStringLiteral("slots"), slots);
    }
    const QString status = compact(statusNow());
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

std::vector<QString> PageFeed::snapshot() const {
    std::vector<QString> messages{compact(slotsNow()), compact(statusNow())};
    for (const Watched& w : m_watched) {
        if (w.slot > 0 && !Bots(w.slot).IsLoaded) continue;
        const int end = m_listening ? w.sent : completeEnd(*w.document, 0);
        const int start = recentStart(*w.document, end, kRecentLines);
        int count = 0;
        const QString lines = linesOf(*w.document, start, end, &count);
        if (count > 0) messages.push_back(linesMessage(w.slot, w.view, lines));
    }
    SlotTable& table = SlotTable::instance();
    for (int i = 1; i <= table.highestIndex(); ++i) {
        if (Bots(i).IsLoaded) messages.push_back(compact(usersOf(i)));
    }
    return messages;
}
