#include "control/SteeringVerbs.h"

#include "chat/BotElement.h"
#include "commands/ChatInput.h"
#include "commands/CommandWrapper.h"
#include "control/ChatFeed.h"
#include "platform/SocketControl.h"
#include "platform/TickCount.h"
#include "session/DisconnectBot.h"
#include "session/ProfileLifecycle.h"
#include "session/SlotTable.h"

#include <QTime>

namespace {

SlotTable& table() {
    return SlotTable::instance();
}

VerbResult notRunning() {
    return VerbResult::refused(
        QStringLiteral("No Corvantide runs on this home; start one (corvantide --headless, or "
                       "the window) and try again."));
}

VerbResult notLoaded(const QString& name) {
    return VerbResult::refused(QStringLiteral("No profile named ") + Quoted(name) +
                               QStringLiteral(" is loaded; `corvantide status` lists the loaded "
                                              "ones."));
}

// The loaded slot of a profile, compared case-blind; 0 when none.
int loadedSlot(const QString& name) {
    return name.isEmpty() ? 0 : table().findProfile(name);
}

QString stateOf(int slot) {
    if (Bots(slot).Online()) return QStringLiteral("online");
    for (const SocketControl* socket : {&wsBNET(slot), &wsBNLS(slot)}) {
        const int state = socket->State();
        if (state != SocketControl::Closed && state != SocketControl::Error)
            return QStringLiteral("connecting");
    }
    return QStringLiteral("offline");
}

QString nextTry(int slot) {
    const BotElement& bot = Bots(slot);
    if (!bot.Reconnect.isArmed() || !bot.CanConnect) return QStringLiteral("-");
    const quint32 wait = bot.Reconnect.remaining(GetTickCount());
    return QTime::currentTime().addMSecs(int(wait)).toString(QStringLiteral("HH:mm:ss")) +
           QStringLiteral(" (in ") + ReconnectPlan::waitText(wait) + u')';
}

QString typedLinesGoTo() {
    const int current = table().CurrentIndex();
    return current > 0 ? QStringLiteral("Typed lines go to ") + Quoted(Bots(current).Profile()) +
                             u'.'
                       : QStringLiteral("Typed lines go nowhere: no profile is chosen.");
}

VerbResult status() {
    QList<QStringList> rows{{QStringLiteral("PROFILE"), QStringLiteral("STATE"),
                             QStringLiteral("CHANNEL"), QStringLiteral("USERS"),
                             QStringLiteral("PING"), QStringLiteral("NEXT RECONNECT")}};
    for (int i = 1; i <= table().highestIndex(); ++i) {
        const BotElement& bot = Bots(i);
        if (!bot.IsLoaded) continue;
        const bool online = bot.Online();
        rows.append({bot.Profile(), stateOf(i), online ? bot.Channel() : QStringLiteral("-"),
                     online ? QString::number(bot.Users.size()) : QStringLiteral("-"),
                     online ? QString::number(bot.MyPing()) + QStringLiteral(" ms")
                            : QStringLiteral("-"),
                     nextTry(i)});
    }
    if (rows.size() == 1)
        return VerbResult::done(
            QStringLiteral("No profile is loaded; load one with: corvantide load NAME"));
    std::vector<qsizetype> widths(size_t(rows[0].size()), 0);
    for (const QStringList& row : rows)
        for (qsizetype c = 0; c < row.size(); ++c)
            widths[size_t(c)] = std::max(widths[size_t(c)], row[c].size());
    QStringList lines;
    for (const QStringList& row : rows) {
        QString line;
        for (qsizetype c = 0; c < row.size(); ++c)
            line += c + 1 < row.size() ? row[c].leftJustified(widths[size_t(c)] + 2) : row[c];
        lines.append(line);
    }
    lines.append(typedLinesGoTo());
    return VerbResult::done(lines.join(u'\n'));
}

VerbResult load(const QString& name) {
    const QString stored = ProfileLifecycle::FindProfile(name);
    if (stored.isEmpty())
        return VerbResult::refused(QStringLiteral("No profile named ") + Quoted(name) +
                                   QStringLiteral("; `corvantide profile list` shows them."));
    if (loadedSlot(stored) > 0)
        return VerbResult::refused(QStringLiteral("Cannot load profile (") + stored +
                                   QStringLiteral(") it is already loaded."));
    const int slot = table().LoadProfile(stored);
    return VerbResult::done(QStringLiteral("Loaded ") + Quoted(stored) +
                            QStringLiteral("; connect it with: corvantide connect ") + stored +
                            QStringLiteral(" (slot ") + QString::number(slot) + u')');
}

// A verb on a loaded profile: `act` does it and gives the answer.
template <typename Act> VerbResult onLoaded(const QString& name, Act act) {
    const int slot = loadedSlot(name);
    if (slot == 0) return notLoaded(name);
    return act(slot, Bots(slot).Profile());
}

VerbResult unload(const QString& name) {
    return onLoaded(name, [](int, const QString& profile) {
        table().UnloadProfile(profile);
        return VerbResult::done(QStringLiteral("Unloaded ") + Quoted(profile) + u'.');
    });
}

VerbResult connectProfile(const QString& name, bool again) {
    return onLoaded(name, [again](int slot, const QString& profile) {
        table().ConnectBot(slot);
        return VerbResult::done((again ? QStringLiteral("Reconnecting ")
                                       : QStringLiteral("Connecting ")) +
                                Quoted(profile) +
                                QStringLiteral("; `corvantide tail ") + profile +
                                QStringLiteral("` follows it."));
    });
}

VerbResult disconnectProfile(const QString& name) {
    return onLoaded(name, [](int slot, const QString& profile) {
        DisconnectBot(slot);
        return VerbResult::done(QStringLiteral("Disconnected ") + Quoted(profile) + u'.');
    });
}

VerbResult use(const QStringList& args) {
    if (args.size() == 1) return VerbResult::done(typedLinesGoTo());
    return onLoaded(args[1], [](int slot, const QString&) {
        table().SelectBot(slot);
        return VerbResult::done(typedLinesGoTo());
    });
}

// The line goes in as typed into the profile's input box; what the bot writes
// in the profile's views meanwhile (a bot command's answer) is the verb's
// output.
VerbResult send(const QStringList& args) {
    if (args.size() < 3) return VerbResult::usage(QStringLiteral("send PROFILE LINE"));
    const QString line = args.mid(2).join(u' ');
    return onLoaded(args[1], [&line](int slot, const QString& profile) {
        if (line.trimmed().isEmpty()) return VerbResult::usage(QStringLiteral("send PROFILE LINE"));
        const bool online = Bots(slot).Online();
        if (!online && !line.startsWith(u'/'))
            return VerbResult::refused(Quoted(profile) + QStringLiteral(
                                                             " is not online; nothing was sent. "
                                                             "Connect it with: corvantide "
                                                             "connect ") +
                                       profile);
        ChatFeed& feed = ChatFeed::instance();
        feed.flush();
        QStringList written;
        const QMetaObject::Connection collect =
            QObject::connect(&feed, &ChatFeed::linesWritten, [&](const QList<FeedLine>& lines) {
                for (const FeedLine& l : lines)
                    if (l.slot == slot) written.append(l.text());
            });
        bool taken = true;
        if (online)
            SendUserLine(slot, line);
        else
            taken = CommandWrapper().SearchCommands(slot, {}, line.mid(1), true);
        feed.flush();
        QObject::disconnect(collect);
        if (!taken)
            return VerbResult::refused(Quoted(profile) +
                                       QStringLiteral(" is not online; nothing was sent."));
        if (!written.isEmpty()) return VerbResult::done(written.join(u'\n'));
        return VerbResult::done(QStringLiteral("Sent to ") + Quoted(profile) + u'.');
    });
}

struct Verb {
    const char* word;
    int words; // with the verb's own; 0 for any number
    VerbResult (*run)(const QStringList& args);
};

const Verb kVerbs[] = {
    {"status", 1, [](const QStringList&) { return status(); }},
    {"send", 0, send},
    {"load", 2, [](const QStringList& a) { return load(a[1]); }},
    {"unload", 2, [](const QStringList& a) { return unload(a[1]); }},
    {"connect", 2, [](const QStringList& a) { return connectProfile(a[1], false); }},
    {"reconnect", 2, [](const QStringList& a) { return connectProfile(a[1], true); }},
    {"disconnect", 2, [](const QStringList& a) { return disconnectProfile(a[1]); }},
    {"use", 0, use},
};

} // namespace

