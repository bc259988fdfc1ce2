#include "chat/BotElement.h"

#include "config/RegistryWrapper.h"
#include "config/SettingsWrapper.h"
#include "platform/ChatDocument.h"
#include "platform/ListModel.h"
#include "platform/LowerCase.h"
#include "platform/SocketControl.h"
#include "platform/TickCount.h"
#include "presentation/ChatWriter.h"
#include "presentation/Theme.h"
#include "session/LogonRecord.h"
#include "session/SlotTable.h"
#include "statistics/UserNames.h"

#include <QElapsedTimer>
#include <QHash>
#include <algorithm>
#include <utility>

#include <malloc.h>

namespace {

QString plainLower(const QString& name) {
    return LowerCase(ConvertUsername(name, false, -1));
}

} // namespace

void BotElement::userAdd(const QString& strName, qint32 flags, qint32 ping,
                         const QString& statstring, quint32 uptime) {
    // The collection is keyed by the name as given; a second add of the same
    // key keeps the first user.
    const QString given = LowerCase(strName);
    if (m_givenNames.contains(given)) return;
    UserElement user;
    user.Flags = flags;
    user.Ping = ping;
    user.Statstring = statstring;
    user.Uptime = uptime;
    user.setUsername(strName);
    user.LastAction = GetTickCount();
    const QString key = LowerCase(user.UsernameFixed);
    const quint64 arrival = m_nextArrival++;
    NameEntry& entry = m_plainNames[key];
    if (entry.count++ == 0) entry.first = arrival;
    ++m_givenNames[given];
    Users.push_back(std::move(user));
    m_arrivals.push_back(arrival);
    m_plainKeys.push_back(key);
}

void BotElement::userDel(const QString& name) {
    const int position = UserFind(name);
    if (position == 0) return;
    const size_t at = size_t(position - 1);
    const QString key = m_plainKeys[at];
    const QString given = LowerCase(Users[at].Username());
    if (--m_givenNames[given] == 0) m_givenNames.remove(given);
    Users.erase(at);
    ++m_leaves;
    m_arrivals.erase(at);
    m_plainKeys.erase(at);
    // The user found is the first of the name; the next of it, if any, is
    // further on.
    NameEntry& entry = m_plainNames[key];
    if (--entry.count == 0) {
        m_plainNames.remove(key);
        return;
    }
    for (size_t i = at; i < m_plainKeys.size(); ++i) {
        if (m_plainKeys[i] == key) {
            entry.first = m_arrivals[i];
            break;
        }
    }
}

void BotElement::userClear() {
    Users.clear();
    ++m_leaves;
    m_plainNames.clear();
    m_givenNames.clear();
    m_arrivals.clear();
    m_plainKeys.clear();
}

int BotElement::positionOf(quint64 arrival) const {
    return int(m_arrivals.partitionPoint([arrival](quint64 a) { return a < arrival; })) + 1;
}

int BotElement::UserFind(const QString& name) const {
    const auto entry = m_plainNames.constFind(plainLower(name));
    if (entry == m_plainNames.cend()) return 0;
    // Talk far outnumbers leaves, so most look-ups skip the search.
    if (entry->positionLeaves != m_leaves) {
        entry->position = positionOf(entry->first);
        entry->positionLeaves = m_leaves;
    }
    return entry->position;
}

void BotElement::ClearChannels() {
    Channels.clear();
}

void BotElement::ClearQueue() {
    Queue.clear();
    WriteChat(m_index, Status::Information, QStringLiteral("Cleared the queue."));
}

int BotElement::DelayCount() {
    if (m_events.empty()) m_events.emplace_back();
    return int(m_events.size()) - 1;
}

void BotElement::AddEvent(int /*index*/, const QString& username, const QString& message,
                          qint32 ping, qint32 flags, quint32 tick, const QString& eventId) {
    if (DelayCount() >= kHeldEventLimit) {
        // A quarter goes at once, so a flood pays for the bound rarely.
        const int drop = kHeldEventLimit / 4;
        m_events.erase(m_events.begin() + 1, m_events.begin() + 1 + drop);
        m_droppedEvents += drop;
    }
    m_heldPeak = std::max(m_heldPeak, DelayCount() + 1);
    DelayedEvent event;
    event.Username = username;
    event.Message = message;
    event.Ping = ping;
    event.Flags = flags;
    event.EventTime = tick;
    event.EventID = quint8(eventId.toUInt());
    m_events.push_back(std::move(event));
}

void BotElement::ClearEvent() {
    m_events.clear();
    m_events.emplace_back();
    giveBackEventMemory();
}

void BotElement::giveBackEventMemory() {
    if (m_events.size() > 1 || m_heldPeak < kHeldEventLimit / 10) return;
    // The list ran long in a flood: its blocks, and the texts the allocator
    // kept for reuse, go back to the system.
    m_heldPeak = 0;
    m_events.shrink_to_fit();
    malloc_trim(0);
}

int BotElement::takeDroppedEvents() {
    if (m_droppedEvents == 0 || DelayCount() > kHeldEventLimit / 2) return 0;
    return std::exchange(m_droppedEvents, 0);
}

bool BotElement::hasDelayedWork() const {
    const int held = m_events.empty() ? 0 : int(m_events.size()) - 1;
    return (m_online && held > 0) || (m_droppedEvents > 0 && held <= kHeldEventLimit / 2);
}

