#include "app/TerminalSession.h"

#include "app/HeadlessConsole.h"
#include "chat/BotElement.h"
#include "chat/TimedEvents.h"
#include "commands/ChatInput.h"
#include "commands/CommandWrapper.h"
#include "control/SteeringVerbs.h"
#include "control/TerminalVerbs.h"
#include "desktop/WebSite.h"
#include "presentation/ChatWriter.h"
#include "session/ProfileLifecycle.h"
#include "session/SlotTable.h"

#include <QDir>
#include <QProcess>
#include <QRegularExpression>

namespace {

constexpr QLatin1String kLocal("//");

QString currentProfile() {
    const int index = SlotTable::instance().CurrentIndex();
    return index > 0 ? Bots(index).Profile() : QString();
}

// The words after the verbs that name a loaded profile, or one to load.
bool takesLoadedProfile(const QString& verb) {
    for (const char* word : {"//unload", "//connect", "//disconnect", "//reconnect", "//use",
                             "//send"})
        if (verb == QLatin1String(word)) return true;
    return false;
}

} // namespace

TerminalSession::TerminalSession(HeadlessConsole& console, WebSite& site) : m_console(console) {
    SlotTable& table = SlotTable::instance();
    // Lines typed on the terminal need a profile: the first loaded one takes
    // them until the user chooses another.
    connect(&table, &SlotTable::slotLoaded, this, [](int slot) {
        if (SlotTable::instance().CurrentIndex() == 0) SlotTable::instance().SelectBot(slot);
    });
    connect(&table, &SlotTable::activeSlotChanged, this, &TerminalSession::activeSlotChanged);
    connect(&table, &SlotTable::slotRenamed, this, &TerminalSession::activeSlotChanged);
    connect(&TimedEvents::instance(), &TimedEvents::statusChanged, this,
            &TerminalSession::statusChanged);
    connect(&site, &WebSite::usersOnlineChanged, this, [this](const QString& label) {
        if (!label.isEmpty()) m_console.printNote(label);
    });
    activeSlotChanged();
}

void TerminalSession::activeSlotChanged() {
    const QString target = currentProfile();
    m_console.setPrompt(target.isEmpty() ? QStringLiteral("> ")
                                         : u'[' + target + QStringLiteral("]> "));
    if (target == m_target) return;
    m_target = target;
    if (!target.isEmpty()) m_console.printNote(QStringLiteral("Typed lines go to [") + target +
                                               QStringLiteral("]; //use NAME chooses another."));
}

void TerminalSession::statusChanged() {
    // Between the logon and the first join the profile is online in no
    // channel yet: the join's own line follows at once.
    const int shown = SlotTable::instance().CurrentIndex();
    if (shown > 0 && Bots(shown).Online() && Bots(shown).Channel().isEmpty()) return;
    const QString status = TimedEvents::instance().StatusLine().trimmed();
    // The wait before the next try counts down each second: only the rest is
    // news.
    QString shape = status;
    shape.remove(QRegularExpression(QStringLiteral(" Reconnecting in .*$")));
    if (shape == m_statusShape) return;
    m_statusShape = shape;
    m_console.printNote(QStringLiteral("Status: ") + status);
}

void TerminalSession::typed(const QString& line) {
    if (line.startsWith(kLocal)) {
        runLocal(line.mid(2));
        return;
    }
    const int index = SlotTable::instance().CurrentIndex();
    if (index == 0) {
        WriteChat(0, Status::Error,
                  QStringLiteral("There is no profile on screen to send to; load one first "
                                 "(//load NAME)."));
        return;
    }
    if (!line.isEmpty()) SendUserLine(index, line);
}

void TerminalSession::runLocal(const QString& text) {
    QStringList words = QProcess::splitCommand(text);
    const QString verb = words.value(0);
    if (verb.isEmpty() || verb == u"help") {
        m_console.printNote(SteeringVerbs::TerminalHelp() + u'\n' + TerminalVerbs::Help());
        return;
    }
    if (verb == u"tail") {
        m_console.printNote(QStringLiteral("This terminal shows every line already; tail is for "
                                           "another terminal."));
        return;
    }
    if (!TerminalVerbs::IsVerb(verb)) {
        m_console.printNote(QStringLiteral("No command //") + verb +
                            QStringLiteral("; //help lists them. Nothing was sent."));
        return;
    }
    // Files are named from the terminal's folder, as on the command line.
    const qsizetype file = verb == u"import" ? 1 : verb == u"export" ? 2 : -1;
    if (file > 0 && file < words.size()) words[file] = QDir::current().absoluteFilePath(words[file]);
    const VerbResult result = TerminalVerbs::Run(words);
    // What a line sent here made the bot write shows already, as every line.
    const bool shown = verb == u"send" && result.status == 0;
    m_console.printNote((shown ? QString() : result.out) + result.err);
}

QStringList TerminalSession::candidates(const QString& before, const QString& word) const {
    const QStringList previous = QProcess::splitCommand(before);
    if (previous.isEmpty()) {
        if (!word.startsWith(u'/')) return {};
        QStringList words = SteeringVerbs::TerminalWords();
        for (const CommandWrapper::Listing& command : CommandWrapper::Commands())
            for (const QString& w : command.words)
                words.append(u'/' + w.toLower());
        return words;
    }
    if (previous.size() == 1 && previous[0] == u"//load")
        return SlotTable::instance().unloadedProfiles();
    if (previous.size() == 1 && takesLoadedProfile(previous[0])) {
        QStringList loaded;
        SlotTable& table = SlotTable::instance();
        for (int i = 1; i <= table.highestIndex(); ++i)
            if (Bots(i).IsLoaded) loaded.append(Bots(i).Profile());
        return loaded;
    }
    if (previous[0] == u"//profile" && previous.size() == 2) return ProfileLifecycle::ListProfiles();
    QStringList users;
    const int index = SlotTable::instance().CurrentIndex();
    if (index > 0)
        for (const UserElement& user : Bots(index).Users)
            users.append(user.Username());
    return users;
}
