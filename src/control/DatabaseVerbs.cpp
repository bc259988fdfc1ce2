#include "control/DatabaseVerbs.h"

#include "chat/BotElement.h"
#include "commands/DatabaseWrapper.h"
#include "config/RegistryWrapper.h"
#include "session/ProfileLifecycle.h"
#include "session/SlotTable.h"

namespace {

QString quoted(const QString& text) {
    return u'\'' + text + u'\'';
}

QStringList subkeys(const QString& key) {
    QStringList names;
    RegistryWrapper::instance().EnumKeys(key, names);
    names.removeAll(QString());
    return names;
}

// The stored spelling of a database, compared case-blind; empty when none.
QString findDatabase(const QString& name) {
    for (const QString& stored : subkeys(DatabaseWrapper::DatabasesKey())) {
        if (stored.compare(name, Qt::CaseInsensitive) == 0) return stored;
    }
    return {};
}

QString databaseKey(const QString& stored) {
    return DatabaseWrapper::DatabasesKey() + u'\\' + stored;
}

VerbResult noSuchDatabase(const QString& name) {
    return VerbResult::refused(QStringLiteral("No database named ") + quoted(name) +
                               QStringLiteral("; `corvantide database list` shows them."));
}

VerbResult storeRefused(const QString& what) {
    return VerbResult::refused(QStringLiteral("Could not ") + what +
                               QStringLiteral(": the settings store refused the write."));
}

VerbResult list(const QStringList& args) {
    if (args.size() == 1) {
        const QStringList names = subkeys(DatabaseWrapper::DatabasesKey());
        if (names.isEmpty())
            return VerbResult::done(
                QStringLiteral("No databases yet; make one with: corvantide database new NAME"));
        return VerbResult::done(names.join(u'\n'));
    }
    const QString stored = findDatabase(args[1]);
    if (stored.isEmpty()) return noSuchDatabase(args[1]);
    QStringList lines;
    RegistryWrapper& store = RegistryWrapper::instance();
    for (const QString& user : subkeys(databaseKey(stored)))
        lines.append(user + u'\t' +
                     QString::number(store.ReadDWORD(databaseKey(stored) + u'\\' + user,
                                                     QStringLiteral("Flags"), 0)));
    if (lines.isEmpty()) return VerbResult::done(quoted(stored) + QStringLiteral(" has no users."));
    return VerbResult::done(lines.join(u'\n'));
}

VerbResult create(const QString& name) {
    if (name.trimmed().isEmpty())
        return VerbResult::refused(QStringLiteral("You must enter a name for the database!"));
    if (name.contains(u'\\'))
        return VerbResult::refused(QStringLiteral("A database name cannot contain \\."));
    if (!findDatabase(name).isEmpty())
        return VerbResult::refused(QStringLiteral("A database named ") +
                                   quoted(findDatabase(name)) + QStringLiteral(" already exists."));
    if (RegistryWrapper::instance().CreateKey(databaseKey(name)) == 0)
        return storeRefused(QStringLiteral("create the database ") + quoted(name));
    return VerbResult::done(QStringLiteral("Created database ") + quoted(name) +
                            QStringLiteral("; bind it with: corvantide database bind ") + name +
                            QStringLiteral(" PROFILE"));
}

// Every loaded profile bound to the database forgets it first, so none reads
// a database that is half gone.
VerbResult remove(const QString& name) {
    const QString stored = findDatabase(name);
    if (stored.isEmpty()) return noSuchDatabase(name);
    SlotTable& table = SlotTable::instance();
    for (int i = 1; i <= table.highestIndex(); ++i) {
        BotElement& bot = table.bot(i);
        if (bot.IsLoaded && bot.Database().compare(stored, Qt::CaseInsensitive) == 0)
            bot.setDatabase(QString());
    }
    RegistryWrapper& store = RegistryWrapper::instance();
    for (const QString& user : subkeys(databaseKey(stored)))
        store.KillKey(databaseKey(stored) + u'\\' + user);
    store.KillKey(databaseKey(stored));
    if (store.KeyExists(databaseKey(stored)))
        return storeRefused(QStringLiteral("delete the database ") + quoted(stored));
    return VerbResult::done(QStringLiteral("Deleted database ") + quoted(stored) + u'.');
}

// As in the control panel: an existing user's rank is overwritten, and 100
// may be given.
VerbResult addUser(const QString& name, const QString& user, const QString& rankText) {
    const QString stored = findDatabase(name);
    if (stored.isEmpty()) return noSuchDatabase(name);
    if (user.isEmpty()) return VerbResult::refused(QStringLiteral("You must enter a username!"));
    if (user.contains(u'\\'))
        return VerbResult::refused(QStringLiteral("A username cannot contain \\."));
    bool ok = false;
    const int rank = rankText.trimmed().toInt(&ok);
    if (!ok || rank <= 0 || rank >= 101)
        return VerbResult::refused(QStringLiteral("Flags value must be between 1 - 100!"));
    const QString key = databaseKey(stored) + u'\\' + user;
    if (RegistryWrapper::instance().WriteDWORD(key, QStringLiteral("Flags"), rank) == 0)
        return storeRefused(QStringLiteral("give ") + user + QStringLiteral(" a rank"));
    return VerbResult::done(QStringLiteral("Gave ") + user + QStringLiteral(" rank ") +
                            QString::number(rank) + QStringLiteral(" in ") + quoted(stored) +
                            u'.');
}

VerbResult removeUser(const QString& name, const QString& user) {
    const QString stored = findDatabase(name);
    if (stored.isEmpty()) return noSuchDatabase(name);
    QString storedUser;
    for (const QString& candidate : subkeys(databaseKey(stored))) {
        if (candidate.compare(user, Qt::CaseInsensitive) == 0) storedUser = candidate;
    }
    if (storedUser.isEmpty())
        return VerbResult::refused(user + QStringLiteral(" is not in ") + quoted(stored) + u'.');
    RegistryWrapper& store = RegistryWrapper::instance();
    store.KillKey(databaseKey(stored) + u'\\' + storedUser);
    if (store.KeyExists(databaseKey(stored) + u'\\' + storedUser))
        return storeRefused(QStringLiteral("remove ") + storedUser);
    return VerbResult::done(QStringLiteral("Removed ") + storedUser + QStringLiteral(" from ") +
                            quoted(stored) + u'.');
}

// A loaded profile is bound through its slot, which says so in its view, as
// the control panel's binding does.
VerbResult bind(const QString& name, const QString& profile, bool unbind) {
    const QString database = unbind ? QString() : findDatabase(name);
    if (!unbind && database.isEmpty()) return noSuchDatabase(name);
    const QString storedProfile = ProfileLifecycle::FindProfile(profile);
    if (storedProfile.isEmpty())
        return VerbResult::refused(QStringLiteral("No profile named ") + quoted(profile) +
                                   QStringLiteral("; `corvantide profile list` shows them."));
    SlotTable& table = SlotTable::instance();
    const int slot = table.findProfile(storedProfile);
    const QString key = ProfileLifecycle::ProfilesKey() + storedProfile;
    if (slot > 0)
        table.bot(slot).setDatabase(database);
    else
        RegistryWrapper::instance().WriteSTRING(key, QStringLiteral("Database"), database);
    if (RegistryWrapper::instance().ReadSTRING(key, QStringLiteral("Database")) != database)
        return storeRefused(QStringLiteral("bind ") + quoted(storedProfile));
    if (unbind)
        return VerbResult::done(quoted(storedProfile) + QStringLiteral(" uses no database now."));
    return VerbResult::done(QStringLiteral("Bound database ") + quoted(database) +
                            QStringLiteral(" to profile ") + quoted(storedProfile) + u'.');
}

} // namespace

