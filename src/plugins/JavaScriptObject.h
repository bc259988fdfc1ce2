#pragma once

#include "plugins/PluginObject.h"
#include "plugins/ScriptWatchdog.h"

#include <QJSEngine>
#include <QJSValue>
#include <functional>

class objPlugin;

// One JavaScript text in an engine of its own: the user's script or one
// plug-in. Its top-level functions are the members the bot calls by name.
//
// By-reference arguments: a function receives every argument as a plain
// value; to change the caller's copies it returns an object whose fields are
// named like the arguments, e.g. `return { Message: "" }`. Any other result
// changes nothing.
//
// A call that runs past ScriptWatchdog's time bound is stopped and raises an
// error of that call. One that passes the memory cap, or whose allocation
// fails, is stopped too and the object is spent: it takes no more calls and
// the host unloads it, which frees its engine.
class JavaScriptObject : public PluginObject {
public:
    enum MissingMember { MissingIsError, MissingIsSilent };

    explicit JavaScriptObject(MissingMember missing);
    ~JavaScriptObject() override;

    // Runs the text once, which defines the members. Throws PluginCallError
    // with the engine's words when the text does not run.
    void load(const QString& code, const QString& fileName);
    // Makes `plugin` known to the text as `Corvan`, its members also as globals.
    void installGlobals(objPlugin* plugin);
    bool hasMember(const QString& member) const;

    QVariant call(const QString& member, QVariantList& args) override;

    static QString missingMemberText(const QString& member);

private:
    // Runs engine work under the watchdog; throws when a bound stopped it.
    QJSValue watched(const std::function<QJSValue()>& run);
    // Throws, marking the object spent, when it is past its memory cap.
    void stopIfOverMemory(bool allocationFailed = false);
    QJSValue toScript(const QVariant& value);
    QJSValue wrapPlugin(objPlugin* plugin);
    // Throws PluginCallError for an error value; returns otherwise.
    static void raiseIfError(const QJSValue& value);
    static void takeBack(const QString& member, const QJSValue& result, QVariantList& args);

    // The engine runs its code in the interpreter: a failed allocation then
    // unwinds as a C++ exception to the call, which compiled code cannot do.
    struct InterpreterOnly {
        InterpreterOnly();
    } m_interpreterOnly;
    QJSEngine m_engine;
    MissingMember m_missing;
    ScriptFootprint m_footprint;
};
