#pragma once

#include "commands/ManageOutcome.h"

#include <QList>
#include <QString>
#include <QStringList>

// What a person does to the userbases: make and remove databases, bind them
// to profiles, and give users their ranks, with the control panel's refusals.
// The control panel and the terminal's verbs both come here, so a loaded
// profile sees the same change whichever made it. Every operation reads and
// writes the settings store at once; nothing is kept.

// One user of a database, as the store holds it.
struct DatabaseUser {
    QString name;
    // The dword "Flags"; 0 when the user has no rank.
    qint32 rank = 0;
};

namespace DatabaseManager {

// Every database, in the store's order (alphabetical, case-blind).
QStringList ListDatabases();
// The stored spelling of a database compared case-blind; empty when none.
QString FindDatabase(const QString& name);
// The users of a database with their ranks, in the store's order; empty for a
// database that is not there.
QList<DatabaseUser> ListUsers(const QString& database);

ManageOutcome CreateDatabase(const QString& name);
// Every profile bound to the database, loaded or not, is left with none; then
// its users and the database go. The question before it is the caller's.
ManageOutcome DeleteDatabase(const QString& name);

// Binds a stored profile to an existing database; a loaded profile says so in
// its chat view. An empty database unbinds the profile.
ManageOutcome BindDatabase(const QString& profile, const QString& database);
// Unbinds the profile only when it is bound to that database: a profile bound
// to another one keeps it.
ManageOutcome ReleaseDatabase(const QString& profile, const QString& database);
// The database a stored profile is bound to; empty for none.
QString BoundDatabase(const QString& profile);

// Gives the user the rank, overwriting a rank already there; the control panel
// may give 100, unlike the commands.
ManageOutcome SetUserRank(const QString& database, const QString& user, qint32 rank);
// Removes the user's key by its exact name.
ManageOutcome DeleteUser(const QString& database, const QString& user);

} // namespace DatabaseManager
