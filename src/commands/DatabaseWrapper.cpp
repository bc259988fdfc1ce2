#include "commands/DatabaseWrapper.h"

#include "chat/BotElement.h"
#include "config/RegistryWrapper.h"
#include "config/SettingsWrapper.h"
#include "session/SlotTable.h"
#include "statistics/UserNames.h"

#include <algorithm>

namespace {

const QString kFlags = QStringLiteral("Flags");

// Character names of one account, and the account itself, compare equal.
QString plainLower(const QString& name) {
    return ConvertUsername(name, false, -1).toLower();
}

bool isRank(qint32 rank) {
    return rank >= 1 && rank <= 100;
}

} // namespace

QString DatabaseWrapper::DatabasesKey() {
    return SettingsWrapper::RootKey() + QStringLiteral("Databases");
}

QString DatabaseWrapper::databaseKey(int Index) {
    const QString name = Bots(Index).Database();
    if (name.isEmpty()) return {};
    return DatabasesKey() + u'\\' + name;
}

QString DatabaseWrapper::userKey(const QString& database, const QString& Username) {
    // An empty name would address the database's own key, and a backslash a
    // key below a user's.
    if (database.isEmpty() || Username.isEmpty() || Username.contains(u'\\')) return {};
    return database + u'\\' + Username;
}

QStringList DatabaseWrapper::userNames(int Index) {
    const QString database = databaseKey(Index);
    if (database.isEmpty()) return {};
    QStringList names;
    if (RegistryWrapper::instance().EnumKeys(database, names) <= 0) return {};
    return names;
}

// A write the store refused is no added user: the caller must not say so.
bool DatabaseWrapper::AddUser(int Index, const QString& Username, qint32 Rank) {
    m_writeError.clear();
    const QString key = userKey(databaseKey(Index), Username);
    if (key.isEmpty() || !isRank(Rank)) return false;
    RegistryWrapper& store = RegistryWrapper::instance();
    if (store.ReadDWORD(key, kFlags, 0) >= 1) return false;
    if (store.WriteDWORD(key, kFlags, Rank) != 0) return true;
    m_writeError = store.lastError();
    return false;
}

bool DatabaseWrapper::RemoveUser(int Index, const QString& Username) {
    m_writeError.clear();
    const QString key = userKey(databaseKey(Index), Username);
    if (key.isEmpty()) return false;
    RegistryWrapper& store = RegistryWrapper::instance();
    if (store.KillKey(key) == 0) return false;
    if (!store.KeyExists(key)) return true;
    m_writeError = store.HaveSubkey(key) ? QStringLiteral("the user's key holds other keys")
                                         : store.lastError();
    return false;
}

void DatabaseWrapper::GrabRank(int Index, QString& Username, qint32& Rank) {
    const QString database = databaseKey(Index);
    const QString wanted = plainLower(Username);
    QString found;
    qint32 rank = 0;
    // The whole list is walked: a later match overrides an earlier one, even
    // with no rank.
    for (const QString& name : userNames(Index)) {
        if (plainLower(name) != wanted) continue;
        found = name;
        rank = RegistryWrapper::instance().ReadDWORD(database + u'\\' + name, kFlags, 0);
    }
    if (rank > 0) {
        Username = found;
        Rank = rank;
    } else {
        Username.clear();
        Rank = 0;
    }
}

void DatabaseWrapper::GrabRankByIndex(int Index, int Position, QString& Username, qint32& Rank) {
    Username.clear();
    Rank = 0;
    const QStringList names = userNames(Index);
    if (Position < 0 || Position >= names.size() || names[Position].isEmpty()) return;
    const qint32 rank = RegistryWrapper::instance().ReadDWORD(
        databaseKey(Index) + u'\\' + names[Position], kFlags, 0);
    if (rank < 1) return;
    Username = names[Position];
    Rank = rank;
}

qint32 DatabaseWrapper::Count(int Index) {
    return qint32(std::max<qsizetype>(userNames(Index).size() - 1, 0));
}
