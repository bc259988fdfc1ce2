#include "sandbox/ChatHub.h"

#include "sandbox/AccountStore.h"
#include "sandbox/Products.h"

namespace sandbox {
namespace {

constexpr int kLongestChannelName = 31;

QString plainName(const QString& name) {
    const qsizetype star = name.indexOf(QLatin1Char('*'));
    return (star < 0 ? name : name.mid(star + 1)).toLower();
}

} // namespace

const QString& ChatHub::voidName() {
    static const QString name = QStringLiteral("The Void");
    return name;
}

ChatHub::ChatHub(AccountStore& store, int channelLimit, QObject* parent)
    : QObject(parent), m_store(store), m_channelLimit(channelLimit) {}

ChatHub::~ChatHub() {
    for (ChatUser* user : std::as_const(m_users))
        user->channel = nullptr;
}

QStringList ChatHub::channelList(const Product* product) const {
    QStringList list;
    if (product) list.append(QLatin1String(product->homeChannel));
    for (const QString& c : m_publicChannels)
        if (!list.contains(c, Qt::CaseInsensitive)) list.append(c);
    return list;
}

void ChatHub::enter(ChatUser& user, const QString& account) {
    user.account = account;
    QString name = account;
    for (int n = 2; m_users.contains(name.toLower()); ++n)
        name = account + QLatin1Char('#') + QString::number(n);
    user.m_name = name;
    m_users.insert(name.toLower(), &user);
    Q_EMIT presenceChanged();
}

void ChatHub::exit(ChatUser& user) {
    if (!isInChat(user)) return;
    leaveChannel(user);
    m_users.remove(user.m_name.toLower());
    Q_EMIT presenceChanged();
}

bool ChatHub::isInChat(const ChatUser& user) const {
    return !user.m_name.isEmpty() && m_users.value(user.m_name.toLower()) == &user;
}

ChatUser* ChatHub::find(const QString& name) const {
    return m_users.value(plainName(name));
}

QList<ChatUser*> ChatHub::users() const {
    return m_users.values();
}

ChannelRoom* ChatHub::room(const QString& name) const {
    const auto it = m_rooms.find(name.toLower());
    return it == m_rooms.end() ? nullptr : it->second.get();
}

ChannelRoom::Kind ChatHub::kindOf(const QString& channel, const Product*& product) const {
    product = nullptr;
    if (channel.compare(voidName(), Qt::CaseInsensitive) == 0) return ChannelRoom::Kind::Void;
    for (const Product* p : allProducts()) {
        if (channel.compare(QLatin1String(p->homeChannel), Qt::CaseInsensitive) == 0) {
            product = p;
            return ChannelRoom::Kind::Product;
        }
    }
    return ChannelRoom::Kind::Private;
}

bool ChatHub::join(ChatUser& user, const QString& channel, JoinMode mode) {
    QString name = mode == JoinMode::First && user.product
                       ? QString::fromLatin1(user.product->homeChannel)
                       : channel.simplified().left(kLongestChannelName);
    if (name.isEmpty()) {
        error(user, QStringLiteral("What channel do you want to join?"));
        return false;
    }
    const Product* product = nullptr;
    const ChannelRoom::Kind kind = kindOf(name, product);
    if (kind == ChannelRoom::Kind::Void)
        name = voidName();
    else if (product)
        name = QString::fromLatin1(product->homeChannel);
    ChannelRoom* target = room(name);
    // Product channels and The Void always exist; others only while someone is in them.
    if (!target && mode == JoinMode::NoCreate && kind == ChannelRoom::Kind::Private) {
        send(user, event::ChannelMissing, nullptr, name);
        return false;
    }
    if (product && product != user.product) {
        send(user, event::ChannelRestricted, nullptr, name);
        return false;
    }
    const QStringList bans = target ? target->bans() : m_store.channelBans(name);
    if (bans.contains(user.account, Qt::CaseInsensitive) ||
        bans.contains(user.name(), Qt::CaseInsensitive)) {
        error(user, QStringLiteral("You are banned from that channel."));
        return false;
    }
    if (target && target == user.channel) {
        leaveChannel(user);
        target = room(name);
    } else if (target && m_channelLimit > 0 && kind != ChannelRoom::Kind::Void &&
               target->size() >= m_channelLimit) {
        send(user, event::ChannelFull, nullptr, name);
        return false;
    } else {
        leaveChannel(user);
    }
    if (!target) {
        auto created = std::make_unique<ChannelRoom>(name, kind, bans);
        target = created.get();
        m_rooms.emplace(name.toLower(), std::move(created));
    }

    target->add(&user);
    user.channel = target;
    if (kind == ChannelRoom::Kind::Private && target->size() == 1) user.flags |= userflag::Operator;

    ChatEvent joined{event::ChannelJoined, target->flags(), 0, user.nameFor(user), target->name()};
    user.deliver(joined);
    ++m_delivered;
    if (kind == ChannelRoom::Kind::Void) {
        send(user, event::ShowUser, &user, user.statstring);
    } else {
        for (ChatUser* member : target->members())
            send(user, event::ShowUser, member, member->statstring);
        for (ChatUser* member : target->members())
            if (member != &user) send(*member, event::Join, &user, user.statstring);
    }
    Q_EMIT presenceChanged();
    return true;
}

void ChatHub::leaveChannel(ChatUser& user) {
    ChannelRoom* from = user.channel;
    if (!from) return;
    from->remove(&user);
    user.channel = nullptr;
    const bool wasOperator = user.flags & userflag::Operator;
    user.flags &= ~quint32(userflag::Operator);
    announceLeave(*from, user);
    if (wasOperator && from->kind() == ChannelRoom::Kind::Private) {
        ChatUser* heir = from->heir.isEmpty() ? nullptr : find(from->heir);
        from->heir.clear();
        if (heir && heir->channel == from) updateFlags(*heir, heir->flags | userflag::Operator);
    }
    if (from->isEmpty()) m_rooms.erase(from->name().toLower());
    Q_EMIT presenceChanged();
}

void ChatHub::announceLeave(ChannelRoom& room, ChatUser& user) {
    if (room.kind() == ChannelRoom::Kind::Void) return;
    for (ChatUser* member : room.members())
        send(*member, event::Leave, &user, QString());
}

void ChatHub::talk(ChatUser& from, const QString& text) {
    if (!from.channel || from.channel->kind() == ChannelRoom::Kind::Void) return;
    for (ChatUser* member : from.channel->members())
        if (member != &from && !member->ignores(from)) send(*member, event::Talk, &from, text);
}

void ChatHub::emote(ChatUser& from, const QString& text) {
    if (!from.channel) return;
    if (from.channel->kind() == ChannelRoom::Kind::Void) {
        send(from, event::Emote, &from, text);
        return;
    }
    for (ChatUser* member : from.channel->members())
        if (!member->ignores(from)) send(*member, event::Emote, &from, text);
}

void ChatHub::whisper(ChatUser& from, const QString& target, const QString& text) {
    ChatUser* to = find(target);
    if (!to) {
        error(from, QStringLiteral("That user is not logged on."));
        return;
    }
    if (to->dnd) {
        info(from, QStringLiteral("%1 is unavailable (%2)").arg(to->nameFor(from), to->dndMessage));
        return;
    }
    send(from, event::WhisperTo, to, text);
    if (!to->ignores(from)) send(*to, event::WhisperFrom, &from, text);
    if (to->away)
        info(from, QStringLiteral("%1 is away (%2)").arg(to->nameFor(from), to->awayMessage));
}

void ChatHub::updateFlags(ChatUser& user, quint32 flags) {
    user.flags = flags;
    if (!user.channel || user.channel->kind() == ChannelRoom::Kind::Void) {
        send(user, event::FlagsUpdate, &user, user.statstring);
        return;
    }
    for (ChatUser* member : user.channel->members())
        send(*member, event::FlagsUpdate, &user, user.statstring);
}

void ChatHub::revealVoid(ChatUser& user) {
    if (!user.channel || user.channel->kind() != ChannelRoom::Kind::Void) return;
    for (ChatUser* member : user.channel->members())
        if (member != &user) send(user, event::ShowUser, member, member->statstring);
}

void ChatHub::info(ChatUser& to, const QString& text) {
    send(to, event::Info, nullptr, text);
}

void ChatHub::error(ChatUser& to, const QString& text) {
    send(to, event::Error, nullptr, text);
}

void ChatHub::broadcast(const QString& text) {
    for (ChatUser* user : users())
        send(*user, event::Broadcast, nullptr, text);
}

void ChatHub::send(ChatUser& to, quint32 id, const ChatUser* about, const QString& text) {
    ChatEvent e;
    e.id = id;
    e.text = text;
    if (about) {
        e.flags = about->flagsFor(to);
        e.ping = about->ping;
        e.name = about->nameFor(to);
    }
    ++m_delivered;
    to.deliver(e);
}

void ChatHub::saveBans(const ChannelRoom& room) {
    m_store.setChannelBans(room.name(), room.bans());
}

} // namespace sandbox
