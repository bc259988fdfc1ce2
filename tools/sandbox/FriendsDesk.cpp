#include "sandbox/FriendsDesk.h"

#include "sandbox/BncsSession.h"
#include "sandbox/ChannelRoom.h"
#include "sandbox/ChatHub.h"
#include "sandbox/Products.h"
#include "session/PacketWriter.h"

namespace sandbox {
namespace {

constexpr int kFriendsLimit = 25;

enum Location : quint8 { Offline = 0, NotInChat = 1, InChat = 2 };

quint32 productId(const ChatUser& user) {
    if (!user.product) return 0;
    const QByteArray code(user.product->code);
    return quint32(quint8(code[0])) << 24 | quint32(quint8(code[1])) << 16 |
           quint32(quint8(code[2])) << 8 | quint8(code[3]);
}

} // namespace

FriendsDesk::FriendsDesk(ChatHub& hub, QObject* parent) : QObject(parent), m_hub(hub) {
    connect(&m_hub, &ChatHub::presenceChanged, this, &FriendsDesk::presenceChanged);
}

FriendsDesk::Seen FriendsDesk::seen(const ChatUser&, const QString& name) const {
    const ChatUser* user = m_hub.find(name);
    if (!user) return {};
    if (!user->channel) return {NotInChat, {}};
    return {InChat, user->channel->name()};
}

// Account, status (1 when the friendship is mutual), location, product, where.
QByteArray FriendsDesk::record(const ChatUser& owner, const QString& name) const {
    const ChatUser* user = m_hub.find(name);
    const bool mutual =
        m_friends.value(name.toLower()).contains(owner.account, Qt::CaseInsensitive);
    const Seen where = seen(owner, name);
    PacketWriter w;
    w.WriteSTRING(name);
    w.WriteBYTE(mutual ? 1 : 0);
    w.WriteBYTE(where.location);
    w.WriteDWORD(user ? productId(*user) : 0);
    w.WriteSTRING(where.where);
    return w.payload();
}

void FriendsDesk::send(ChatUser& user, quint8 id, const QByteArray& payload) {
    if (auto* session = dynamic_cast<BncsSession*>(&user)) session->sendRaw(id, payload);
}

void FriendsDesk::sendList(ChatUser& user) {
    const QStringList friends = m_friends.value(user.account.toLower());
    QByteArray payload(1, char(friends.size()));
    for (const QString& name : friends)
        payload += record(user, name);
    send(user, 0x65, payload);
}

bool FriendsDesk::command(ChatUser& user, const QString& line) {
    const QStringList words = line.split(u' ', Qt::SkipEmptyParts);
    const QString word = words.value(0).toLower();
    if (word != QLatin1String("/f") && word != QLatin1String("/friends")) return false;
    const QString verb = words.value(1).toLower();
    const QString name = words.value(2);
    if ((verb == QLatin1String("a") || verb == QLatin1String("add")) && !name.isEmpty())
        add(user, name);
    else if ((verb == QLatin1String("r") || verb == QLatin1String("remove")) && !name.isEmpty())
        remove(user, name);
    else if ((verb == QLatin1String("p") || verb == QLatin1String("promote")) && !name.isEmpty())
        promote(user, name);
    else if (verb == QLatin1String("l") || verb == QLatin1String("list"))
        list(user);
    else
        m_hub.error(user, QStringLiteral("Use /f a NAME, /f r NAME, /f p NAME or /f l."));
    return true;
}

void FriendsDesk::add(ChatUser& user, const QString& name) {
    QStringList& friends = m_friends[user.account.toLower()];
    const ChatUser* known = m_hub.find(name);
    const QString shown = known ? known->account : name;
    if (friends.contains(shown, Qt::CaseInsensitive))
        return m_hub.error(user, shown + QStringLiteral(" is already on your friends list!"));
    if (friends.size() >= kFriendsLimit)
        return m_hub.error(user, QStringLiteral("Your friends list is full."));
    friends << shown;
    m_lastSeen.insert(user.account.toLower() + u'\n' + shown.toLower(), seen(user, shown));
    m_hub.info(user, QStringLiteral("Added ") + shown + QStringLiteral(" to your friends list."));
    send(user, 0x67, record(user, shown));
}

void FriendsDesk::remove(ChatUser& user, const QString& name) {
    QStringList& friends = m_friends[user.account.toLower()];
    qsizetype at = -1;
    for (qsizetype i = 0; i < friends.size(); ++i)
        if (friends[i].compare(name, Qt::CaseInsensitive) == 0) at = i;
    if (at < 0) return m_hub.error(user, name + QStringLiteral(" was not in your friends list."));
    const QString shown = friends.takeAt(at);
    m_hub.info(user,
               QStringLiteral("Removed ") + shown + QStringLiteral(" from your friends list."));
    send(user, 0x68, QByteArray(1, char(at)));
}

void FriendsDesk::promote(ChatUser& user, const QString& name) {
    QStringList& friends = m_friends[user.account.toLower()];
    for (qsizetype i = 1; i < friends.size(); ++i) {
        if (friends[i].compare(name, Qt::CaseInsensitive) != 0) continue;
        friends.move(i, i - 1);
        m_hub.info(user, QStringLiteral("Promoted ") + friends[i - 1] +
                             QStringLiteral(" in your friends list."));
        const char move[2] = {char(i), char(i - 1)};
        return send(user, 0x69, QByteArray(move, 2));
    }
    m_hub.error(user, QStringLiteral("Cannot promote ") + name + u'.');
}

void FriendsDesk::list(ChatUser& user) {
    const QStringList friends = m_friends.value(user.account.toLower());
    m_hub.info(user, QStringLiteral("Your friends are:"));
    for (qsizetype i = 0; i < friends.size(); ++i) {
        const Seen where = seen(user, friends[i]);
        const QString state = where.location == Offline ? QStringLiteral("offline")
                              : where.location == InChat
                                  ? QStringLiteral("in channel ") + where.where
                                  : QStringLiteral("not in chat");
        m_hub.info(user, QStringLiteral("%1: %2, %3").arg(i + 1).arg(friends[i], state));
    }
}

// Owners in chat hear of each friend whose place changed since they last heard.
void FriendsDesk::presenceChanged() {
    for (auto it = m_friends.constBegin(); it != m_friends.constEnd(); ++it) {
        ChatUser* owner = m_hub.find(it.key());
        if (!owner) continue;
        for (qsizetype i = 0; i < it->size(); ++i) {
            const QString& name = it->at(i);
            const Seen now = seen(*owner, name);
            Seen& last = m_lastSeen[it.key() + u'\n' + name.toLower()];
            if (now.location == last.location && now.where == last.where) continue;
            last = now;
            const ChatUser* user = m_hub.find(name);
            PacketWriter w;
            w.WriteBYTE(quint8(i));
            w.WriteBYTE(now.location);
            w.WriteBYTE(0);
            w.WriteDWORD(user ? productId(*user) : 0);
            w.WriteSTRING(now.where);
            send(*owner, 0x66, w.payload());
        }
    }
}

} // namespace sandbox
