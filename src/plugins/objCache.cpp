#include "plugins/objCache.h"

#include "chat/BotElement.h"
#include "commands/DatabaseWrapper.h"
#include "session/MachineFacts.h"
#include "session/SlotTable.h"

bool objCache::isProfileSlot(int i) {
    return i >= 1 && i <= SlotTable::instance().highestIndex() && Bots(i).IsLoaded;
}

bool objCache::belowTop(int i) {
    return i >= 0 && i <= SlotTable::instance().highestIndex();
}

int objCache::UserCount(int i) const {
    return isProfileSlot(i) ? int(Bots(i).Users.size()) : 0;
}

QVariant objCache::UserList(int i) const {
    if (!isProfileSlot(i)) return {};
    QVariantList names, stats, flags, ping, active, uptime;
    for (const UserElement& user : Bots(i).Users) {
        names << user.Username();
        stats << user.Statstring;
        flags << user.Flags;
        ping << user.Ping;
        active << user.LastAction;
        uptime << user.Uptime;
    }
    return QVariantMap{{"Count", int(names.size())},
                       {"Names", names},
                       {"Stats", stats},
                       {"Flags", flags},
                       {"Ping", ping},
                       {"Active", active},
                       {"Uptime", uptime}};
}

QVariant objCache::User(int i, int U) const {
    if (!isProfileSlot(i) || U < 1 || U > int(Bots(i).Users.size())) return {};
    const UserElement& user = Bots(i).user(U);
    return QVariantMap{{"Name", user.Username()}, {"Stats", user.Statstring},
                       {"Flags", user.Flags},     {"Ping", user.Ping},
                       {"Uptime", user.Uptime},   {"Active", user.LastAction}};
}

int objCache::UserFind(int i, const QString& Username) const {
    return isProfileSlot(i) ? Bots(i).UserFind(Username) : 0;
}

int objCache::DatabaseCount(int i) const {
    return isProfileSlot(i) ? DatabaseWrapper().Count(i) : 0;
}

QVariant objCache::DatabaseUser(int i, int Position) const {
    if (!isProfileSlot(i)) return {};
    QString username;
    qint32 rank = 0;
    DatabaseWrapper().GrabRankByIndex(i, Position, username, rank);
    return QVariantMap{{"Username", username}, {"Rank", rank}};
}

QVariant objCache::DatabaseUserFind(int i, const QString& Username) const {
    if (!isProfileSlot(i)) return {};
    QString username = Username;
    qint32 rank = 0;
    DatabaseWrapper().GrabRank(i, username, rank);
    return QVariantMap{{"Username", username}, {"Rank", rank}};
}

QString objCache::CpuOS() const {
    QString name = Machine().OperatingSystem;
    name.remove(QChar(0x00AE)).remove(QChar(0x2122));
    return name.isEmpty() ? QStringLiteral("Unrecognized operating system (non-Windows?)") : name;
}

QString objCache::CpuName() const {
    return Machine().ProcessorName;
}

QString objCache::CpuLanguage() const {
    return Machine().LanguageName;
}

QString objCache::CpuLanguageAbbr() const {
    return Machine().LanguageAbbreviation;
}

QString objCache::CpuCountry() const {
    return Machine().CountryName;
}

QString objCache::CpuCountryAbbr() const {
    return Machine().CountryAbbreviation;
}

QString objCache::BotVersion() const {
    return QStringLiteral("Corvantide v") + Machine().versionText();
}

bool objCache::BotOnline(int i) const {
    return belowTop(i) && Bots(i).Online();
}

QString objCache::BotProfile(int i) const {
    return belowTop(i) ? Bots(i).Profile() : QString();
}

quint32 objCache::BotUptime(int i) const {
    return belowTop(i) ? Bots(i).OnlineTick : 0;
}

qint32 objCache::BotFlags(int i) const {
    return belowTop(i) ? Bots(i).MyFlags : 0;
}

qint32 objCache::BotPing(int i) const {
    return belowTop(i) ? Bots(i).MyPing() : 0;
}

QString objCache::BotName(int i) const {
    return belowTop(i) ? Bots(i).UniqueAccount : QString();
}

QString objCache::BotStatstring(int i) const {
    return belowTop(i) ? Bots(i).MyStatstring : QString();
}

QString objCache::BotCdkeyStatus(int i) const {
    return belowTop(i) ? Bots(i).CdkeyStatus : QString();
}

QString objCache::BotChannel(int i) const {
    return belowTop(i) ? Bots(i).Channel() : QString();
}

QVariant objCache::BotClanInfo(int i) const {
    if (!belowTop(i)) return {};
    return QVariantMap{{"Rank", int(Bots(i).ClanRank())}, {"Tag", Bots(i).ClanTag()}};
}

void objCache::BotConnect(int i) {
    if (isProfileSlot(i)) SlotTable::instance().ConnectBot(i);
}

void objCache::BotDisconnect(int i) {
    if (isProfileSlot(i)) Bots(i).Connection.KillSocket(i);
}

QVariant objCache::BotProfiles() const {
    QVariantList profiles, indexes;
    const int top = SlotTable::instance().highestIndex();
    for (int i = 1; i <= top; ++i) {
        if (Bots(i).Profile().isEmpty()) continue;
        profiles << Bots(i).Profile();
        indexes << i;
    }
    const int count = int(profiles.size());
    profiles << QString();
    indexes << 0;
    return QVariantMap{{"Count", count}, {"Profiles", profiles}, {"Indexes", indexes}};
}
