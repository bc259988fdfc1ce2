#include "control/PluginVerbs.h"

#include "config/Folders.h"
#include "plugins/PluginHost.h"
#include "presentation/ChatWriter.h"

#include <QDir>

namespace {

QString pluginsFolder() {
    return QDir::toNativeSeparators(GetProgramFolder() + QStringLiteral("/Plugins"));
}

// The plug-in file's own name for `name`, any case; empty when there is none.
QString findPlugin(const QString& name) {
    for (const QString& file : PluginHost::PluginFiles()) {
        if (file.compare(name, Qt::CaseInsensitive) == 0) return file;
    }
    return {};
}

VerbResult noSuchPlugin(const QString& name) {
    return VerbResult::refused(QStringLiteral("There is no plug-in ") + Quoted(name) +
                               QStringLiteral(" in ") + pluginsFolder() + u'.');
}

VerbResult list() {
    const QStringList names = PluginHost::PluginFiles();
    if (names.isEmpty())
        return VerbResult::done(QStringLiteral("No plug-ins in ") + pluginsFolder() +
                                QStringLiteral(" (.js or .so files)."));
    PluginHost& host = PluginHost::instance();
    QStringList lines;
    for (const QString& name : names) {
        QStringList state;
        if (host.canStart())
            state << (host.isLoaded(name) ? QStringLiteral("running") : QStringLiteral("stopped"));
        state << (PluginHost::AutoLoad(name) ? QStringLiteral("loads at start")
                                             : QStringLiteral("not loaded at start"));
        lines << name + u'\t' + state.join(QStringLiteral(", "));
    }
    return VerbResult::done(lines.join(u'\n'));
}

// Start and stop act on the plug-ins of a running bot, which this process is
// when it has a loader.
VerbResult startOrStop(bool start, const QString& name) {
    PluginHost& host = PluginHost::instance();
    if (!host.canStart())
        return VerbResult::refused(
            QStringLiteral("No Corvantide runs on this home, so no plug-in can be ") +
            (start ? QStringLiteral("started") : QStringLiteral("stopped")) +
            QStringLiteral("; `corvantide plugin ") +
            (start ? QStringLiteral("enable ") : QStringLiteral("disable ")) + name +
            QStringLiteral("` chooses what loads when it starts."));
    if (host.isLoaded(name) == start)
        return VerbResult::refused(Quoted(name) + (start ? QStringLiteral(" is already running.")
                                                         : QStringLiteral(" is not running.")));
    // The lines the Plugins page writes for the same buttons.
    WriteChat(0, Status::Information,
              (start ? QStringLiteral("- Importing plugin \"")
                     : QStringLiteral("- Terminating plugin \"")) +
                  name + u'"');
    if (start ? host.StartPlugin(name) != 0 : host.StopPlugin(name) != 0)
        return VerbResult::refused(host.lastFailure());
    // A start that failed inside Startup leaves the record, as the page does.
    return VerbResult::done((start ? QStringLiteral("Started ") : QStringLiteral("Stopped ")) +
                            Quoted(name) + u'.');
}

VerbResult setAutoLoad(bool on, const QString& name) {
    if (!PluginHost::setAutoLoad(name, on))
        return VerbResult::refused(QStringLiteral("Could not write ") +
                                   QDir::toNativeSeparators(GetSettingsPath()) +
                                   QStringLiteral("Plugins.ini."));
    return VerbResult::done(Quoted(name) + (on ? QStringLiteral(" loads when the bot starts.")
                                               : QStringLiteral(" no longer loads when the bot "
                                                                "starts.")));
}

} // namespace

QString PluginVerbsHelp() {
    return QStringLiteral(
        "  plugin list                     the plug-ins, running or not, loaded at start or not\n"
        "  plugin start|stop NAME          start or stop a plug-in in the running bot\n"
        "  plugin enable|disable NAME      load a plug-in when the bot starts, or not\n");
}

VerbResult RunPluginVerb(const QStringList& args) {
    const QString verb = args.value(0).toLower();
    if (verb == u"list" && args.size() == 1) return list();
    const bool known =
        verb == u"start" || verb == u"stop" || verb == u"enable" || verb == u"disable";
    if (!known || args.size() != 2)
        return VerbResult::usage(QStringLiteral("plugin list|start|stop|enable|disable NAME\n") +
                                 PluginVerbsHelp());
    const QString name = findPlugin(args[1]);
    if (name.isEmpty()) return noSuchPlugin(args[1]);
    if (verb == u"start" || verb == u"stop") return startOrStop(verb == u"start", name);
    return setAutoLoad(verb == u"enable", name);
}