namespace SteeringVerbs {

bool IsVerb(const QString& word) {
    if (word == u"tail") return true;
    for (const Verb& verb : kVerbs)
        if (word == QLatin1String(verb.word)) return true;
    return false;
}

VerbResult Run(const QStringList& args) {
    const QString word = args.value(0);
    for (const Verb& verb : kVerbs) {
        if (word != QLatin1String(verb.word)) continue;
        if (verb.words > 0 && args.size() != verb.words)
            return VerbResult::usage(verb.words == 1 ? word : word + QStringLiteral(" NAME"));
        if (!table().IsLoaded) return notRunning();
        return verb.run(args);
    }
    if (word == u"tail" && !table().IsLoaded) return notRunning();
    return VerbResult::usage(QStringLiteral("status|send|tail|load|unload|connect|disconnect|"
                                            "reconnect|use ..."));
}

QString Help() {
    return QStringLiteral(
        "Steering the bot that runs on this home (typed on its own terminal as //WORDS):\n"
        "  status                          loaded profiles: state, channel, users, ping, next "
        "reconnect\n"
        "  send PROFILE LINE               type LINE into PROFILE as its input box would\n"
        "  tail [PROFILE] [-n N]           follow PROFILE's channel and whispers (the console "
        "without\n"
        "                                  one), the last N lines first (10), until Ctrl+C\n"
        "  load NAME, unload NAME          put a stored profile into a tab, take it out\n"
        "  connect NAME, disconnect NAME, reconnect NAME\n"
        "  use NAME                        the profile lines typed on the bot's terminal go "
        "to\n");
}

QString TerminalHelp() {
    return QStringLiteral(
        "On the terminal of a bot without a window (corvantide --headless), a typed line\n"
        "goes to the chosen profile as the input box would send it. Lines that start\n"
        "with // are the terminal's own and never reach the server: // followed by any\n"
        "verb of `corvantide --help`.\n"
        "  //use NAME          type into NAME from now on (the prompt shows which)\n"
        "  //status            the loaded profiles\n"
        "  //load NAME, //unload NAME, //connect NAME, //disconnect NAME, //reconnect NAME\n"
        "  //send NAME LINE    a line into another profile\n"
        "  //profile ..., //config ..., //database ...   the settings verbs\n"
        "  //help              this list\n");
}

QStringList TerminalWords() {
    QStringList words{QStringLiteral("//help"), QStringLiteral("//profile"),
                      QStringLiteral("//config"), QStringLiteral("//database")};
    for (const Verb& verb : kVerbs)
        words.append(QStringLiteral("//") + QLatin1String(verb.word));
    return words;
}

} // namespace SteeringVerbs
