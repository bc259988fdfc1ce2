#include "plugins/JavaScriptObject.h"

#include "plugins/ScriptWatchdog.h"
#include "plugins/objPlugin.h"

#include <QHash>
#include <new>

namespace {

// The names of the arguments of every member that has arguments passed by
// reference; a function returns new values under these names.
const QHash<QString, QStringList>& argumentNames() {
    static const QHash<QString, QStringList> names = [] {
        const QStringList full{"BotIndex", "Username", "Message", "Flags", "Ping"};
        const QStringList message{"BotIndex", "Message"};
        QHash<QString, QStringList> table;
        for (const char* member :
             {"Event_UserPresent", "Event_UserJoin", "Event_WhisperFrom", "Event_UserTalk",
              "Event_UserUpdate", "Event_WhisperTo", "Event_UserEmote"})
            table.insert(QString::fromLatin1(member), full);
        for (const char* member :
             {"Event_Broadcast", "Event_ChannelFull", "Event_ChannelDoesNotExist",
              "Event_ChannelRestricted", "Event_Info", "Event_Information", "Event_Error",
              "Event_PressedEnter"})
            table.insert(QString::fromLatin1(member), message);
        table.insert(QStringLiteral("Event_UserLeave"), {"BotIndex", "Username"});
        table.insert(QStringLiteral("Event_Channel"), {"BotIndex", "Message", "Flags"});
        table.insert(QStringLiteral("Event_JoinChannel"), {"BotIndex", "Message", "Flags"});
        table.insert(QStringLiteral("Event_EnteredChat"), {"BotIndex", "Username", "Message"});
        table.insert(QStringLiteral("PacketArrival"), {"Index", "Data"});
        table.insert(QStringLiteral("SocketError"),
                     {"Index", "Number", "Description", "Scode", "Source", "HelpFile",
                      "HelpContext", "CancelDisplay"});
        table.insert(QStringLiteral("SongChange"), {"Song"});
        return table;
    }();
    return names;
}

// Wraps objPlugin in a plain object: AddText takes its colour and text pairs
// as further arguments, and the three objects are made on first use.
const char* const kWrapPlugin = R"((function (q) {
    return {
        BotIndex: function () { return q.BotIndex(); },
        AddText: function (Index) { q.AddText(Index, Array.prototype.slice.call(arguments, 1)); },
        AddQueue: function (Index, Text) { q.AddQueue(Index, Text); },
        get Cache() { return q.Cache; },
        get Configuration() { return q.Configuration; },
        get Music() { return q.Music; }
    };
}))";

const char* const kInstallGlobals = R"((function (c, global) {
    global.Corvan = c;
    for (const name of Object.keys(c))
        Object.defineProperty(global, name, Object.getOwnPropertyDescriptor(c, name));
}))";

} // namespace

JavaScriptObject::JavaScriptObject(MissingMember missing) : m_missing(missing) {
    m_engine.installExtensions(QJSEngine::ConsoleExtension);
}

JavaScriptObject::~JavaScriptObject() = default;

QString JavaScriptObject::missingMemberText(const QString& member) {
    return QStringLiteral("Object doesn't support this property or method: '") + member +
           QStringLiteral("'");
}

void JavaScriptObject::raiseIfError(const QJSValue& value) {
    if (!value.isError()) return;
    QString text = value.toString();
    const int line = value.property(QStringLiteral("lineNumber")).toInt();
    if (line > 0) {
        const QString file = value.property(QStringLiteral("fileName")).toString();
        text += QStringLiteral(" (") + file.section(u'/', -1) + QStringLiteral(" line ") +
                QString::number(line) + u')';
    }
    throw PluginCallError(text);
}

JavaScriptObject::InterpreterOnly::InterpreterOnly() {
    // The engine reads it once, as the process makes its first engine.
    if (!qEnvironmentVariableIsSet("QV4_FORCE_INTERPRETER")) qputenv("QV4_FORCE_INTERPRETER", "1");
}