QString DatabaseVerbsHelp() {
    return QStringLiteral(
        "  database list [NAME]            the databases, or the users of one with ranks\n"
        "  database new NAME               make a database\n"
        "  database delete NAME            remove a database and its users\n"
        "  database add NAME USER RANK     give a user a rank from 1 to 100\n"
        "  database remove NAME USER       take a user out\n"
        "  database bind NAME PROFILE      the profile's commands use this database\n"
        "  database unbind PROFILE         the profile uses no database\n");
}

VerbResult RunDatabaseVerb(const QStringList& args) {
    const QString verb = args.value(0).toLower();
    const qsizetype n = args.size();
    if (verb == u"list" && (n == 1 || n == 2)) return list(args);
    if (verb == u"new" && n == 2) return create(args[1]);
    if (verb == u"delete" && n == 2) return remove(args[1]);
    if (verb == u"add" && n == 4) return addUser(args[1], args[2], args[3]);
    if (verb == u"remove" && n == 3) return removeUser(args[1], args[2]);
    if (verb == u"bind" && n == 3) return bind(args[1], args[2], false);
    if (verb == u"unbind" && n == 2) return bind(QString(), args[1], true);
    return VerbResult::usage(QStringLiteral("database list|new|delete|add|remove|bind|unbind "
                                            "...\n") +
                             DatabaseVerbsHelp());
}
