#include "statistics/Statstring.h"

#include "config/FileHandler.h"
#include "platform/Cp1252.h"
#include "statistics/FlagNames.h"

#include <QStringList>
#include <algorithm>
#include <array>

namespace {

struct Product {
    const char* code;
    const char* name;
};

constexpr std::array<Product, 12> kProducts{{
    {"STAR", "StarCraft"},
    {"SEXP", "StarCraft BroodWar"},
    {"SSHR", "StarCraft ShareWare"},
    {"JSTR", "Japanese StarCraft"},
    {"DRTL", "Diablo"},
    {"DSHR", "Diablo ShareWare"},
    {"D2DV", "Diablo II Classic"},
    {"D2XP", "Diablo II Lord of Destruction"},
    {"W2BN", "WarCraft II"},
    {"WAR3", "WarCraft III Reign of Chaos"},
    {"W3XP", "WarCraft III The Frozen Throne"},
    {"CHAT", "Chat Client"},
}};

QString reversed(QStringView text) {
    QString out(text.size(), Qt::Uninitialized);
    std::reverse_copy(text.begin(), text.end(), out.begin());
    return out;
}

// A field taken by its numeric value, as the record shows it.
qint64 number(const QStringList& fields, int index) {
    return index < fields.size() ? qint64(LeadingNumber(fields[index])) : 0;
}

QString starcraftRecord(const QString& code, const QStringList& fields) {
    if (fields.size() < 5) return {};
    const qint64 rating = number(fields, 1);
    const qint64 rank = number(fields, 2);
    QString out =
        QStringLiteral(" (") + QString::number(number(fields, 3)) + QStringLiteral(" wins");
    if (rating > 0) out += QStringLiteral(", rating of ") + QString::number(rating);
    if (rank > 0) out += QStringLiteral(", rank of ") + QString::number(rank);
    if (code == QLatin1String("W2BN")) {
        const qint64 ironRating = number(fields, 7);
        const qint64 ironRank = number(fields, 8);
        if (ironRating > 0)
            out += QStringLiteral(", ironman rating of ") + QString::number(ironRating);
        if (ironRank > 0) out += QStringLiteral(", ironman rank of ") + QString::number(ironRank);
    }
    if (number(fields, 4) == 1) out += QStringLiteral(" [spawn]");
    return out + u')';
}

QString diabloRecord(const QString& code, const QString& statstring, const QStringList& fields) {
    if (fields.size() != 10) {
        if (code == QLatin1String("DRTL"))
            return QStringLiteral(" (Illegal Diablo Character \"") + statstring +
                   QStringLiteral("\")");
        return {};
    }
    QString className;
    switch (number(fields, 2)) {
    case 0:
        className = QStringLiteral("Warrior");
        break;
    case 1:
        className = QStringLiteral("Rogue");
        break;
    case 2:
        className = QStringLiteral("Sorceror");
        break;
    default:
        className = QStringLiteral("Invalid Class");
        break;
    }
    return QStringLiteral(" (Level ") + fields[1] + u' ' + className + QStringLiteral(" with ") +
           fields[3] + QStringLiteral(" dots, ") + fields[4] + QStringLiteral(" strength, ") +
           fields[5] + QStringLiteral(" magic, ") + fields[6] + QStringLiteral(" dexterity, ") +
           fields[7] + QStringLiteral(" vitality, and ") + fields[8] + QStringLiteral(" gold)");
}

// Icon names by race letter, tiers 2 upward.
struct Race {
    char letter;
    std::array<const char*, 5> tiers;
};

constexpr std::array<Race, 5> kReignOfChaos{{
    {'H', {"Footman", "Knight", "Archmage", "Medivh", nullptr}},
    {'O', {"Grunt", "Tauren", "Far Seer", "Thrall", nullptr}},
    {'N', {"Archer", "Druid of the Claw", "Priestess of the Moon", "Furion Stormrage", nullptr}},
    {'U', {"Ghoul", "Abomination", "Lich", "Tichondrius", nullptr}},
    {'R', {"Green Dragon Whelp", "Blue Dragon", "Red Dragon", "Deathwing", nullptr}},
}};

constexpr std::array<Race, 6> kFrozenThrone{{
    {'H', {"Rifleman", "Sorceress", "Spellbreaker", "Blood Mage", "Jaina"}},
    {'O', {"Troll Headhunter", "Shaman", "Spirit Walker", "Shadow Hunter", "Rexxar"}},
    {'N', {"Huntress", "Druid of the Talon", "Dryad", "Keeper of the Grove", "Maiev"}},
    {'U', {"Crypt Fiend", "Banshee", "Destroyer", "Crypt Lord", "Sylvanas"}},
    {'R', {"Myrmidon", "Siren", "Dragon Turtle", "Sea Witch", "Illidan"}},
    {'T', {"Felguard", "Infernal", "Doomguard", "Pit Lord", "Archimonde"}},
}};

template <size_t N>
const char* iconName(const std::array<Race, N>& races, QChar letter, QChar tier) {
    for (const Race& race : races) {
        if (letter != QLatin1Char(race.letter)) continue;
        const int index = tier.unicode() - u'2';
        if (index < 0 || index >= int(race.tiers.size())) return nullptr;
        return race.tiers[size_t(index)];
    }
    return nullptr;
}

QString warcraftRecord(const QString& code, const QString& statstring, const QStringList& fields,
                       bool detailed, QString& clan) {
    if (fields.size() == 4) clan = reversed(fields[3]);
    if (!detailed || statstring.size() < 5) return {};
    return QStringLiteral(" (") + GetWarcraftIconName(code, fields.value(1)) + u')';
}

struct D2Title {
    const char* male;
    const char* maleHardcore;
    const char* female;
    const char* femaleHardcore;
};

constexpr std::array<D2Title, 3> kClassicTitles{{
    {"Sir ", "Count ", "Dame ", "Countess "},
    {"Lord ", "Duke ", "Lady ", "Duchess "},
    {"Baron ", "King ", "Baroness ", "Queen "},
}};

constexpr std::array<D2Title, 3> kExpansionTitles{{
    {"Slayer ", "Destroyer ", "Slayer ", "Destroyer "},
    {"Champion ", "Conqueror ", "Champion ", "Conqueror "},
    {"Patriarch ", "Guardian", "Matriarch ", "Guardian"},
}};

constexpr std::array<const char*, 7> kD2Classes{"amazon",    "sorceress", "necromancer", "paladin",
                                                "barbarian", "druid",     "assassin"};

} // namespace

