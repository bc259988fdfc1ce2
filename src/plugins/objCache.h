#pragma once

#include <QObject>
#include <QVariantMap>

// What scripts may read of the bot: the users and userbase of a slot, its
// state, the machine, and connecting or dropping a slot. Members that give
// several values at once (out arguments) return one object with a field of
// each name; a member that fails gives nothing (undefined) and changes nothing.
class objCache : public QObject {
    Q_OBJECT
public:
    explicit objCache(QObject* parent = nullptr) : QObject(parent) {}

    Q_INVOKABLE int UserCount(int i) const;
    // {Count, Names, Stats, Flags, Ping, Active, Uptime}, arrays from 0.
    Q_INVOKABLE QVariant UserList(int i) const;
    // {Name, Stats, Flags, Ping, Uptime, Active} of the user at U, from 1.
    Q_INVOKABLE QVariant User(int i, int U) const;
    Q_INVOKABLE int UserFind(int i, const QString& Username) const;

    Q_INVOKABLE int DatabaseCount(int i) const;
    // {Username, Rank}
    Q_INVOKABLE QVariant DatabaseUser(int i, int Position) const;
    // {Username, Rank}
    Q_INVOKABLE QVariant DatabaseUserFind(int i, const QString& Username) const;

    Q_INVOKABLE QString CpuOS() const;
    Q_INVOKABLE QString CpuName() const;
    Q_INVOKABLE QString CpuLanguage() const;
    Q_INVOKABLE QString CpuLanguageAbbr() const;
    Q_INVOKABLE QString CpuCountry() const;
    Q_INVOKABLE QString CpuCountryAbbr() const;
    Q_INVOKABLE QString BotVersion() const;

    Q_INVOKABLE bool BotOnline(int i) const;
    Q_INVOKABLE QString BotProfile(int i) const;
    Q_INVOKABLE quint32 BotUptime(int i) const;
    Q_INVOKABLE qint32 BotFlags(int i) const;
    Q_INVOKABLE qint32 BotPing(int i) const;
    Q_INVOKABLE QString BotName(int i) const;
    Q_INVOKABLE QString BotStatstring(int i) const;
    Q_INVOKABLE QString BotCdkeyStatus(int i) const;
    Q_INVOKABLE QString BotChannel(int i) const;
    // {Rank, Tag}
    Q_INVOKABLE QVariant BotClanInfo(int i) const;

    Q_INVOKABLE void BotConnect(int i);
    Q_INVOKABLE void BotDisconnect(int i);
    // {Count, Profiles, Indexes}, arrays from 0 with one empty entry behind.
    Q_INVOKABLE QVariant BotProfiles() const;

private:
    // A loaded profile's slot.
    static bool isProfileSlot(int i);
    // Any slot up to the last; the bot-state members look at the top only.
    static bool belowTop(int i);
};