QJSValue JavaScriptObject::watched(const std::function<QJSValue()>& run) {
    if (spent()) throw PluginCallError(stoppedBecause());
    ScriptWatchdog& watchdog = ScriptWatchdog::instance();
    watchdog.enter(&m_engine, m_footprint);
    QJSValue result;
    try {
        result = run();
    } catch (const std::bad_alloc&) {
        watchdog.leave(&m_engine);
        // The engine was left mid-call: it is never entered again.
        stopIfOverMemory(true);
    }
    switch (watchdog.leave(&m_engine)) {
    case ScriptWatchdog::Outcome::TimedOut:
        throw PluginCallError(QStringLiteral("it ran longer than ") +
                              QString::number(ScriptWatchdog::kBoundMs / 1000) +
                              QStringLiteral(" seconds and was stopped"));
    case ScriptWatchdog::Outcome::OverMemory:
        stopIfOverMemory();
        break;
    case ScriptWatchdog::Outcome::Finished:
        if (!watchdog.settle(&m_engine, m_footprint)) stopIfOverMemory();
        break;
    }
    return result;
}

void JavaScriptObject::stopIfOverMemory(bool allocationFailed) {
    if (!allocationFailed && !m_footprint.over.load()) return;
    markSpent(m_footprint.over.load() ? ScriptWatchdog::overMemoryText()
                                      : QStringLiteral("it ran out of memory and was stopped"));
    throw PluginCallError(stoppedBecause());
}

void JavaScriptObject::load(const QString& code, const QString& fileName) {
    raiseIfError(watched([&] { return m_engine.evaluate(code, fileName); }));
}

QJSValue JavaScriptObject::wrapPlugin(objPlugin* plugin) {
    QJSEngine::setObjectOwnership(plugin, QJSEngine::CppOwnership);
    const QJSValue wrapped =
        m_engine.evaluate(QString::fromLatin1(kWrapPlugin)).call({m_engine.newQObject(plugin)});
    raiseIfError(wrapped);
    return wrapped;
}

void JavaScriptObject::installGlobals(objPlugin* plugin) {
    raiseIfError(m_engine.evaluate(QString::fromLatin1(kInstallGlobals))
                     .call({wrapPlugin(plugin), m_engine.globalObject()}));
}

bool JavaScriptObject::hasMember(const QString& member) const {
    if (spent()) return false;
    return m_engine.globalObject().property(member).isCallable();
}

QJSValue JavaScriptObject::toScript(const QVariant& value) {
    if (QObject* object = value.value<QObject*>()) {
        if (auto* plugin = qobject_cast<objPlugin*>(object)) return wrapPlugin(plugin);
        QJSEngine::setObjectOwnership(object, QJSEngine::CppOwnership);
        return m_engine.newQObject(object);
    }
    return m_engine.toScriptValue(value);
}

QVariant JavaScriptObject::call(const QString& member, QVariantList& args) {
    if (spent()) throw PluginCallError(stoppedBecause());
    QJSValue function = m_engine.globalObject().property(member);
    if (!function.isCallable()) {
        if (m_missing == MissingIsSilent) return {};
        throw PluginCallError(missingMemberText(member));
    }
    QJSValueList scriptArgs;
    for (const QVariant& arg : args)
        scriptArgs.append(toScript(arg));
    const QJSValue result = watched([&] { return function.call(scriptArgs); });
    raiseIfError(result);
    takeBack(member, result, args);
    return result.toVariant();
}

void JavaScriptObject::takeBack(const QString& member, const QJSValue& result, QVariantList& args) {
    if (!result.isObject() || result.isArray() || result.isCallable()) return;
    const QStringList names = argumentNames().value(member);
    for (int i = 0; i < names.size() && i < args.size(); ++i) {
        if (!result.hasOwnProperty(names[i])) continue;
        QVariant value = result.property(names[i]).toVariant();
        if (value.convert(args[i].metaType())) args[i] = value;
    }
}
