#include "statistics/FlagNames.h"

#include "config/FileHandler.h"
#include "config/Folders.h"
#include "statistics/NameFormat.h"

#include <array>

namespace {

struct Flag {
    quint32 bit;
    const char* key;
    const char* name;
};

// In the order in which the names are listed.
constexpr std::array<Flag, 14> kUserFlags{{
    {0x00000001, "BlizzardRepresentative", "Rep"},
    {0x00000002, "Moderator", "Mod"},
    {0x00100000, "Jailed", "Jailed"},
    {0x00000020, "Squelched", "Squelched"},
    {0x00000004, "Speaker", "Speaker"},
    {0x00000040, "Guest", "Guest"},
    {0x00000008, "Admin", "Admin"},
    {0x00000010, "LagPlug", "UDP"},
    {0x00000100, "Beep", "Beep"},
    {0x00001000, "KBKofficial", "KBK Official"},
    {0x00000400, "PGLofficial", "PGL Official"},
    {0x00200000, "GFplayer", "GF"},
    {0x00000800, "KBKplayer", "KBK"},
    {0x00000200, "PGLplayer", "PGL"},
}};

constexpr std::array<Flag, 7> kChannelFlags{{
    {0x1000, nullptr, "Global"},
    {0x0002, nullptr, "Moderated"},
    {0x0004, nullptr, "Locked"},
    {0x0008, nullptr, "Silent"},
    {0x0010, nullptr, "System"},
    {0x0020, nullptr, "Product"},
    {0x0001, nullptr, "Public"},
}};

QString readOverride(const char* section, const QString& key, const char* defaultName) {
    return ReadOverride(QLatin1String(section), key, QLatin1String(defaultName));
}

// The row of the ping tables: 0 spoofed or clear, 1 to 5 the bands of a
// hundred milliseconds from 200 up, 6 anything else.
int pingBand(qint32 ping) {
    if (ping >= 1 && ping <= 200) return 1;
    for (int band = 2; band <= 5; ++band) {
        if (ping > 100 * band && ping <= 100 * (band + 1)) return band;
    }
    return 6;
}

} // namespace

QString OverridesFile() {
    return SettingsFilePath(QStringLiteral("Overrides.ini"));
}

QString ReadOverride(const QString& section, const QString& key, const QString& defaultName) {
    bool found = false;
    const QString name = ReadIni(OverridesFile(), section, key, defaultName, &found);
    return found ? name : defaultName;
}

QString GetUserFlagNames(quint32 Flags) {
    if (Flags == 0) return readOverride("User_Flags", QStringLiteral("None"), "Normal");
    QString names;
    for (const Flag& f : kUserFlags) {
        if (Flags & f.bit) {
            AppendWithSeparator(names, readOverride("User_Flags", QLatin1String(f.key), f.name),
                                QStringLiteral(" + "));
        }
    }
    return names;
}

QString GetChannelFlagNames(quint32 Flags) {
    if (Flags == 0) return QStringLiteral("Private");
    QString names;
    for (const Flag& f : kChannelFlags) {
        if (Flags & f.bit) AppendWithSeparator(names, QLatin1String(f.name), QStringLiteral(" + "));
    }
    return names;
}

QString GetPingStatus(qint32 Ping) {
    static constexpr std::array<const char*, 7> kWords{"Spoofed", "Excellent", "Low",     "Average",
                                                       "Poor",    "High",      "Horrible"};
    const int row = (Ping == 0 || Ping == -1) ? 0 : pingBand(Ping);
    return readOverride("Ping_Status", QString::number(row), kWords[size_t(row)]);
}

QString GetPingIcon(qint32 Ping) {
    static constexpr std::array<const char*, 7> kIcons{"Clear",  "Green", "Lime",  "Yellow",
                                                       "Orange", "Red",   "Maroon"};
    // A ping of exactly 10 shares the icon of the band above it, as the user
    // list's ping icons do.
    int row = 6;
    if (Ping >= 0 && Ping <= 9)
        row = 0;
    else if (Ping >= 10 && Ping <= 200)
        row = 1;
    else
        row = pingBand(Ping);
    return readOverride("Ping_Icon", QString::number(row), kIcons[size_t(row)]);
}

QString GetClanRankName(quint8 Rank) {
    switch (Rank) {
    case 1:
        return QStringLiteral("Peon");
    case 2:
        return QStringLiteral("Grunt");
    case 3:
        return QStringLiteral("Shaman");
    case 4:
        return QStringLiteral("Chieftain");
    default:
        return QStringLiteral("New Peon");
    }
}