void BotElement::removeEvent(int position) {
    if (position >= 1 && position < int(m_events.size()))
        m_events.erase(m_events.begin() + position);
}

namespace {

constexpr qint64 kDelayedRunBudgetMs = 15;

// A user who leaves, comes back and talks inside the delay is spamming, and the
// list is thrown away unseen. The marks are kept for each user apart: in a busy
// channel one user's leave, another's join and a third's talk inside the same
// moment are no burst, and throwing them away would lose joins and leaves that
// the user list needs.
bool isLeaveRejoinTalk(const std::deque<DelayedEvent>& events, quint32 delay) {
    struct Marks {
        bool left = false;
        bool rejoined = false;
        bool talked = false;
    };
    QHash<QString, Marks> marks;
    for (size_t e = 1; e < events.size(); ++e) {
        if (TicksSince(events[e].EventTime) <= delay) continue;
        Marks& m = marks[events[e].Username.toLower()];
        switch (events[e].EventID) {
        case 2:
            if (m.left) m.rejoined = true;
            break;
        case 3:
            m.left = true;
            break;
        case 5:
            m.talked = true;
            break;
        default:
            break;
        }
        if (m.left && m.rejoined && m.talked) return true;
    }
    return false;
}

} // namespace

void BotElement::ShowDelayedEvent(int Index) {
    const quint32 delay = quint32(std::max(0, SettingsWrapper::instance().FloodMode()));
    DelayCount();
    if (isLeaveRejoinTalk(m_events, delay)) {
        ClearEvent();
        return;
    }
    // Handlers may queue lines but never touch this list; each due event
    // leaves it once its handler is done, so a failure keeps the rest. A run
    // stops handing on after a few milliseconds: what is left of a crowd that
    // arrived at once follows on the next tick, in order, and the window
    // stays responsive meanwhile.
    QElapsedTimer budget;
    budget.start();
    size_t e = 1;
    while (e < m_events.size() && budget.elapsed() < kDelayedRunBudgetMs) {
        if (TicksSince(m_events[e].EventTime) <= delay) {
            ++e;
            continue;
        }
        const DelayedEvent event = m_events[e];
        const QString message =
            event.EventID == 6 ? QStringLiteral("[BNET] ") + event.Message : event.Message;
        Connection.RunChatEvent(Index, event.EventID, event.Username, message, event.Flags,
                                event.Ping);
        if (e < m_events.size()) m_events.erase(m_events.begin() + qsizetype(e));
    }
    // What a flood took is given back once it has been shown.
    giveBackEventMemory();
}

void BotElement::setOnline(bool online) {
    m_online = online;
    if (online) return;
    // Everything the session knew goes; the queue stays for the next session.
    Logons(m_index).NlsHandle = 0;
    OnlineTick = 0;
    lvClan(m_index).clear();
    lvFriends(m_index).clear();
    lvUsers(m_index).clear();
    m_clanRank = 0;
    userClear();
    ClearChannels();
    setChannel(QString());
    ChannelFlags = 0;
    ChannelTick = 0;
    setClanTag(QString());
    UniqueAccount.clear();
    const QString na = QStringLiteral("N/A");
    AccountLogged = na;
    AccountCreated = na;
    LastLogon = na;
    LastLogoff = na;
    LastGame = na;
    LastGameResult = na;
    CdkeyStatus.clear();
}

void BotElement::setClanTag(const QString& tag) {
    m_clanTag = tag;
    if (tag.isEmpty()) m_clanRank = 0;
    SlotTable::instance().notifyClanTag(m_index);
}

void BotElement::setChannel(const QString& channel) {
    m_channel = channel;
    if (channel != QLatin1String("The Void")) m_channelNonVoid = channel;
}

void BotElement::setProfile(const QString& name) {
    if (name.isEmpty()) emptySlot();
    Config.Profile = name;
}

QString BotElement::Database() const {
    if (Config.Profile.isEmpty()) return {};
    return RegistryWrapper::instance().ReadSTRING(Config.profileKey(), QStringLiteral("Database"));
}

bool BotElement::setDatabase(const QString& name) {
    if (Config.Profile.isEmpty()) return false;
    if (!RegistryWrapper::instance().WriteSTRING(Config.profileKey(), QStringLiteral("Database"),
                                                 name))
        return false;
    WriteChat(m_index, Status::Information,
              QStringLiteral("Binded database '") + name + QStringLiteral("' to this profile."));
    return true;
}

void BotElement::emptySlot() {
    rtbChat(m_index).clear();
    wsBNET(m_index).Close();
    wsBNLS(m_index).Close();
    setOnline(false);
    setChannel(QString());
    CanConnect = false;
    Reconnect.reset();
    ChangeEmail = false;
    ChangePassword = false;
    ChannelTick = 0;
    m_clanRank = 0;
    setClanTag(QString());
    ClearQueue();
    Config.Profile.clear();
    ForgotPassword = false;
    InBNCS.clear();
    InBNLS.clear();
    IsLoaded = false;
    LastConnect = 0;
    LastProfile.clear();
    OnlineTick = 0;
    QueueLast = 0;
    QueueWait = 0;
    UniqueAccount.clear();
    SlotTable& table = SlotTable::instance();
    table.SelectBot(0);
    for (int i = 1; i <= table.highestIndex(); ++i) {
        if (Bots(i).IsLoaded) {
            table.SelectBot(i);
            break;
        }
    }
}
