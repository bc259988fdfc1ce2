#include "sandbox/ChatCommands.h"

#include "sandbox/ChatHub.h"
#include "sandbox/Products.h"

#include <functional>
#include <map>

namespace sandbox::chatcommands {
namespace {

// A command line cut into its word and the rest.
struct Line {
    QString word; // lower case, without the slash
    QString rest;

    // The next blank-separated word of the rest, taken off it.
    QString take() {
        rest = rest.trimmed();
        const qsizetype blank = rest.indexOf(QLatin1Char(' '));
        const QString first = blank < 0 ? rest : rest.left(blank);
        rest = blank < 0 ? QString() : rest.mid(blank + 1);
        return first;
    }
};

class Commands {
public:
    Commands(ChatHub& hub, ChatUser& user) : hub(hub), user(user) {}

    void whisper(Line& l) {
        const QString target = l.take();
        if (target.isEmpty() || l.rest.isEmpty())
            return hub.error(user, QStringLiteral("What do you want to say?"));
        hub.whisper(user, target, l.rest);
    }

    void emote(Line& l) { hub.emote(user, l.rest); }

    void join(Line& l) { hub.join(user, l.rest, ChatHub::JoinMode::Forced); }

    void rejoin(Line&) {
        if (user.channel) hub.join(user, user.channel->name(), ChatHub::JoinMode::Forced);
    }

    void kick(Line& l) { removeFromChannel(l, false); }
    void ban(Line& l) { removeFromChannel(l, true); }

    void unban(Line& l) {
        const QString target = l.take();
        if (!isOperator()) return;
        if (!user.channel->unban(plain(target)))
            return hub.error(user, QStringLiteral("That user is not banned."));
        hub.saveBans(*user.channel);
        tellChannel(QStringLiteral("%1 was unbanned by %2.").arg(plain(target), user.name()));
    }

    void designate(Line& l) {
        if (!isOperator()) return;
        ChatUser* heir = inMyChannel(l.take());
        if (!heir) return;
        user.channel->heir = heir->name();
        hub.info(user, QStringLiteral("%1 is your new designated heir.").arg(heir->nameFor(user)));
    }

    void ignore(Line& l) {
        ChatUser* target = loggedOn(l.take());
        if (!target) return;
        if (target == &user) return hub.error(user, QStringLiteral("You can't squelch yourself."));
        user.ignoring.insert(target->name().toLower());
        showFlags(*target);
        hub.info(user, QStringLiteral("%1 has been squelched.").arg(target->nameFor(user)));
    }

    void unignore(Line& l) {
        ChatUser* target = loggedOn(l.take());
        if (!target) return;
        if (target == &user) return hub.revealVoid(user);
        user.ignoring.remove(target->name().toLower());
        showFlags(*target);
        hub.info(user, QStringLiteral("%1 has been unsquelched.").arg(target->nameFor(user)));
    }

    void who(Line& l) {
        const QString name = l.rest.trimmed();
        const ChannelRoom* room = name.isEmpty() ? user.channel : hub.room(name);
        if (!room || room->kind() == ChannelRoom::Kind::Void)
            return hub.error(user, QStringLiteral("That channel does not exist."));
        hub.info(user, QStringLiteral("Users in channel %1:").arg(room->name()));
        const auto& members = room->members();
        for (size_t i = 0; i < members.size(); i += 2) {
            QString line = members[i]->nameFor(user);
            if (i + 1 < members.size())
                line += QStringLiteral(", ") + members[i + 1]->nameFor(user);
            hub.info(user, line);
        }
    }

    void whoami(Line&) {
        hub.info(user, QStringLiteral("You are %1, using %2%3.")
                           .arg(user.nameFor(user), productTitle(user), whereabouts(user)));
    }

    void whois(Line& l) {
        if (ChatUser* target = loggedOn(l.take()))
            hub.info(user,
                     QStringLiteral("%1 is using %2%3.")
                         .arg(target->nameFor(user), productTitle(*target), whereabouts(*target)));
    }

    void away(Line& l) {
        mark(l, user.away, user.awayMessage, QStringLiteral("You are now marked as being away."),
             QStringLiteral("You are no longer marked as away."));
    }

    void dnd(Line& l) {
        mark(l, user.dnd, user.dndMessage, QStringLiteral("Do Not Disturb mode engaged."),
             QStringLiteral("Do Not Disturb mode cancelled."));
    }

    void help(Line&) {
        for (const char* line : {
                 "Chat commands:",
                 "/whisper /w /msg /m, /emote /me, /join /j, /rejoin, /who, /whoami, /whois,",
                 "/away, /dnd, /ignore /squelch, /unignore /unsquelch,",
                 "/ban, /unban, /kick, /designate (channel operators)",
             })
            hub.info(user, QString::fromLatin1(line));
    }

private:
    static QString plain(const QString& name) {
        const qsizetype star = name.indexOf(QLatin1Char('*'));
        return star < 0 ? name : name.mid(star + 1);
    }

