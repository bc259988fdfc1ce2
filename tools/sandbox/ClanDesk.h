#pragma once

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>
#include <vector>

class PacketReader;

namespace sandbox {

class ChatHub;
class ChatUser;

// WarCraft III clans: founding with candidates, invitations, ranks, the message of the day,
// the chieftain's change, removal and disbanding, and the members' status as they come and
// go. Members are accounts; a connected client hears about its clan in frames, a resident
// answers every invitation with yes.
class ClanDesk : public QObject {
    Q_OBJECT

public:
    explicit ClanDesk(ChatHub& hub, QObject* parent = nullptr);
    ~ClanDesk() override;

    // A clan frame from a client; false for an id that is not a clan request.
    bool handle(ChatUser& from, quint8 id, PacketReader& r);
    // The client has entered chat: a member hears of its clan.
    void entered(ChatUser& user);
    // "clan create TAG NAME CHIEFTAIN [MEMBER ...]", "clan invite INVITER TARGET",
    // "clan members TAG": the answer line, or false for a command that is not a clan one.
    bool control(const QString& command, const QString& rest, QString& answer);

    // The wire form of a tag as a person writes it: a DWORD holding the text big-endian, so
    // turned round and NUL-padded in front to 4 bytes.
    static QByteArray wireTag(const QByteArray& tag);
    static QByteArray tagText(const QByteArray& wire);

private:
    struct Member {
        QString account;
        quint8 rank = 0;
        bool online = false;
        QString location;
    };
    struct Clan {
        QByteArray tag; // as a person writes it
        QString name;
        QString motd;
        std::vector<Member> members;
    };
    // An invitation waiting for its answer: to join (0x79) or to found (0x72).
    struct Invitation {
        quint8 kind = 0;
        QString inviter;
        QString invitee;
        quint32 inviterCookie = 0;
        QByteArray tag;
        QString clanName;
    };
    struct Founding {
        QString creator;
        quint32 cookie = 0;
        QByteArray tag;
        QString name;
        QStringList invitees;
        QSet<QString> accepted; // lower-case
    };

    Clan* clanOf(const QString& account);
    Clan* clanByTag(const QByteArray& tag);
    Member* memberOf(Clan& clan, const QString& account);
    void send(const QString& account, quint8 id, const QByteArray& payload);
    void sendResult(ChatUser& to, quint8 id, quint32 cookie, quint8 result);
    void sendInfo(const Clan& clan, const Member& m);
    void broadcastStatus(const Clan& clan, const Member& m);
    void rankChanged(Clan& clan, Member& m, quint8 rank, const QString& by);
    void presenceChanged();
    void remove(Clan& clan, const QString& account);

    void findCandidates(ChatUser& from, PacketReader& r);
    void inviteMultiple(ChatUser& from, PacketReader& r);
    void answerInvitation(ChatUser& from, quint8 id, PacketReader& r);
    void foundingAnswered(Founding& f, const QString& account, bool yes);
    void disband(ChatUser& from, PacketReader& r);
    void makeChieftain(ChatUser& from, PacketReader& r);
    void invite(ChatUser& from, PacketReader& r);
    bool invite(const QString& inviter, quint32 cookie, const QString& target, quint8& result);
    void removeMember(ChatUser& from, PacketReader& r);
    void changeRank(ChatUser& from, PacketReader& r);
    void setMotd(ChatUser& from, PacketReader& r);
    void sendMembers(ChatUser& from, PacketReader& r);

    ChatHub& m_hub;
    std::vector<Clan> m_clans;
    std::vector<Invitation> m_invitations;
    std::vector<Founding> m_foundings;
};

} // namespace sandbox
