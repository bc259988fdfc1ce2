#include "commands/DatabaseManager.h"

#include "chat/BotElement.h"
#include "commands/DatabaseWrapper.h"
#include "config/RegistryWrapper.h"
#include "session/ProfileLifecycle.h"
#include "session/SlotTable.h"

namespace {

const QString kFlags = QStringLiteral("Flags");
const QString kDatabase = QStringLiteral("Database");

RegistryWrapper& store() {
    return RegistryWrapper::instance();
}

ManageOutcome refused(const QString& warning) {
    return ManageOutcome::refused(warning);
}

ManageOutcome storeRefused(const QString& what) {
    return ManageOutcome::storeRefused(what);
}

QString databaseKey(const QString& database) {
    return DatabaseWrapper::DatabasesKey() + u'\\' + database;
}

QString userKey(const QString& database, const QString& user) {
    return databaseKey(database) + u'\\' + user;
}

// A key name holds no backslash: it would address a key further down.
bool isKeyName(const QString& name) {
    return !name.isEmpty() && !name.contains(u'\\');
}

ManageOutcome noSuchDatabase(const QString& name) {
    return refused(QStringLiteral("There is no database called \"") + name + QStringLiteral("\"."));
}

ManageOutcome noSuchProfile(const QString& name) {
    return refused(QStringLiteral("There is no profile called \"") + name + QStringLiteral("\"."));
}

// The slots that hold the profile, compared case-blind.
QList<int> slotsOf(const QString& profile) {
    QList<int> found;
    SlotTable& table = SlotTable::instance();
    for (int i = 1; i <= table.highestIndex(); ++i) {
        const BotElement& bot = table.bot(i);
        if (bot.IsLoaded && bot.Profile().compare(profile, Qt::CaseInsensitive) == 0)
            found.append(i);
    }
    return found;
}

// Writes the binding of a stored profile; a loaded one announces it in its
// chat view.
bool writeBinding(const QString& profile, const QString& database) {
    const QList<int> loaded = slotsOf(profile);
    if (!loaded.isEmpty()) {
        bool written = true;
        for (int slot : loaded)
            written = Bots(slot).setDatabase(database) && written;
        return written;
    }
    return store().WriteSTRING(ProfileLifecycle::ProfilesKey() + profile, kDatabase, database) != 0;
}

} // namespace

namespace DatabaseManager {

QStringList ListDatabases() {
    QStringList names;
    store().EnumKeys(DatabaseWrapper::DatabasesKey(), names);
    names.removeAll(QString());
    return names;
}

QString FindDatabase(const QString& name) {
    if (name.isEmpty()) return {};
    for (const QString& stored : ListDatabases()) {
        if (stored.compare(name, Qt::CaseInsensitive) == 0) return stored;
    }
    return {};
}

QList<DatabaseUser> ListUsers(const QString& database) {
    QList<DatabaseUser> users;
    if (!isKeyName(database)) return users;
    QStringList names;
    if (store().EnumKeys(databaseKey(database), names) <= 0) return users;
    for (const QString& name : names)
        users.append({name, store().ReadDWORD(userKey(database, name), kFlags, 0)});
    return users;
}

ManageOutcome CreateDatabase(const QString& name) {
    if (name.isEmpty()) return refused(QStringLiteral("You must enter a name for the database!"));
    if (name.contains(u'\\'))
        return refused(QStringLiteral("A database name cannot contain backslashes."));
    const bool existed = !FindDatabase(name).isEmpty();
    if (store().CreateKey(databaseKey(name)) == 0)
        return storeRefused(QStringLiteral("create the database"));
    ManageOutcome outcome = ManageOutcome::done();
    outcome.existed = existed;
    return outcome;
}

ManageOutcome DeleteDatabase(const QString& name) {
    const QString stored = FindDatabase(name);
    if (stored.isEmpty()) return noSuchDatabase(name);
    bool unbound = true;
    for (const QString& profile : ProfileLifecycle::ListProfiles()) {
        if (BoundDatabase(profile).compare(stored, Qt::CaseInsensitive) == 0)
            unbound = writeBinding(profile, QString()) && unbound;
    }
    for (const DatabaseUser& user : ListUsers(stored))
        store().KillKey(userKey(stored, user.name));
    store().KillKey(databaseKey(stored));
    if (!FindDatabase(stored).isEmpty()) return storeRefused(QStringLiteral("delete the database"));
    if (!unbound) return storeRefused(QStringLiteral("unbind every profile from the database"));
    return ManageOutcome::done();
}

ManageOutcome BindDatabase(const QString& profile, const QString& database) {
    const QString storedProfile = ProfileLifecycle::FindProfile(profile);
    if (storedProfile.isEmpty()) return noSuchProfile(profile);
    QString storedDatabase;
    if (!database.isEmpty()) {
        storedDatabase = FindDatabase(database);
        if (storedDatabase.isEmpty()) return noSuchDatabase(database);
    }
    if (!writeBinding(storedProfile, storedDatabase))
        return storeRefused(QStringLiteral("bind the database"));
    return ManageOutcome::done();
}

ManageOutcome ReleaseDatabase(const QString& profile, const QString& database) {
    const QString storedProfile = ProfileLifecycle::FindProfile(profile);
    if (storedProfile.isEmpty()) return noSuchProfile(profile);
    const QString bound = BoundDatabase(storedProfile);
    if (bound.isEmpty() || bound.compare(database, Qt::CaseInsensitive) != 0)
        return ManageOutcome::done();
    if (!writeBinding(storedProfile, QString()))
        return storeRefused(QStringLiteral("unbind the database"));
    return ManageOutcome::done();
}

QString BoundDatabase(const QString& profile) {
    if (!isKeyName(profile)) return {};
    return store().ReadSTRING(ProfileLifecycle::ProfilesKey() + profile, kDatabase);
}

ManageOutcome SetUserRank(const QString& database, const QString& user, qint32 rank) {
    if (ListDatabases().isEmpty())
        return refused(QStringLiteral("There are no database profiles created!"));
    if (database.isEmpty()) return refused(QStringLiteral("You must select a database profile!"));
    if (user.isEmpty()) return refused(QStringLiteral("You must enter a username!"));
    if (rank <= 0 || rank >= 101)
        return refused(QStringLiteral("Flags value must be between 1 - 100!"));
    const QString stored = FindDatabase(database);
    if (stored.isEmpty()) return noSuchDatabase(database);
    if (user.contains(u'\\'))
        return refused(QStringLiteral("A username cannot contain backslashes."));
    if (store().WriteDWORD(userKey(stored, user), kFlags, rank) == 0)
        return storeRefused(QStringLiteral("store the rank"));
    return ManageOutcome::done();
}

ManageOutcome DeleteUser(const QString& database, const QString& user) {
    const QString stored = FindDatabase(database);
    if (stored.isEmpty()) return noSuchDatabase(database);
    if (!isKeyName(user) || !store().KeyExists(userKey(stored, user)))
        return refused(QStringLiteral("There is no user called \"") + user +
                       QStringLiteral("\" in the database."));
    store().KillKey(userKey(stored, user));
    if (store().KeyExists(userKey(stored, user)))
        return storeRefused(QStringLiteral("delete the user"));
    return ManageOutcome::done();
}

} // namespace DatabaseManager
