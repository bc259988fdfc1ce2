#pragma once

#include "config/SettingsCatalogue.h"

#include <QString>

class RegistryWrapper;

// The settings of one loaded profile, under
// HKCU\Software\Corvantide4\Profiles\<Profile>. Every property reads or writes
// the store directly; nothing is kept here but the profile's name. With an
// empty Profile a set does nothing and a get gives the empty value of its
// type, except for Channels. A set says whether the value reached the store;
// writeError() then says why not.
class ConfigWrapper {
public:
    ConfigWrapper() = default;
    explicit ConfigWrapper(RegistryWrapper& store) : store_(&store) {}

    QString Profile;

// Defaults come from the settings catalogue, looked up once per property.
#define CORVANTIDE_STRING_PROPERTY(Name, ValueName)                                                \
    QString Name() const {                                                                         \
        static const QString fallback = SettingsCatalogue::ProfileDefault(QStringLiteral(ValueName)); \
        return readString(QStringLiteral(ValueName), fallback);                                    \
    }                                                                                              \
    bool set##Name(const QString& value) {                                                         \
        return writeString(QStringLiteral(ValueName), value);                                      \
    }
#define CORVANTIDE_DWORD_PROPERTY(Name, ValueName)                                                 \
    qint32 Name() const {                                                                          \
        static const qint32 fallback =                                                             \
            SettingsCatalogue::ProfileDefault(QStringLiteral(ValueName)).toInt();                  \
        return readDword(QStringLiteral(ValueName), fallback);                                     \
    }                                                                                              \
    bool set##Name(qint32 value) {                                                                 \
        return writeDword(QStringLiteral(ValueName), value);                                       \
    }
#define CORVANTIDE_BOOL_PROPERTY(Name, ValueName)                                                  \
    bool Name() const {                                                                            \
        return readDword(QStringLiteral(ValueName), 0) != 0;                                       \
    }                                                                                              \
    bool set##Name(bool on) {                                                                      \
        return writeDword(QStringLiteral(ValueName), on ? 1 : 0);                                  \
    }

    CORVANTIDE_STRING_PROPERTY(Account, "Account")
    CORVANTIDE_STRING_PROPERTY(Password, "Password")
    CORVANTIDE_STRING_PROPERTY(Email, "EmailAddress")
    // One of "STAR", "SEXP", "D2DV", "D2XP", "W2BN", "WAR3", "W3XP".
    CORVANTIDE_STRING_PROPERTY(Client, "Product")
    CORVANTIDE_STRING_PROPERTY(Verbyte, "Verbyte")
    CORVANTIDE_STRING_PROPERTY(Cdkey, "Cdkey1")
    CORVANTIDE_STRING_PROPERTY(Cdkey2, "Cdkey2")
    CORVANTIDE_STRING_PROPERTY(Owner, "Owner")
    CORVANTIDE_STRING_PROPERTY(Server, "Server")
    CORVANTIDE_STRING_PROPERTY(ServerBNLS, "ServerBNLS")
    CORVANTIDE_STRING_PROPERTY(Channel, "Channel")
    CORVANTIDE_STRING_PROPERTY(Trigger, "Trigger")
    CORVANTIDE_STRING_PROPERTY(IdleMsg, "IdleMsg")
    CORVANTIDE_DWORD_PROPERTY(IdleTime, "IdleTime")
    // 0 normal, 1 negative, 2 zero, 3 below normal, 4 above normal.
    CORVANTIDE_DWORD_PROPERTY(PingSpoof, "PingSpoof")
    CORVANTIDE_BOOL_PROPERTY(LagPlug, "LagPlug")
    CORVANTIDE_BOOL_PROPERTY(StartupLoad, "Load at Startup")
    CORVANTIDE_BOOL_PROPERTY(Stalk, "Stalk")
    CORVANTIDE_STRING_PROPERTY(Stalker, "Stalker")

#undef CORVANTIDE_STRING_PROPERTY
#undef CORVANTIDE_DWORD_PROPERTY
#undef CORVANTIDE_BOOL_PROPERTY

    // Quick-channel box Index (0 to 9): "Op :+", "Clan DbM" twice, then "--";
    // a "--" read is written back so that the value exists.
    QString Channels(int index);
    bool setChannels(int index, const QString& text);

    // Why the last set that gave false did not reach the store.
    QString writeError() const;

    // The profile's key, e.g. "HKCU\Software\Corvantide4\Profiles\Main".
    QString profileKey() const;

private:
    RegistryWrapper& store() const;
    QString readString(const QString& valueName, const QString& defaultValue) const;
    bool writeString(const QString& valueName, const QString& value);
    qint32 readDword(const QString& valueName, qint32 defaultValue) const;
    bool writeDword(const QString& valueName, qint32 value);

    RegistryWrapper* store_ = nullptr;
};
