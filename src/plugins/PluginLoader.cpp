#include "plugins/PluginLoader.h"

#include "config/Folders.h"
#include "plugins/JavaScriptObject.h"
#include "plugins/PluginHost.h"
#include "plugins/PluginMainForm.h"
#include "plugins/SharedObjectPlugin.h"
#include "plugins/objPlugin.h"
#include "presentation/ChatWriter.h"

#include <QFile>

namespace {

const char* const kImportContext =
    "This error is related to importing the script, it contained errors or had parts missing.";

void redLines(const QString& error, const QString& context) {
    WriteChat(0, {{255, error}});
    WriteChat(0, {{255, context}});
}

std::shared_ptr<PluginObject> makePlugin(const QString& name) {
    const QString base = GetProgramFolder() + QStringLiteral("/Plugins/") + name;
    if (!QFile::exists(base + QStringLiteral(".js")) && QFile::exists(base + QStringLiteral(".so")))
        return std::make_shared<SharedObjectPlugin>(base + QStringLiteral(".so"));
    const QString path = base + QStringLiteral(".js");
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw PluginCallError(QStringLiteral("cannot read ") + path + QStringLiteral(": ") +
                              file.errorString());
    auto object = std::make_shared<JavaScriptObject>(JavaScriptObject::MissingIsError);
    object->load(QString::fromUtf8(file.readAll()), path);
    return object;
}

} // namespace

void InstallPluginLoader() {
    PluginHost::instance().setFactory(makePlugin);
}

void LoadScript() {
    auto script = std::make_shared<JavaScriptObject>(JavaScriptObject::MissingIsSilent);
    PluginHost::instance().setScript(script);

    const QString path = GetSettingsPath() + QStringLiteral("Script.txt");
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite)) {
        redLines(QStringLiteral("Cannot open ") + path + QStringLiteral(": ") + file.errorString(),
                 QString::fromLatin1(kImportContext));
        return;
    }
    const QString code = QString::fromUtf8(file.readAll());
    try {
        script->installGlobals(new objPlugin(&PluginMainForm::instance()));
        script->load(code, path);
    } catch (const PluginCallError& e) {
        redLines(e.description(), QString::fromLatin1(kImportContext));
    }
    // A user who never wrote a script is not told that it lacks a sub.
    if (code.trimmed().isEmpty()) return;
    const QString startup = QStringLiteral("Event_Startup");
    try {
        if (!script->hasMember(startup))
            throw PluginCallError(JavaScriptObject::missingMemberText(startup));
        QVariantList none;
        script->call(startup, none);
    } catch (const PluginCallError& e) {
        redLines(e.description(), QStringLiteral("This error is related to the Startup() sub."));
    }
}
