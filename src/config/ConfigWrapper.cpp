#include "config/ConfigWrapper.h"

#include "config/RegistryWrapper.h"
#include "config/SettingsWrapper.h"

RegistryWrapper& ConfigWrapper::store() const {
    return store_ ? *store_ : RegistryWrapper::instance();
}

QString ConfigWrapper::profileKey() const {
    return SettingsWrapper::RootKey() + QStringLiteral("Profiles\\") + Profile;
}

QString ConfigWrapper::readString(const QString& valueName, const QString& defaultValue) const {
    if (Profile.isEmpty()) return {};
    return store().ReadSTRING(profileKey(), valueName, defaultValue);
}

bool ConfigWrapper::writeString(const QString& valueName, const QString& value) {
    return !Profile.isEmpty() && store().WriteSTRING(profileKey(), valueName, value) != 0;
}

qint32 ConfigWrapper::readDword(const QString& valueName, qint32 defaultValue) const {
    if (Profile.isEmpty()) return 0;
    return store().ReadDWORD(profileKey(), valueName, defaultValue);
}

bool ConfigWrapper::writeDword(const QString& valueName, qint32 value) {
    return !Profile.isEmpty() && store().WriteDWORD(profileKey(), valueName, value) != 0;
}

QString ConfigWrapper::writeError() const {
    if (Profile.isEmpty()) return QStringLiteral("no profile is loaded");
    return store().lastError();
}

// Not guarded by an empty Profile: the value then lands in the Profiles key.
QString ConfigWrapper::Channels(int index) {
    QString defaultText = QStringLiteral("--");
    if (index == 0)
        defaultText = QStringLiteral("Op :+");
    else if (index == 1 || index == 2)
        defaultText = QStringLiteral("Clan DbM");
    const QString name = QStringLiteral("Channels") + QString::number(index);
    const QString text = store().ReadSTRING(profileKey(), name, defaultText);
    if (text == u"--") store().WriteSTRING(profileKey(), name, text);
    return text;
}

bool ConfigWrapper::setChannels(int index, const QString& text) {
    return store().WriteSTRING(profileKey(), QStringLiteral("Channels") + QString::number(index),
                               text) != 0;
}
