#pragma once

#include "sandbox/ChannelRoom.h"
#include "sandbox/ChatUser.h"

#include <QHash>
#include <QObject>
#include <map>
#include <memory>

namespace sandbox {

class AccountStore;

// Everyone in chat and every channel with someone in it. The hub carries out what users do
// (join, leave, talk, whisper) and tells each onlooker the events a real server would send.
class ChatHub : public QObject {
    Q_OBJECT

public:
    enum class JoinMode {
        NoCreate, // join only a channel that exists
        First,    // the first join after logon: the product's home channel
        Forced,   // join the named channel, making it if need be
    };

    static const QString& voidName();

    ChatHub(AccountStore& store, int channelLimit, QObject* parent = nullptr);
    ~ChatHub() override;

    // Channels the channel list offers besides the product's home.
    void setPublicChannels(const QStringList& channels) { m_publicChannels = channels; }
    QStringList channelList(const Product* product) const;

    // Gives the user a unique name from the account and takes them into chat (no channel).
    void enter(ChatUser& user, const QString& account);
    // Out of chat: leaves the channel and frees the name.
    void exit(ChatUser& user);
    bool isInChat(const ChatUser& user) const;
    // By any form of the name ("bob", "*bob", "Char*bob"), in any case.
    ChatUser* find(const QString& name) const;
    QList<ChatUser*> users() const;
    int userCount() const { return int(m_users.size()); }

    ChannelRoom* room(const QString& name) const;
    bool join(ChatUser& user, const QString& channel, JoinMode mode);
    void leaveChannel(ChatUser& user);

    void talk(ChatUser& from, const QString& text);
    void emote(ChatUser& from, const QString& text);
    void whisper(ChatUser& from, const QString& target, const QString& text);
    void updateFlags(ChatUser& user, quint32 flags);
    // Shows the whole Void to a user there, who has asked to see it.
    void revealVoid(ChatUser& user);

    void info(ChatUser& to, const QString& text);
    void error(ChatUser& to, const QString& text);
    void broadcast(const QString& text);
    // One event about `about` (or about nobody) to one user.
    void send(ChatUser& to, quint32 id, const ChatUser* about, const QString& text);

    // Bans of a room go to the store at once, so they outlive the room and the run.
    void saveBans(const ChannelRoom& room);

    quint64 eventsDelivered() const { return m_delivered; }

Q_SIGNALS:
    // Someone entered or left chat or changed channel.
    void presenceChanged();

private:
    ChannelRoom::Kind kindOf(const QString& channel, const Product*& product) const;
    void announceLeave(ChannelRoom& room, ChatUser& user);

    AccountStore& m_store;
    int m_channelLimit;
    QStringList m_publicChannels;
    QHash<QString, ChatUser*> m_users;                       // by lower-case name
    std::map<QString, std::unique_ptr<ChannelRoom>> m_rooms; // by lower-case name
    quint64 m_delivered = 0;
};

} // namespace sandbox
