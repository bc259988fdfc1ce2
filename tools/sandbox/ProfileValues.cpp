#include "sandbox/ProfileValues.h"

#include "sandbox/AccountStore.h"
#include "sandbox/ChatHub.h"
#include "sandbox/Resident.h"

#include <QDateTime>

namespace sandbox {
namespace {

QString slot(const QString& account, const QString& key) {
    return account.toLower() + u'\n' + key.toLower();
}

// A moment as the protocol writes a Windows file time: "high low", 100 ns steps since 1601.
QString fileTime(qint64 msSinceEpoch) {
    const quint64 t = quint64(msSinceEpoch + 11644473600000LL) * 10000;
    return QString::number(t >> 32) + u' ' + QString::number(t & 0xFFFFFFFFu);
}

constexpr qint64 kDayMs = 24 * 3600 * 1000;

} // namespace

ProfileValues::ProfileValues(const AccountStore& store, const ChatHub& hub)
    : m_store(store), m_hub(hub), m_startedMs(QDateTime::currentMSecsSinceEpoch()) {}

bool ProfileValues::writable(const QString& key) {
    return key.startsWith(QLatin1String("profile\\"), Qt::CaseInsensitive);
}

bool ProfileValues::known(const QString& account) const {
    return m_store.find(account) || m_hub.find(account);
}

void ProfileValues::set(const QString& account, const QString& key, const QString& value) {
    m_values.insert(slot(account, key), value);
}

QString ProfileValues::value(const QString& account, const QString& key) const {
    if (!known(account)) return {};
    const auto it = m_values.constFind(slot(account, key));
    if (it != m_values.constEnd()) return *it;
    return fact(account, key);
}

bool ProfileValues::control(const QString& command, const QString& rest, QString& answer) {
    if (command != QLatin1String("profile")) return false;
    const QString account = rest.section(u' ', 0, 0);
    const QString key = rest.section(u' ', 1, 1);
    const QString text = rest.section(u' ', 2);
    if (key.isEmpty()) {
        answer = QStringLiteral("error: profile ACCOUNT KEY [VALUE]");
    } else if (text.isEmpty()) {
        answer = QStringLiteral("profile ") + value(account, key);
    } else {
        set(account, key, text);
        answer = QStringLiteral("ok");
    }
    return true;
}

QString ProfileValues::fact(const QString& account, const QString& key) const {
    const QString k = key.toLower();
    if (k == QLatin1String("system\\username")) {
        const AccountRecord* record = m_store.find(account);
        return record ? record->name : m_hub.find(account)->account;
    }
    if (k == QLatin1String("system\\account created")) return fileTime(m_startedMs - 30 * kDayMs);
    if (k == QLatin1String("system\\last logon")) return fileTime(m_startedMs);
    if (k == QLatin1String("system\\last logoff")) return fileTime(m_startedMs - kDayMs);
    if (k == QLatin1String("system\\time logged")) return QStringLiteral("93784");
    if (k.startsWith(QLatin1String("record\\")) && !k.endsWith(QLatin1String("last game")) &&
        !k.endsWith(QLatin1String("last game result")))
        return QStringLiteral("0");
    // The residents have filled in their profiles.
    if (dynamic_cast<const Resident*>(m_hub.find(account))) {
        if (k == QLatin1String("profile\\sex")) return QStringLiteral("Unknown");
        if (k == QLatin1String("profile\\location")) return QStringLiteral("The sandbox");
        if (k == QLatin1String("profile\\description"))
            return QStringLiteral("A resident of the sandbox since it started.");
    }
    return {};
}

} // namespace sandbox
