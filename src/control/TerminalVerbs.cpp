#include "control/TerminalVerbs.h"

#include "commands/CommandsPage.h"
#include "config/RegCommands.h"
#include "config/RegistryWrapper.h"
#include "config/SettingsWrapper.h"
#include "control/ConfigVerbs.h"
#include "control/DatabaseVerbs.h"
#include "control/ListVerbs.h"
#include "control/PluginVerbs.h"
#include "control/ProfileVerbs.h"
#include "control/SteeringVerbs.h"
#include "control/WebToken.h"

#include <QTextStream>

namespace {

// Import and export print through streams; their lines become the verb's.
template <typename Command>
VerbResult throughStreams(Command command) {
    VerbResult result;
    QTextStream out(&result.out);
    QTextStream err(&result.err);
    result.status = command(RegistryWrapper::instance(), out, err);
    out.flush();
    err.flush();
    return result;
}

VerbResult import(const QStringList& args) {
    if (args.size() != 2) return VerbResult::usage(QStringLiteral("import FILE"));
    return throughStreams([&](RegistryWrapper& store, QTextStream& out, QTextStream& err) {
        return ImportRegCommand(store, args[1], out, err);
    });
}

// The key as a full path, or below the program's root ("Profiles\Main").
VerbResult exportKey(const QStringList& args) {
    if (args.size() != 3) return VerbResult::usage(QStringLiteral("export KEY FILE"));
    QString key = args[1];
    if (!key.startsWith(QStringLiteral("HK"), Qt::CaseInsensitive))
        key = SettingsWrapper::RootKey() + key;
    return throughStreams([&](RegistryWrapper& store, QTextStream& out, QTextStream& err) {
        return ExportRegCommand(store, key, args[2], out, err);
    });
}

// The web page's token, made here on first use so that it can be handed to a
// browser before the page was ever turned on.
VerbResult webToken(const QStringList& args) {
    if (args.size() != 1) return VerbResult::usage(QStringLiteral("web-token"));
    QString error;
    const QString token = WebToken::Ensure(&error);
    return token.isEmpty() ? VerbResult::refused(error) : VerbResult::done(token);
}

} // namespace

namespace TerminalVerbs {

bool IsVerb(const QString& word) {
    for (const char* verb : {"profile", "config", "database", "import", "export", "commands",
                               "plugin", "web-token"}) {
        if (word == QLatin1String(verb)) return true;
    }
    return ListVerbs::IsVerb(word) || SteeringVerbs::IsVerb(word);
}

VerbResult Run(const QStringList& args) {
    const QString verb = args.value(0);
    const QStringList rest = args.mid(1);
    if (verb == u"profile") return RunProfileVerb(rest);
    if (verb == u"config") return RunConfigVerb(rest);
    if (verb == u"database") return RunDatabaseVerb(rest);
    if (verb == u"import") return import(args);
    if (verb == u"export") return exportKey(args);
    if (verb == u"commands")
        return {0, CommandsPage::Text() + u'\n' + SteeringVerbs::TerminalHelp(), {}};
    if (ListVerbs::IsVerb(verb)) return ListVerbs::Run(args);
    if (SteeringVerbs::IsVerb(verb)) return SteeringVerbs::Run(args);
    if (verb == u"plugin") return RunPluginVerb(rest);
    if (verb == u"web-token") return webToken(args);
    return VerbResult::usage(
        QStringLiteral("profile|config|database|import|export|commands|plugin|web-token ..."));
}

QString Help() {
    return QStringLiteral("Settings from the terminal (they work while a bot runs on the same "
                          "home):\n") +
           ProfileVerbsHelp() + ConfigVerbsHelp() + DatabaseVerbsHelp() + ListVerbs::Help() +
           PluginVerbsHelp() +
           QStringLiteral("  import FILE                     import a REGEDIT4 file\n"
                          "  export KEY FILE                 export KEY and below to a new "
                          "REGEDIT4 file\n"
                          "  commands                        list the bot's commands with the "
                          "rank each needs\n"
                          "  web-token                       print the token the web page asks "
                          "for\n") +
           SteeringVerbs::Help();
}

} // namespace TerminalVerbs