    static QString productTitle(const ChatUser& u) {
        return u.product ? QString::fromLatin1(u.product->title) : QStringLiteral("a chat client");
    }

    static QString whereabouts(const ChatUser& u) {
        return u.channel ? QStringLiteral(" in channel %1").arg(u.channel->name()) : QString();
    }

    bool isOperator() {
        if (user.channel && (user.flags & userflag::Operator)) return true;
        hub.error(user, QStringLiteral("You are not a channel operator."));
        return false;
    }

    ChatUser* loggedOn(const QString& name) {
        ChatUser* target = name.isEmpty() ? nullptr : hub.find(name);
        if (!target) hub.error(user, QStringLiteral("That user is not logged on."));
        return target;
    }

    ChatUser* inMyChannel(const QString& name) {
        ChatUser* target = name.isEmpty() ? nullptr : hub.find(name);
        if (!target || target->channel != user.channel) {
            hub.error(user, QStringLiteral("That user is not in this channel."));
            return nullptr;
        }
        return target;
    }

    // /away and /dnd: with a message, or without while clear, the mark is set; without a
    // message while set, it is cleared.
    void mark(Line& l, bool& set, QString& message, const QString& on, const QString& off) {
        const QString given = l.rest.trimmed();
        if (set && given.isEmpty()) {
            set = false;
            return hub.info(user, off);
        }
        set = true;
        message = given.isEmpty() ? QStringLiteral("Not available") : given;
        hub.info(user, on);
    }

    void tellChannel(const QString& text) {
        for (ChatUser* member : user.channel->members())
            hub.info(*member, text);
    }

    void showFlags(ChatUser& target) {
        if (target.channel == user.channel)
            hub.send(user, event::FlagsUpdate, &target, target.statstring);
    }

    // Kick or ban: an operator can't do either to another operator. The one put out lands in
    // The Void, where the kicked client finds its way back by itself.
    void removeFromChannel(Line& l, bool banning) {
        const QString name = l.take();
        const QString reason = l.rest.trimmed();
        if (!isOperator() || name.isEmpty()) return;
        ChatUser* target = hub.find(name);
        const bool present = target && target->channel == user.channel;
        if (!banning && !present)
            return hub.error(user, QStringLiteral("That user is not in this channel."));
        if (present && (target->flags & userflag::Operator))
            return hub.error(user, banning ? QStringLiteral("You can't ban a channel operator.")
                                           : QStringLiteral("You can't kick a channel operator."));
        const QString shown = present ? target->name() : plain(name);
        const QString because = reason.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(reason);
        if (banning) {
            user.channel->ban(present ? target->account : shown);
            hub.saveBans(*user.channel);
            tellChannel(QStringLiteral("%1 was banned by %2%3.").arg(shown, user.name(), because));
        } else {
            tellChannel(QStringLiteral("%1 was kicked out of the channel by %2%3.")
                            .arg(shown, user.name(), because));
        }
        if (present) {
            hub.info(*target, QStringLiteral("%1 kicked you out of the channel!").arg(user.name()));
            hub.join(*target, ChatHub::voidName(), ChatHub::JoinMode::Forced);
        }
    }

    ChatHub& hub;
    ChatUser& user;
};

using Handler = void (Commands::*)(Line&);

const std::map<QString, Handler>& table() {
    static const std::map<QString, Handler> commands{
        {"w", &Commands::whisper},
        {"whisper", &Commands::whisper},
        {"m", &Commands::whisper},
        {"msg", &Commands::whisper},
        {"me", &Commands::emote},
        {"emote", &Commands::emote},
        {"join", &Commands::join},
        {"j", &Commands::join},
        {"rejoin", &Commands::rejoin},
        {"kick", &Commands::kick},
        {"ban", &Commands::ban},
        {"unban", &Commands::unban},
        {"designate", &Commands::designate},
        {"ignore", &Commands::ignore},
        {"squelch", &Commands::ignore},
        {"unignore", &Commands::unignore},
        {"unsquelch", &Commands::unignore},
        {"who", &Commands::who},
        {"whoami", &Commands::whoami},
        {"whois", &Commands::whois},
        {"where", &Commands::whois},
        {"whereis", &Commands::whois},
        {"away", &Commands::away},
        {"dnd", &Commands::dnd},
        {"help", &Commands::help},
        {"?", &Commands::help},
    };
    return commands;
}

} // namespace

void run(ChatHub& hub, ChatUser& user, const QString& line) {
    const QString text = line.left(kLongestLine);
    if (text.isEmpty()) return;
    if (!text.startsWith(QLatin1Char('/'))) return hub.talk(user, text);
    Line l;
    l.rest = text.mid(1);
    l.word = l.take().toLower();
    const auto it = table().find(l.word);
    if (it == table().end())
        return hub.error(
            user, QStringLiteral("That is not a valid command. Type /help or /? for more info."));
    Commands commands(hub, user);
    (commands.*(it->second))(l);
}

} // namespace sandbox::chatcommands
