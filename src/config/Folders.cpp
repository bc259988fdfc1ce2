#include "config/Folders.h"

#include "config/FileStamp.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QStringList>
#include <sys/stat.h>

namespace {

QString& homeOverride() {
    static QString folder;
    return folder;
}

// An XDG variable counts only when it holds an absolute path.
QString xdgFolder(const char* variable, const QString& fallbackBelowHome) {
    const QString value = qEnvironmentVariable(variable);
    if (!value.isEmpty() && QDir::isAbsolutePath(value)) return QDir::cleanPath(value);
    return QDir::homePath() + u'/' + fallbackBelowHome;
}

QString configHome() {
    if (!homeOverride().isEmpty()) return homeOverride() + QStringLiteral("/.config");
    return xdgFolder("XDG_CONFIG_HOME", QStringLiteral(".config"));
}

QString dataHome() {
    if (!homeOverride().isEmpty()) return homeOverride() + QStringLiteral("/.local/share");
    return xdgFolder("XDG_DATA_HOME", QStringLiteral(".local/share"));
}

QString userFolder(QStandardPaths::StandardLocation location, const QString& belowHome) {
    if (!homeOverride().isEmpty()) return homeOverride() + u'/' + belowHome;
    return QStandardPaths::writableLocation(location);
}

void makePrivateFolder(const QString& path) {
    ::mkdir(QFile::encodeName(path).constData(), 0700);
}

} // namespace

void SetHomeFolder(const QString& folder) {
    homeOverride() = folder.isEmpty() ? QString() : QDir(folder).absolutePath();
}

QString HomeFolder() {
    return homeOverride();
}

QString GetSpecialFolder(int folder) {
    switch (folder) {
    case FolderDesktop:
        return userFolder(QStandardPaths::DesktopLocation, QStringLiteral("Desktop"));
    case FolderDocuments:
        return userFolder(QStandardPaths::DocumentsLocation, QStringLiteral("Documents"));
    case FolderStartup:
        return configHome() + QStringLiteral("/autostart");
    case FolderAppData:
        return configHome();
    case FolderLocalAppData:
        return dataHome();
    default:
        return {};
    }
}

namespace {

// The application data folder, or the program folder when the host has none.
QString settingsBase() {
    const QString base = GetSpecialFolder(FolderAppData);
    return base.isEmpty() ? GetProgramFolder() : base;
}

} // namespace

QString GetSettingsPath() {
    const QString base = settingsBase();
    QDir().mkpath(base);
    const QString vendor = base + QStringLiteral("/Ostrelund");
    const QString settings = vendor + QStringLiteral("/Corvantide");
    makePrivateFolder(vendor);
    makePrivateFolder(settings);
    return settings + u'/';
}

QString SettingsFilePath(const QString& name) {
    return settingsBase() + QStringLiteral("/Ostrelund/Corvantide/") + name;
}

QString GetProgramFolder() {
    const QString folder = dataHome() + QStringLiteral("/Corvantide");
    // Asked for on every join; a look within a burst is cheaper than a make.
    if (!FileStamp::ofInBurst(folder, FileStamp::Kind::Folder)) {
        QDir().mkpath(folder);
        FileStamp::of(folder, FileStamp::Kind::Folder);
    }
    return folder;
}

QString AutostartFile() {
    return GetSpecialFolder(FolderStartup) + QStringLiteral("/net.ostrelund.Corvantide.desktop");
}

QStringList ProgramCommand() {
    QStringList command;
    if (QCoreApplication::instance())
        command << QCoreApplication::applicationFilePath();
    else
        command << QStringLiteral("corvantide");
    if (!homeOverride().isEmpty()) command << QStringLiteral("--home") << homeOverride();
    return command;
}
