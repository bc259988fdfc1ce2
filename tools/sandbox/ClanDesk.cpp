#include "sandbox/ClanDesk.h"

#include "sandbox/BncsSession.h"
#include "sandbox/ChannelRoom.h"
#include "sandbox/ChatHub.h"
#include "sandbox/Resident.h"
#include "session/PacketReader.h"
#include "session/PacketWriter.h"

#include <algorithm>

namespace sandbox {
namespace {

constexpr int kClanLimit = 100;
constexpr quint8 kAccept = 6;

bool same(const QString& a, const QString& b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

} // namespace

ClanDesk::ClanDesk(ChatHub& hub, QObject* parent) : QObject(parent), m_hub(hub) {
    connect(&m_hub, &ChatHub::presenceChanged, this, &ClanDesk::presenceChanged);
}

ClanDesk::~ClanDesk() = default;

QByteArray ClanDesk::wireTag(const QByteArray& tag) {
    QByteArray t = tag.left(4);
    std::reverse(t.begin(), t.end());
    return QByteArray(4 - t.size(), '\0') + t;
}

// As servers in use read it: the DWORD's bytes from the highest down, up to the first NUL. A
// tag padded behind its letters ("B", "A", 0, 0) so reads as no tag at all.
QByteArray ClanDesk::tagText(const QByteArray& wire) {
    QByteArray t = wire.left(4);
    std::reverse(t.begin(), t.end());
    const qsizetype end = t.indexOf('\0');
    return end < 0 ? t : t.left(end);
}

ClanDesk::Clan* ClanDesk::clanOf(const QString& account) {
    for (Clan& c : m_clans)
        if (memberOf(c, account)) return &c;
    return nullptr;
}

ClanDesk::Clan* ClanDesk::clanByTag(const QByteArray& tag) {
    for (Clan& c : m_clans)
        if (c.tag.compare(tag, Qt::CaseInsensitive) == 0) return &c;
    return nullptr;
}

ClanDesk::Member* ClanDesk::memberOf(Clan& clan, const QString& account) {
    for (Member& m : clan.members)
        if (same(m.account, account)) return &m;
    return nullptr;
}

void ClanDesk::send(const QString& account, quint8 id, const QByteArray& payload) {
    if (auto* session = dynamic_cast<BncsSession*>(m_hub.find(account)))
        session->sendRaw(id, payload);
}

void ClanDesk::sendResult(ChatUser& to, quint8 id, quint32 cookie, quint8 result) {
    PacketWriter w;
    w.WriteDWORD(cookie);
    w.WriteBYTE(result);
    send(to.account, id, w.payload());
}

void ClanDesk::sendInfo(const Clan& clan, const Member& m) {
    PacketWriter w;
    w.WriteBYTE(0);
    w.WriteVOID(wireTag(clan.tag));
    w.WriteBYTE(m.rank);
    send(m.account, 0x75, w.payload());
}

void ClanDesk::broadcastStatus(const Clan& clan, const Member& m) {
    PacketWriter w;
    w.WriteSTRING(m.account);
    w.WriteBYTE(m.rank);
    w.WriteBYTE(m.online ? 1 : 0);
    w.WriteSTRING(m.location);
    for (const Member& other : clan.members)
        send(other.account, 0x7F, w.payload());
}

void ClanDesk::rankChanged(Clan& clan, Member& m, quint8 rank, const QString& by) {
    PacketWriter w;
    w.WriteBYTE(m.rank);
    w.WriteBYTE(rank);
    w.WriteSTRING(by);
    m.rank = rank;
    send(m.account, 0x81, w.payload());
    broadcastStatus(clan, m);
}

// Members who came, went or moved: every member online hears it.
void ClanDesk::presenceChanged() {
    for (Clan& clan : m_clans) {
        for (Member& m : clan.members) {
            const ChatUser* user = m_hub.find(m.account);
            const bool online = user != nullptr;
            const QString location = user && user->channel ? user->channel->name() : QString();
            if (online == m.online && location == m.location) continue;
            m.online = online;
            m.location = location;
            broadcastStatus(clan, m);
        }
    }
}

void ClanDesk::entered(ChatUser& user) {
    Clan* clan = clanOf(user.account);
    if (clan) sendInfo(*clan, *memberOf(*clan, user.account));
}

bool ClanDesk::handle(ChatUser& from, quint8 id, PacketReader& r) {
    switch (id) {
    case 0x70:
        findCandidates(from, r);
        return true;
    case 0x71:
        inviteMultiple(from, r);
        return true;
    case 0x72:
    case 0x79:
        answerInvitation(from, id, r);
        return true;
    case 0x73:
        disband(from, r);
        return true;
    case 0x74:
        makeChieftain(from, r);
        return true;
    case 0x77:
        invite(from, r);
        return true;
    case 0x78:
        removeMember(from, r);
        return true;
    case 0x7A:
        changeRank(from, r);
        return true;
    case 0x7B:
        setMotd(from, r);
        return true;
    case 0x7D:
        sendMembers(from, r);
        return true;
    default:
        return false;
    }
}

// Candidates are the others in the founder's channel who are in no clan.
void ClanDesk::findCandidates(ChatUser& from, PacketReader& r) {
    const quint32 cookie = r.ReadDWORD();
    const QByteArray tag = tagText(r.ReadVOID(4));
    const bool letters = std::all_of(
        tag.begin(), tag.end(), [](char c) { return QChar::fromLatin1(c).isLetterOrNumber(); });
    PacketWriter w;
    w.WriteDWORD(cookie);
    if (clanOf(from.account)) {
        w.WriteBYTE(8);
    } else if (!letters) {
        w.WriteBYTE(10);
    } else if (clanByTag(tag)) {
        w.WriteBYTE(1);
    } else {
        QStringList names;
        if (from.channel)
            for (const ChatUser* u : from.channel->members())
                if (u != &from && !clanOf(u->account)) names << u->account;
        w.WriteBYTE(0);
        w.WriteBYTE(quint8(std::min<qsizetype>(names.size(), 255)));
        for (const QString& n : names.mid(0, 255))
            w.WriteSTRING(n);
    }
    send(from.account, 0x70, w.payload());
}

void ClanDesk::inviteMultiple(ChatUser& from, PacketReader& r) {
    Founding f;
    f.creator = from.account;
    f.cookie = r.ReadDWORD();
    f.name = r.ReadSTRING();
    f.tag = tagText(r.ReadVOID(4));
    const int count = r.ReadBYTE();
    for (int i = 0; i < count; ++i)
        f.invitees << r.ReadSTRING();
    const bool free = !clanOf(from.account) && !clanByTag(f.tag) && count > 0;
    const bool reachable = std::all_of(f.invitees.begin(), f.invitees.end(), [&](const QString& n) {
        return m_hub.find(n) && !clanOf(m_hub.find(n)->account);
    });
    if (!free || !reachable) return sendResult(from, 0x71, f.cookie, 5);
    PacketWriter w;
    w.WriteDWORD(f.cookie);
    w.WriteVOID(wireTag(f.tag));
    w.WriteSTRING(f.name);
    w.WriteSTRING(from.account);
    w.WriteBYTE(quint8(count));
    for (const QString& n : std::as_const(f.invitees))
        w.WriteSTRING(n);
    m_foundings.push_back(f);
    for (QString& n : f.invitees) {
        ChatUser* user = m_hub.find(n);
        n = user->account;
        if (dynamic_cast<Resident*>(user))
            m_foundings.back().accepted.insert(n.toLower());
        else
            send(n, 0x72, w.payload());
    }
    m_foundings.back().invitees = f.invitees;
    foundingAnswered(m_foundings.back(), {}, true);
}

void ClanDesk::foundingAnswered(Founding& f, const QString& account, bool yes) {
    ChatUser* creator = m_hub.find(f.creator);
    const auto drop = [&] {
        m_foundings.erase(std::find_if(m_foundings.begin(), m_foundings.end(),
                                       [&](const Founding& x) { return &x == &f; }));
    };
    if (!yes) {
        if (creator) sendResult(*creator, 0x71, f.cookie, 4);
        return drop();
    }
    if (!account.isEmpty()) f.accepted.insert(account.toLower());
    if (f.accepted.size() < f.invitees.size()) return;
    Clan clan;
    clan.tag = f.tag;
    clan.name = f.name;
    clan.members.push_back({f.creator, 4, false, {}});
    for (const QString& n : std::as_const(f.invitees))
        clan.members.push_back({n, 1, false, {}});
    m_clans.push_back(clan);
    if (creator) sendResult(*creator, 0x71, f.cookie, 0);
    drop();
    for (const Member& m : m_clans.back().members)
        sendInfo(m_clans.back(), m);
    presenceChanged();
}

void ClanDesk::answerInvitation(ChatUser& from, quint8 id, PacketReader& r) {
    r.ReadDWORD();
    const QByteArray tag = tagText(r.ReadVOID(4));
    const QString inviter = r.ReadSTRING();
    const bool yes = r.ReadBYTE() == kAccept;
    if (id == 0x72) {
        for (Founding& f : m_foundings)
            if (f.tag == tag && f.invitees.contains(from.account, Qt::CaseInsensitive))
                return foundingAnswered(f, from.account, yes);
        return;
    }
    const auto it = std::find_if(m_invitations.begin(), m_invitations.end(), [&](const auto& i) {
        return same(i.invitee, from.account) && same(i.inviter, inviter) && i.tag == tag;
    });
    if (it == m_invitations.end()) return;
    const Invitation invitation = *it;
    m_invitations.erase(it);
    Clan* clan = clanByTag(tag);
    if (!clan) return;
    if (ChatUser* who = m_hub.find(invitation.inviter))
        sendResult(*who, 0x77, invitation.inviterCookie, yes ? 0 : 4);
    if (!yes || clanOf(from.account)) return;
    clan->members.push_back({from.account, 0, false, {}});
    sendInfo(*clan, clan->members.back());
    presenceChanged();
}

void ClanDesk::disband(ChatUser& from, PacketReader& r) {
    const quint32 cookie = r.ReadDWORD();
    Clan* clan = clanOf(from.account);
    if (!clan || memberOf(*clan, from.account)->rank != 4) return sendResult(from, 0x73, cookie, 7);
    const std::vector<Member> members = clan->members;
    m_clans.erase(m_clans.begin() + (clan - m_clans.data()));
    sendResult(from, 0x73, cookie, 0);
    for (const Member& m : members)
        if (!same(m.account, from.account)) send(m.account, 0x76, QByteArray(1, '\1'));
}

void ClanDesk::makeChieftain(ChatUser& from, PacketReader& r) {
    const quint32 cookie = r.ReadDWORD();
    const QString name = r.ReadSTRING();
    Clan* clan = clanOf(from.account);
    Member* me = clan ? memberOf(*clan, from.account) : nullptr;
    Member* heir = clan ? memberOf(*clan, name) : nullptr;
    if (!me || me->rank != 4 || !heir || heir == me) return sendResult(from, 0x74, cookie, 1);
    sendResult(from, 0x74, cookie, 0);
    // Servers in use tell a change of chieftain by status notices alone, to the old chieftain
    // about itself too, rather than by a rank change.
    heir->rank = 4;
    me->rank = 2;
    broadcastStatus(*clan, *heir);
    broadcastStatus(*clan, *me);
}

void ClanDesk::invite(ChatUser& from, PacketReader& r) {
    const quint32 cookie = r.ReadDWORD();
    const QString target = r.ReadSTRING();
    quint8 result = 0;
    if (!invite(from.account, cookie, target, result)) sendResult(from, 0x77, cookie, result);
}

// True when the invitation has gone out (or a resident took it at once, answered here).
bool ClanDesk::invite(const QString& inviter, quint32 cookie, const QString& target,
                      quint8& result) {
    Clan* clan = clanOf(inviter);
    Member* me = clan ? memberOf(*clan, inviter) : nullptr;
    ChatUser* invitee = m_hub.find(target);
    result = 5;
    if (!me || me->rank < 3) return (result = 7), false;
    if (!invitee || clanOf(invitee->account)) return false;
    if (int(clan->members.size()) >= kClanLimit) return (result = 9), false;
    if (dynamic_cast<Resident*>(invitee)) {
        clan->members.push_back({invitee->account, 0, false, {}});
        presenceChanged();
        return (result = 0), false;
    }
    m_invitations.push_back({0x79, inviter, invitee->account, cookie, clan->tag, clan->name});
    PacketWriter w;
    w.WriteDWORD(cookie);
    w.WriteVOID(wireTag(clan->tag));
    w.WriteSTRING(clan->name);
    w.WriteSTRING(inviter);
    send(invitee->account, 0x79, w.payload());
    return true;
}

void ClanDesk::remove(Clan& clan, const QString& account) {
    const auto it = std::find_if(clan.members.begin(), clan.members.end(),
                                 [&](const Member& m) { return same(m.account, account); });
    const QString name = it->account;
    clan.members.erase(it);
    send(name, 0x76, QByteArray(1, '\1'));
    PacketWriter w;
    w.WriteSTRING(name);
    for (const Member& m : clan.members)
        send(m.account, 0x7E, w.payload());
}

void ClanDesk::removeMember(ChatUser& from, PacketReader& r) {
    const quint32 cookie = r.ReadDWORD();
    const QString name = r.ReadSTRING();
    Clan* clan = clanOf(from.account);
    Member* me = clan ? memberOf(*clan, from.account) : nullptr;
    Member* target = clan ? memberOf(*clan, name) : nullptr;
    // Anyone may leave but the chieftain; shamans remove those below them.
    const bool leaving = target && target == me && me->rank != 4;
    const bool allowed = target && me && me->rank >= 3 && target->rank < me->rank;
    if (!leaving && !allowed) return sendResult(from, 0x78, cookie, 7);
    sendResult(from, 0x78, cookie, 0);
    remove(*clan, name);
}

void ClanDesk::changeRank(ChatUser& from, PacketReader& r) {
    const quint32 cookie = r.ReadDWORD();
    const QString name = r.ReadSTRING();
    const quint8 rank = r.ReadBYTE();
    Clan* clan = clanOf(from.account);
    Member* me = clan ? memberOf(*clan, from.account) : nullptr;
    Member* target = clan ? memberOf(*clan, name) : nullptr;
    if (!me || me->rank < 3) return sendResult(from, 0x7A, cookie, 7);
    if (!target || target == me) return sendResult(from, 0x7A, cookie, 1);
    // A new peon keeps its rank for its first week.
    if (rank < 1 || rank >= me->rank || target->rank >= me->rank || target->rank == 0)
        return sendResult(from, 0x7A, cookie, 8);
    sendResult(from, 0x7A, cookie, 0);
    rankChanged(*clan, *target, rank, from.account);
}

void ClanDesk::setMotd(ChatUser& from, PacketReader& r) {
    r.ReadDWORD();
    const QString text = r.ReadSTRING();
    Clan* clan = clanOf(from.account);
    if (clan && memberOf(*clan, from.account)->rank >= 3) clan->motd = text;
}

void ClanDesk::sendMembers(ChatUser& from, PacketReader& r) {
    const quint32 cookie = r.ReadDWORD();
    Clan* clan = clanOf(from.account);
    PacketWriter w;
    w.WriteDWORD(cookie);
    const std::vector<Member> members = clan ? clan->members : std::vector<Member>{};
    w.WriteBYTE(quint8(members.size()));
    for (const Member& m : members) {
        w.WriteSTRING(m.account);
        w.WriteBYTE(m.rank);
        w.WriteBYTE(m.online ? 1 : 0);
        w.WriteSTRING(m.location);
    }
    send(from.account, 0x7D, w.payload());
}

bool ClanDesk::control(const QString& command, const QString& rest, QString& answer) {
    if (command != QLatin1String("clan")) return false;
    const QStringList words = rest.split(u' ', Qt::SkipEmptyParts);
    const QString verb = words.value(0).toLower();
    if (verb == QLatin1String("create") && words.size() >= 4) {
        const QByteArray tag = words[1].toLatin1();
        ChatUser* chief = m_hub.find(words[3]);
        if (clanByTag(tag)) return (answer = QStringLiteral("error: tag taken")), true;
        Clan clan{tag, words[2], {}, {}};
        for (int i = 3; i < words.size(); ++i) {
            ChatUser* u = m_hub.find(words[i]);
            const QString account = u ? u->account : words[i];
            if (clanOf(account))
                return (answer =
                            QStringLiteral("error: ") + account + QStringLiteral(" is in a clan")),
                       true;
            clan.members.push_back({account, quint8(i == 3 ? 4 : 1), false, {}});
        }
        m_clans.push_back(clan);
        if (chief) entered(*chief);
        presenceChanged();
        answer = QStringLiteral("ok");
        return true;
    }
    if (verb == QLatin1String("invite") && words.size() == 3) {
        quint8 result = 0;
        ChatUser* inviter = m_hub.find(words[1]);
        const bool sent = invite(inviter ? inviter->account : words[1], 0, words[2], result);
        answer = sent || result == 0 ? QStringLiteral("ok")
                                     : QStringLiteral("error: refused with %1").arg(result);
        return true;
    }
    if (verb == QLatin1String("members") && words.size() == 2) {
        const Clan* clan = clanByTag(words[1].toLatin1());
        answer = QStringLiteral("clan %1").arg(clan ? clan->members.size() : 0);
        if (clan) {
            for (const Member& m : clan->members)
                answer += QStringLiteral(" %1:%2").arg(m.account).arg(m.rank);
            answer += QStringLiteral(" motd:") + clan->motd;
        }
        return true;
    }
    answer = QStringLiteral("error: clan create TAG NAME CHIEFTAIN [MEMBER ...], clan invite "
                            "INVITER TARGET or clan members TAG");
    return true;
}

} // namespace sandbox
