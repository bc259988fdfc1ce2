#pragma once

#include "logon/NlsServer.h"

#include <QHash>
#include <QString>
#include <QStringList>
#include <optional>

namespace sandbox {

// An account as the server keeps it: never the password. The old system stores its single
// hash, the new one a salt and verifier; an account made by one system can't log on by the
// other, as on the real service.
struct AccountRecord {
    QString name;
    std::optional<logon::Digest> passwordHash;
    std::optional<logon::NlsAccount> nls;
    QString email;
};

// Accounts and the lasting state of channels (their bans), in memory, and in a file when one
// is given: every change rewrites it whole.
class AccountStore {
public:
    enum class NameCheck { Ok, TooShort, TooLong, InvalidCharacters, BannedWord };
    static NameCheck checkName(const QString& name);

    // Empty path: memory only. A missing file is an empty store.
    explicit AccountStore(const QString& path = {});
    // False when the file exists but can't be read as a store.
    bool load(QString& error);

    const AccountRecord* find(const QString& name) const;
    // False when the name is taken.
    bool create(const AccountRecord& record);
    // Both systems' secrets from a clear password, for accounts made at start.
    static AccountRecord fromPassword(const QString& name, const QString& password,
                                      const QString& email);

    // A new password by one system leaves the account to that system alone: the other's
    // secret would still be the old password's.
    void setPasswordHash(const QString& name, const logon::Digest& hash);
    void setNls(const QString& name, const logon::NlsAccount& nls);
    void setEmail(const QString& name, const QString& email);

    QStringList channelBans(const QString& channel) const;
    void setChannelBans(const QString& channel, const QStringList& bans);

    int accountCount() const { return int(m_accounts.size()); }

private:
    void save() const;

    QString m_path;
    QHash<QString, AccountRecord> m_accounts; // by lower-case name
    QHash<QString, QStringList> m_bans;       // by lower-case channel
    QHash<QString, QString> m_channelNames;   // lower-case channel to its spelling
};

} // namespace sandbox
