#include "config/OfferedList.h"

#include "config/RegistryWrapper.h"
#include "config/SettingsWrapper.h"

namespace {

const char* const kKeyNames[] = {"Accounts", "Passwords", "Servers1",      "Servers2", "Channels",
                                 "Cdkeys1",  "Cdkeys2",   "Idle Messages", "Databases"};

} // namespace

QString OfferedList::key(Kind kind) {
    return SettingsWrapper::RootKey() + QString::fromLatin1(kKeyNames[kind]);
}

QStringList OfferedList::entries(Kind kind) {
    RegistryWrapper& store = RegistryWrapper::instance();
    QStringList names;
    if (!store.KeyExists(key(kind))) {
        store.CreateKey(key(kind));
        return names;
    }
    store.EnumKeys(key(kind), names);
    names.removeAll(QString());
    return names;
}

bool OfferedList::add(Kind kind, const QString& text) {
    if (text.isEmpty()) return false;
    return RegistryWrapper::instance().CreateKey(key(kind) + u'\\' + text) != 0;
}

bool OfferedList::remove(Kind kind, const QString& text) {
    if (text.isEmpty()) return false;
    // DeleteKey takes the path below HKCU\.
    return RegistryWrapper::instance().DeleteKey(key(kind).mid(5) + u'\\' + text) == 0;
}
