#pragma once

#include "chat/DelayedEvent.h"
#include "chat/UserElement.h"
#include "config/ConfigWrapper.h"
#include "platform/ChunkedList.h"
#include "session/ConnectionWrapper.h"
#include "session/ReconnectPlan.h"
#include "session/StreamBuffer.h"

#include <QHash>
#include <QString>
#include <QStringList>
#include <deque>
#include <vector>

// The run-time state of one profile slot: its session, its channel and its
// queues. Other parts read and write the public fields directly; the
// properties below carry side effects (clean-ups) or live elsewhere.
class BotElement {
public:
    ConnectionWrapper Connection;
    qint32 ChannelFlags = 0;
    qint16 ProfileType = 0;
    qint32 RecordWins = 0;
    qint32 RecordLosses = 0;
    qint32 RecordDiscs = 0;
    QString LastGame = QStringLiteral("N/A");
    QString LastGameResult = QStringLiteral("N/A");
    QString LastLogoff = QStringLiteral("N/A");
    QString LastLogon = QStringLiteral("N/A");
    QString AccountCreated = QStringLiteral("N/A");
    QString AccountLogged = QStringLiteral("N/A");
    bool IsActive = false;
    quint32 LastActive = 0;
    bool ChangePassword = false;
    bool ChangeEmail = false;
    bool ForgotPassword = false;
    QString NewPassword;
    QString NewEmail;
    QString RegisterEmail;
    QString CdkeyStatus;
    QString MyStatstring;
    qint32 MyFlags = 0;
    qint32 IdleCounter = 0;
    QString LastWhisper;
    QString LastWhispered;
    bool CanConnect = false;
    quint32 LastConnect = 0;
    // The next try after the connection was lost.
    ReconnectPlan Reconnect;
    quint32 QueueLast = 0;
    qint32 QueueWait = 0;
    QStringList Queue; // oldest first
    QString UniqueAccount;
    quint32 ChannelTick = 0;
    quint32 OnlineTick = 0;
    ConfigWrapper Config;
    bool IsLoaded = false;
    StreamBuffer InBNCS;
    StreamBuffer InBNLS;
    QString LastProfile;
    qint32 HoveredIcon = 0;
    qint32 HoveredItem = 0;
    QStringList Channels;
    // In order of arrival; changed only through userAdd, userDel and userClear,
    // which keep the index below in step.
    ChunkedList<UserElement> Users;

    // Users, 1-based positions as the rest of the program counts them.
    void userAdd(const QString& strName, qint32 flags, qint32 ping, const QString& statstring,
                 quint32 uptime);
    void userDel(const QString& name);
    void userClear();
    int UserFind(const QString& name) const;
    UserElement& user(int position) { return Users.at(size_t(position - 1)); }
    void ClearChannels();
    void ClearQueue();

    // The delayed events, 1-based; element 0 stands empty.
    int DelayCount();
    void AddEvent(int index, const QString& username, const QString& message, qint32 ping,
                  qint32 flags, quint32 tick, const QString& eventId);
    void ClearEvent();
    DelayedEvent& delayedEvent(int position) { return m_events.at(size_t(position)); }
    void removeEvent(int position);
    // Hands the due delayed events of this slot to their handlers, or throws
    // the whole list away when it holds a leave, a rejoin and talk.
    void ShowDelayedEvent(int Index);
    // The most events the list holds. A flood beyond it costs the oldest held
    // events rather than the process's memory and a view minutes behind.
    static constexpr int kHeldEventLimit = 5000;
    // Events dropped by the bound since this was last asked, once the flood
    // is over (the list back under half the bound); 0 meanwhile.
    int takeDroppedEvents();
    // The delayed-events timer has something to do here: held events of a
    // session in chat, or dropped ones to tell of.
    bool hasDelayedWork() const;

    qint32 MyPing() const { return m_myPing; }
    void setMyPing(qint32 ping) { m_myPing = ping; }
    bool Online() const { return m_online; }
    void setOnline(bool online);
    const QString& ClanTag() const { return m_clanTag; }
    void setClanTag(const QString& tag);
    QString Profile() const { return Config.Profile; }
    void setProfile(const QString& name);
    // The userbase the profile is bound to, kept in the profile's key and
    // read afresh each time, so a binding made elsewhere is seen at once.
    // Empty without a profile; setting it without a profile does nothing.
    QString Database() const;
    // False, without the line, when there is no profile or the store refused.
    bool setDatabase(const QString& name);
    const QString& Channel() const { return m_channel; }
    void setChannel(const QString& channel);
    const QString& ChannelNonVoid() const { return m_channelNonVoid; }
    int Index() const { return m_index; }
    void setIndex(int index) { m_index = index; }
    quint8 ClanRank() const { return m_clanRank; }
    void setClanRank(quint8 rank) { m_clanRank = rank; }

private:
    void emptySlot();
    int positionOf(quint64 arrival) const;

    // The index beside Users, so that a look-up by name costs a hash probe and
    // a binary search rather than a walk of the channel. Each user has an
    // arrival number, rising in the order of Users; a name leads to the
    // arrival number of the first user who bears it, and the position follows
    // from the sorted numbers. A leave shifts no entry of the index.
    struct NameEntry {
        quint64 first = 0; // arrival number of the first user of the name
        int count = 0;     // users of the name
        // Its position as last found; good while no user has left since,
        // because arrivals only add at the end.
        mutable int position = 0;
        mutable quint64 positionLeaves = ~quint64(0);
    };
    QHash<QString, NameEntry> m_plainNames; // by lower-cased plain name
    QHash<QString, int> m_givenNames;       // users by lower-cased name as given
    ChunkedList<quint64> m_arrivals;        // beside Users
    ChunkedList<QString> m_plainKeys;       // beside Users
    quint64 m_nextArrival = 0;
    quint64 m_leaves = 0; // users taken out so far, for NameEntry::position

    void giveBackEventMemory();

    std::deque<DelayedEvent> m_events;
    int m_droppedEvents = 0;
    int m_heldPeak = 0; // the longest the list ran since memory was last given back
    QString m_channel;
    QString m_channelNonVoid;
    QString m_clanTag;
    int m_index = 0;
    bool m_online = false;
    quint8 m_clanRank = 0;
    qint32 m_myPing = 0;
};