QString GetProductName(const QString& Code) {
    for (const Product& p : kProducts) {
        if (Code == QLatin1String(p.code))
            return ReadOverride(QStringLiteral("Client"), Code, QLatin1String(p.name));
    }
    return ReadOverride(QStringLiteral("Client"), QStringLiteral("UNKNOWN"),
                        QStringLiteral("Unknown Client")) +
           QStringLiteral(" \"") + Code + u'"';
}

QString GetWarcraftIconName(const QString& Code, const QString& IconText) {
    const QChar tier = IconText.size() > 0 ? IconText[0] : QChar();
    const QChar letter = IconText.size() > 1 ? IconText[1] : QChar();
    if (tier == u'1') return QStringLiteral("Peon Icon");
    const char* name = Code == QLatin1String("W3XP") ? iconName(kFrozenThrone, letter, tier)
                                                     : iconName(kReignOfChaos, letter, tier);
    return QLatin1String(name ? name : "Unknown") + QStringLiteral(" Icon");
}

QString ParseDiabloStats(const QString& Statstring) {
    if (Statstring.size() == 4) return QStringLiteral(" (Open character)");
    const QString code = Statstring.left(4);
    const QString rest = Statstring.mid(4);
    const qsizetype firstComma = rest.indexOf(u',');
    const qsizetype secondComma = firstComma < 0 ? -1 : rest.indexOf(u',', firstComma + 1);
    const QString realm = firstComma < 0 ? rest : rest.left(firstComma);
    const QString name = firstComma < 0    ? QString()
                         : secondComma < 0 ? rest.mid(firstComma + 1)
                                           : rest.mid(firstComma + 1, secondComma - firstComma - 1);
    const QString data = secondComma < 0 ? QString() : rest.mid(secondComma + 1);

    if (data.size() != 33) {
        if (name.isEmpty() || realm.isEmpty()) return QStringLiteral(" (Open character)");
        return QStringLiteral(" (") + name + QStringLiteral(" on realm ") + realm + u')';
    }

    // Positions count from 1, as the record is documented.
    const auto byte = [&data](int position) {
        return quint8(cp1252::encodeChar(data[position - 1].unicode()));
    };
    const int characterClass = byte(14);
    const int level = byte(26);
    const int flags = byte(27);
    const int titleValue = (byte(28) & 0x18) >> 3;
    const bool hardcore = flags & 0x04;
    const bool dead = hardcore && (flags & 0x08);
    const bool ladder = byte(31) < 255;
    const bool female = characterClass == 1 || characterClass == 2 || characterClass == 7;
    const bool expansion = code == QLatin1String("PX2D") && (flags & 0x20);

    QString title;
    if (titleValue > 0 && (code != QLatin1String("PX2D") || expansion)) {
        const D2Title& t = (expansion ? kExpansionTitles : kClassicTitles)[size_t(titleValue - 1)];
        title = QLatin1String(female ? (hardcore ? t.femaleHardcore : t.female)
                                     : (hardcore ? t.maleHardcore : t.male));
    }
    const QString className = characterClass >= 1 && characterClass <= 7
                                  ? QLatin1String(kD2Classes[size_t(characterClass - 1)])
                                  : QStringLiteral("unknown class");

    QString out = QStringLiteral(" (") + title + name + QStringLiteral(", a ");
    if (dead) out += QStringLiteral("dead ");
    if (hardcore) out += QStringLiteral("hardcore ");
    if (ladder) out += QStringLiteral("ladder ");
    out += QStringLiteral("level ") + QString::number(level) + u' ';
    if (expansion) out += QStringLiteral("expansion ");
    return out + className + QStringLiteral(" on realm ") + realm + u')';
}

QString ParseStatstring(const QString& Statstring, bool Detailed, QString& Clan) {
    const QString code = reversed(QStringView(Statstring).left(4));
    QString text = GetProductName(code);
    const QStringList fields = Statstring.split(u' ');

    if (code == QLatin1String("WAR3") || code == QLatin1String("W3XP"))
        return text + warcraftRecord(code, Statstring, fields, Detailed, Clan);
    if (!Detailed) return text;
    if (code == QLatin1String("STAR") || code == QLatin1String("SEXP") ||
        code == QLatin1String("JSTR") || code == QLatin1String("W2BN"))
        return text + starcraftRecord(code, fields);
    if (code == QLatin1String("DRTL") || code == QLatin1String("DSHR"))
        return text + diabloRecord(code, Statstring, fields);
    if (code == QLatin1String("D2DV") || code == QLatin1String("D2XP"))
        return text + ParseDiabloStats(Statstring);
    return text;
}

QString ParseStatstring(const QString& Statstring, bool Detailed) {
    QString clan;
    return ParseStatstring(Statstring, Detailed, clan);
}
