#pragma once

#include <QHash>
#include <QString>

namespace sandbox {

class ChatHub;
class AccountStore;

// The named text values the server keeps for each account: the account's own facts
// (system\...), game records (record\...) and the public profile (profile\...). Profiles are
// written by their owners; facts and records are the server's, made up on the spot.
class ProfileValues {
public:
    ProfileValues(const AccountStore& store, const ChatHub& hub);

    // Empty for an account nobody has; a key nobody set is empty too, except the facts and
    // the residents' profiles, which every known account has.
    QString value(const QString& account, const QString& key) const;
    void set(const QString& account, const QString& key, const QString& value);
    // Only profile\... values may be written by a client.
    static bool writable(const QString& key);
    // "profile ACCOUNT KEY [VALUE]": sets the value, or answers "profile " and the value; false
    // for a command that is not this one.
    bool control(const QString& command, const QString& rest, QString& answer);

private:
    bool known(const QString& account) const;
    QString fact(const QString& account, const QString& key) const;

    const AccountStore& m_store;
    const ChatHub& m_hub;
    QHash<QString, QString> m_values; // "account\nkey", both lower-case
    qint64 m_startedMs;
};

} // namespace sandbox
