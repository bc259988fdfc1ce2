#pragma once

#include <QHash>
#include <QObject>
#include <QString>
#include <QStringList>

class PacketReader;

namespace sandbox {

class ChatHub;
class ChatUser;

// Friends lists of accounts: "/f a", "/f r", "/f l" and "/f p" in chat, the list on request
// (0x65), a friend added (0x67), removed (0x68) or moved (0x69), and 0x66 when a friend comes,
// goes or changes channel.
class FriendsDesk : public QObject {
    Q_OBJECT

public:
    explicit FriendsDesk(ChatHub& hub, QObject* parent = nullptr);

    // A chat line of a client; false when it is not a friends command.
    bool command(ChatUser& user, const QString& line);
    void sendList(ChatUser& user);

private:
    struct Seen {
        quint8 location = 0;
        QString where;
    };
    QByteArray record(const ChatUser& owner, const QString& name) const;
    Seen seen(const ChatUser& owner, const QString& name) const;
    void send(ChatUser& user, quint8 id, const QByteArray& payload);
    void add(ChatUser& user, const QString& name);
    void remove(ChatUser& user, const QString& name);
    void list(ChatUser& user);
    void promote(ChatUser& user, const QString& name);
    void presenceChanged();

    ChatHub& m_hub;
    QHash<QString, QStringList> m_friends; // by lower-case account, names as added
    QHash<QString, Seen> m_lastSeen;       // "owner\nfriend", lower-case
};

} // namespace sandbox
