#pragma once

#include <QString>
#include <QStringList>
#include <optional>

// Everything the profile form shows of one profile, as text the way the form
// holds it, with the form's way of reading it from the store and of storing
// it back. A profile's missing values read as the form's own defaults, which
// are friendlier than the empty ones a logon would get.
struct ProfileSheet {
    QString Account;
    QString Password;
    QString Cdkey1;
    QString Cdkey2;
    // Index into ProductNames().
    int Product = 0;
    QString Verbyte;
    QString Server;
    QString ServerBNLS;
    QString Channel;
    QString Owner;
    QString Email;
    QString Trigger;
    QString IdleMsg;
    // As typed; stored as the number at its start.
    QString IdleTime;
    // The userbase bound to the profile; empty for none.
    QString Database;
    // Index into PingNames().
    int PingSpoof = 0;
    bool LagPlug = false;

    bool operator==(const ProfileSheet&) const = default;

    // Nothing when the profile's key doesn't exist.
    static std::optional<ProfileSheet> read(const QString& profile);
    // Stores every field into an existing profile, the product last so that a
    // running slot never sees a new product with the old key. Also keeps the
    // version byte as the last one used for the product. False when the
    // profile doesn't exist (nothing is written) or the store didn't take
    // every value.
    bool write(const QString& profile) const;

    // The products in the form's order, by name and by code.
    static QStringList ProductNames();
    static QString productCode(int index);
    // Index of a code; 0 (StarCraft) for anything unknown.
    static int productIndex(const QString& code);
    // Only the expansions log on with a second key.
    static bool hasSecondKey(int index);
    // The version byte last stored for a product; empty when none was.
    static QString storedVerbyte(int index);

    static QStringList PingNames();
};
