#include "sandbox/AccountStore.h"

#include "logon/PasswordHash.h"
#include "platform/Cp1252.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <algorithm>

namespace sandbox {
namespace {

constexpr int kShortestName = 3;
constexpr int kLongestName = 15;

template <typename Bytes> QString toHex(const Bytes& bytes) {
    return QString::fromLatin1(
        QByteArray(reinterpret_cast<const char*>(bytes.data()), qsizetype(bytes.size())).toHex());
}

template <typename Bytes> bool fromHex(const QJsonValue& value, Bytes& out) {
    const QByteArray bytes = QByteArray::fromHex(value.toString().toLatin1());
    if (bytes.size() != qsizetype(out.size())) return false;
    std::copy(bytes.begin(), bytes.end(), out.begin());
    return true;
}

bool isNameCharacter(QChar c) {
    static const QString punctuation = QStringLiteral("-_.[]()`{}");
    return (c.unicode() < 0x80 && c.isLetterOrNumber()) || punctuation.contains(c);
}

} // namespace

AccountStore::NameCheck AccountStore::checkName(const QString& name) {
    if (name.size() < kShortestName) return NameCheck::TooShort;
    if (name.size() > kLongestName) return NameCheck::TooLong;
    if (!std::all_of(name.begin(), name.end(), isNameCharacter))
        return NameCheck::InvalidCharacters;
    if (name.contains(QLatin1String("blizzard"), Qt::CaseInsensitive)) return NameCheck::BannedWord;
    return NameCheck::Ok;
}

AccountStore::AccountStore(const QString& path) : m_path(path) {}

bool AccountStore::load(QString& error) {
    if (m_path.isEmpty()) return true;
    QFile file(m_path);
    if (!file.exists()) return true;
    if (!file.open(QIODevice::ReadOnly)) {
        error = file.errorString();
        return false;
    }
    QJsonParseError parseError;
    const QJsonDocument doc = QJsonDocument::fromJson(file.readAll(), &parseError);
    if (!doc.isObject()) {
        error = parseError.errorString();
        return false;
    }
    for (const QJsonValue& v : doc.object().value(QLatin1String("accounts")).toArray()) {
        const QJsonObject o = v.toObject();
        AccountRecord r;
        r.name = o.value(QLatin1String("name")).toString();
        r.email = o.value(QLatin1String("email")).toString();
        if (logon::Digest hash; fromHex(o.value(QLatin1String("hash")), hash))
            r.passwordHash = hash;
        if (logon::NlsAccount nls; fromHex(o.value(QLatin1String("salt")), nls.salt) &&
                                   fromHex(o.value(QLatin1String("verifier")), nls.verifier))
            r.nls = nls;
        if (!r.name.isEmpty()) m_accounts.insert(r.name.toLower(), r);
    }
    for (const QJsonValue& v : doc.object().value(QLatin1String("channels")).toArray()) {
        const QJsonObject o = v.toObject();
        const QString name = o.value(QLatin1String("name")).toString();
        QStringList bans;
        for (const QJsonValue& b : o.value(QLatin1String("bans")).toArray())
            bans.append(b.toString());
        if (!name.isEmpty() && !bans.isEmpty()) {
            m_bans.insert(name.toLower(), bans);
            m_channelNames.insert(name.toLower(), name);
        }
    }
    return true;
}

const AccountRecord* AccountStore::find(const QString& name) const {
    const auto it = m_accounts.constFind(name.toLower());
    return it == m_accounts.cend() ? nullptr : &*it;
}

bool AccountStore::create(const AccountRecord& record) {
    const QString key = record.name.toLower();
    if (m_accounts.contains(key)) return false;
    m_accounts.insert(key, record);
    save();
    return true;
}

AccountRecord AccountStore::fromPassword(const QString& name, const QString& password,
                                         const QString& email) {
    // The old system's logon hashes the lower-cased password, the new one upper-cases it.
    const QByteArray lower = cp1252::encode(password.toLower());
    const QByteArray plain = cp1252::encode(password);
    AccountRecord r{name, logon::passwordHash({lower.constData(), size_t(lower.size())}),
                    logon::NlsAccount::create(cp1252::encode(name).toStdString(),
                                              {plain.constData(), size_t(plain.size())}),
                    email};
    return r;
}

void AccountStore::setPasswordHash(const QString& name, const logon::Digest& hash) {
    if (auto it = m_accounts.find(name.toLower()); it != m_accounts.end()) {
        it->passwordHash = hash;
        it->nls.reset();
        save();
    }
}

void AccountStore::setNls(const QString& name, const logon::NlsAccount& nls) {
    if (auto it = m_accounts.find(name.toLower()); it != m_accounts.end()) {
        it->nls = nls;
        it->passwordHash.reset();
        save();
    }
}

void AccountStore::setEmail(const QString& name, const QString& email) {
    if (auto it = m_accounts.find(name.toLower()); it != m_accounts.end()) {
        it->email = email;
        save();
    }
}

QStringList AccountStore::channelBans(const QString& channel) const {
    return m_bans.value(channel.toLower());
}

void AccountStore::setChannelBans(const QString& channel, const QStringList& bans) {
    const QString key = channel.toLower();
    if (bans.isEmpty()) {
        m_bans.remove(key);
        m_channelNames.remove(key);
    } else {
        m_bans.insert(key, bans);
        m_channelNames.insert(key, channel);
    }
    save();
}

void AccountStore::save() const {
    if (m_path.isEmpty()) return;
    QJsonArray accounts;
    for (const AccountRecord& r : m_accounts) {
        QJsonObject o{{"name", r.name}, {"email", r.email}};
        if (r.passwordHash) o.insert(QLatin1String("hash"), toHex(*r.passwordHash));
        if (r.nls) {
            o.insert(QLatin1String("salt"), toHex(r.nls->salt));
            o.insert(QLatin1String("verifier"), toHex(r.nls->verifier));
        }
        accounts.append(o);
    }
    QJsonArray channels;
    for (auto it = m_bans.cbegin(); it != m_bans.cend(); ++it)
        channels.append(QJsonObject{{"name", m_channelNames.value(it.key())},
                                    {"bans", QJsonArray::fromStringList(it.value())}});
    // A store that can't be written stays in memory; the run goes on.
    QSaveFile file(m_path);
    if (!file.open(QIODevice::WriteOnly)) return;
    file.write(QJsonDocument(QJsonObject{{"accounts", accounts}, {"channels", channels}})
                   .toJson(QJsonDocument::Indented));
    (void)file.commit();
}

} // namespace sandbox
