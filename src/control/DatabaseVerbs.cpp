#include "control/DatabaseVerbs.h"

#include "commands/DatabaseManager.h"
#include "session/ProfileLifecycle.h"

namespace {

VerbResult answer(const ManageOutcome& outcome, const QString& done) {
    return outcome.ok ? VerbResult::done(done) : VerbResult::refused(outcome.warning);
}

VerbResult list(const QStringList& args) {
    if (args.size() == 1) {
        const QStringList names = DatabaseManager::ListDatabases();
        if (names.isEmpty())
            return VerbResult::done(
                QStringLiteral("No databases yet; make one with: corvantide database new NAME"));
        return VerbResult::done(names.join(u'\n'));
    }
    const QString stored = DatabaseManager::FindDatabase(args[1]);
    if (stored.isEmpty())
        return VerbResult::refused(QStringLiteral("There is no database called \"") + args[1] +
                                   QStringLiteral("\"."));
    QStringList lines;
    for (const DatabaseUser& user : DatabaseManager::ListUsers(stored))
        lines.append(user.name + u'\t' + QString::number(user.rank));
    if (lines.isEmpty()) return VerbResult::done(Quoted(stored) + QStringLiteral(" has no users."));
    return VerbResult::done(lines.join(u'\n'));
}

VerbResult create(const QString& name) {
    const ManageOutcome outcome = DatabaseManager::CreateDatabase(name);
    if (outcome.existed)
        return VerbResult::refused(QStringLiteral("A database named ") +
                                   Quoted(DatabaseManager::FindDatabase(name)) +
                                   QStringLiteral(" already exists."));
    return answer(outcome, QStringLiteral("Created database ") + Quoted(name) +
                               QStringLiteral("; bind it with: corvantide database bind ") +
                               name + QStringLiteral(" PROFILE"));
}

VerbResult addUser(const QString& database, const QString& user, const QString& rankText) {
    bool ok = false;
    const int rank = rankText.trimmed().toInt(&ok);
    const QString stored = DatabaseManager::FindDatabase(database);
    const ManageOutcome outcome =
        DatabaseManager::SetUserRank(stored.isEmpty() ? database : stored, user, ok ? rank : 0);
    return answer(outcome, QStringLiteral("Gave ") + user + QStringLiteral(" rank ") +
                               QString::number(rank) + QStringLiteral(" in ") + Quoted(stored) +
                               u'.');
}

VerbResult bind(const QString& database, const QString& profile) {
    if (ProfileLifecycle::HasControlCharacter(profile))
        return VerbResult::refused(ProfileLifecycle::ControlCharacterRefusal());
    const ManageOutcome outcome = DatabaseManager::BindDatabase(profile, database);
    if (database.isEmpty())
        return answer(outcome, Quoted(profile) + QStringLiteral(" uses no database now."));
    return answer(outcome, QStringLiteral("Bound database ") +
                               Quoted(DatabaseManager::FindDatabase(database)) +
                               QStringLiteral(" to profile ") +
                               Quoted(ProfileLifecycle::FindProfile(profile)) + u'.');
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
    if (verb == u"delete" && n == 2)
        return answer(DatabaseManager::DeleteDatabase(args[1]),
                      QStringLiteral("Deleted database ") + Quoted(args[1]) + u'.');
    if (verb == u"add" && n == 4) return addUser(args[1], args[2], args[3]);
    if (verb == u"remove" && n == 3)
        return answer(DatabaseManager::DeleteUser(args[1], args[2]),
                      QStringLiteral("Removed ") + args[2] + QStringLiteral(" from ") +
                          Quoted(args[1]) + u'.');
    if (verb == u"bind" && n == 3) return bind(args[1], args[2]);
    if (verb == u"unbind" && n == 2) return bind(QString(), args[1]);
    return VerbResult::usage(QStringLiteral("database list|new|delete|add|remove|bind|unbind "
                                            "...\n") +
                             DatabaseVerbsHelp());
}
