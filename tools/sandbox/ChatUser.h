#pragma once

#include <QSet>
#include <QString>

namespace sandbox {

struct Product;
class ChannelRoom;

// Chat event ids as the server sends them.
namespace event {
enum : quint32 {
    ShowUser = 1,
    Join = 2,
    Leave = 3,
    WhisperFrom = 4,
    Talk = 5,
    Broadcast = 6,
    ChannelJoined = 7,
    FlagsUpdate = 9,
    WhisperTo = 10,
    ChannelFull = 13,
    ChannelMissing = 14,
    ChannelRestricted = 15,
    Info = 18,
    Error = 19,
    Emote = 23,
};
} // namespace event

// User flags.
namespace userflag {
enum : quint32 {
    Blizzard = 0x01,
    Operator = 0x02,
    Speaker = 0x04,
    Admin = 0x08,
    NoUdp = 0x10,
    Squelched = 0x20,
    Guest = 0x40,
};
} // namespace userflag

// Channel flags.
namespace channelflag {
enum : quint32 {
    Public = 0x01,
    Moderated = 0x02,
    Restricted = 0x04,
    Silent = 0x08,
    System = 0x10,
    ProductSpecific = 0x20,
    Global = 0x1000,
};
} // namespace channelflag

// One chat event as one user receives it: the name is already in that user's form.
struct ChatEvent {
    quint32 id = 0;
    quint32 flags = 0;
    quint32 ping = 0;
    QString name;
    QString text;
};

// Someone in chat: a connected client or a simulated one. The hub keeps the presence
// fields; each kind decides what receiving an event means.
class ChatUser {
public:
    virtual ~ChatUser();
    virtual void deliver(const ChatEvent& event) = 0;
    // The server ends the user's session (a client is disconnected).
    virtual void dropSession() {}

    // The name the hub gave: the account, or "account#2" for a second session of it.
    const QString& name() const { return m_name; }
    // How `viewer` sees this user's name: Diablo II shows character*account.
    QString nameFor(const ChatUser& viewer) const;
    // Flags as `viewer` sees them: squelched when the viewer ignores this user.
    quint32 flagsFor(const ChatUser& viewer) const;
    bool ignores(const ChatUser& other) const;

    QString account;
    QString character; // a Diablo II character, or empty
    const Product* product = nullptr;
    QString statstring;
    quint32 flags = 0;
    quint32 ping = 0;
    ChannelRoom* channel = nullptr;
    bool away = false;
    QString awayMessage;
    bool dnd = false;
    QString dndMessage;
    QSet<QString> ignoring; // lower-case names

private:
    friend class ChatHub;
    QString m_name;
};

} // namespace sandbox
