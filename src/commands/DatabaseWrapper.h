#pragma once

#include <QString>
#include <QStringList>

// The userbase: ranks from 1 to 100 by Battle.net name, kept in named
// databases under HKCU\Software\Corvantide4\Databases, one key per user with
// the rank in its dword "Flags". A profile reaches the database it is bound to
// (BotElement::Database); profiles bound to one database share its users.
//
// Nothing is kept here: every call reads the store, so a change made through
// one profile or the control panel holds at once for all. Rank rules (who may
// add or remove whom) belong to the commands; this class checks only the range.
class DatabaseWrapper {
public:
    // False with no database bound, a rank outside 1 to 100, or a user who
    // already has a rank (in any case of the name). An existing user keeps
    // the rank: it changes only by removing and adding again. False also
    // when the store did not take the write; writeError() then says why.
    bool AddUser(int Index, const QString& Username, qint32 Rank);
    // True when the user's key, by its exact name, was there and is gone.
    // False with writeError() set when the store kept it.
    bool RemoveUser(int Index, const QString& Username);
    // Looks the name up by its account part, without regard to case. On a
    // rank the name becomes the stored spelling; otherwise it becomes empty
    // and the rank 0. When several keys match, the last one in the store's
    // order decides.
    void GrabRank(int Index, QString& Username, qint32& Rank);
    // The user at Position (from 0) in the store's order; empty and 0 past
    // the end or for a key without a rank.
    void GrabRankByIndex(int Index, int Position, QString& Username, qint32& Rank);
    // The highest Position that GrabRankByIndex takes: one less than the
    // number of users, and 0 for one user or none.
    qint32 Count(int Index);

    // HKCU\Software\Corvantide4\Databases, made at start-up.
    static QString DatabasesKey();

    // Why the last AddUser or RemoveUser that gave false could not change the
    // store; empty when it gave false for a reason of the userbase itself.
    const QString& writeError() const { return m_writeError; }

private:
    // The key of the profile's database; empty with none bound.
    static QString databaseKey(int Index);
    // The key of one user; empty when the name cannot be a key name.
    static QString userKey(const QString& database, const QString& Username);
    // The user keys of the profile's database, in the store's order.
    static QStringList userNames(int Index);

    QString m_writeError;
};
