#include "session/MachineFacts.h"

#include "platform/TickCount.h"

#include <QFile>
#include <QHash>
#include <QLocale>
#include <QStringList>
#include <QSysInfo>
#include <pwd.h>
#include <unistd.h>
#include <utility>

namespace {

// $USER, as a login shell sets it; a service or a cron job may start the
// program without it, and the account's entry still names the user.
QString loginName() {
    QString name = qEnvironmentVariable("USER");
    if (!name.isEmpty()) return name;
    if (const passwd* entry = getpwuid(getuid())) name = QString::fromLocal8Bit(entry->pw_name);
    return name;
}

// Three-letter country codes for the territories Qt names with two letters.
// A territory missing here falls back to its two-letter code.
constexpr std::pair<const char*, const char*> kCountryCodes[] = {
    {"US", "USA"}, {"GB", "GBR"}, {"CA", "CAN"}, {"AU", "AUS"}, {"NZ", "NZL"}, {"IE", "IRL"},
    {"DE", "DEU"}, {"AT", "AUT"}, {"CH", "CHE"}, {"FR", "FRA"}, {"BE", "BEL"}, {"NL", "NLD"},
    {"LU", "LUX"}, {"ES", "ESP"}, {"PT", "PRT"}, {"IT", "ITA"}, {"SE", "SWE"}, {"NO", "NOR"},
    {"DK", "DNK"}, {"FI", "FIN"}, {"IS", "ISL"}, {"PL", "POL"}, {"CZ", "CZE"}, {"SK", "SVK"},
    {"HU", "HUN"}, {"RO", "ROU"}, {"BG", "BGR"}, {"GR", "GRC"}, {"TR", "TUR"}, {"RU", "RUS"},
    {"UA", "UKR"}, {"BY", "BLR"}, {"EE", "EST"}, {"LV", "LVA"}, {"LT", "LTU"}, {"HR", "HRV"},
    {"SI", "SVN"}, {"RS", "SRB"}, {"IL", "ISR"}, {"KR", "KOR"}, {"JP", "JPN"}, {"CN", "CHN"},
    {"TW", "TWN"}, {"HK", "HKG"}, {"SG", "SGP"}, {"IN", "IND"}, {"TH", "THA"}, {"VN", "VNM"},
    {"PH", "PHL"}, {"MY", "MYS"}, {"ID", "IDN"}, {"BR", "BRA"}, {"AR", "ARG"}, {"CL", "CHL"},
    {"MX", "MEX"}, {"CO", "COL"}, {"PE", "PER"}, {"ZA", "ZAF"}, {"EG", "EGY"},
};

QString threeLetterCountry(const QString& twoLetters) {
    for (const auto& [two, three] : kCountryCodes) {
        if (twoLetters == QLatin1String(two)) return QString::fromLatin1(three);
    }
    return twoLetters;
}

// The processor as the kernel names it: "model name" on x86, else the first of
// the names other machines give; the architecture when none is there.
QString processorName() {
    QFile file(QStringLiteral("/proc/cpuinfo"));
    QHash<QString, QString> fields;
    if (file.open(QIODevice::ReadOnly)) {
        for (const QByteArray& line : file.readAll().split('\n')) {
            const qsizetype colon = line.indexOf(':');
            if (colon < 0) continue;
            const QString key = QString::fromUtf8(line.left(colon)).trimmed().toLower();
            if (!fields.contains(key))
                fields.insert(key, QString::fromUtf8(line.mid(colon + 1)).simplified());
        }
    }
    for (const char* key : {"model name", "hardware", "cpu model", "cpu", "processor"}) {
        const QString value = fields.value(QString::fromLatin1(key));
        // "processor" on x86 is only the core's number.
        bool number = false;
        value.toInt(&number);
        if (!value.isEmpty() && !number) return value;
    }
    return QSysInfo::currentCpuArchitecture();
}

} // namespace

QString MachineFacts::versionText(bool withBuild) const {
    QString text = QString::number(VersionMajor) + u'.' + QString::number(VersionMinor);
    if (withBuild) text += QStringLiteral(" (Build ") + QString::number(VersionRevision) + u')';
    return text;
}

MachineFacts& Machine() {
    static MachineFacts facts;
    return facts;
}

void ReadMachineFacts() {
    MachineFacts& m = Machine();
    const QStringList version = QStringLiteral(CORVANTIDE_VERSION).split(u'.');
    m.VersionMajor = version.value(0).toInt();
    m.VersionMinor = version.value(1).toInt();
    m.VersionRevision = version.value(2).toInt();

    m.OperatingSystem = QSysInfo::prettyProductName();
    m.UserName = loginName();
    m.ProcessorName = processorName();
    m.StartTick = GetTickCount();

    const QLocale locale = QLocale::system();
    if (locale.territory() == QLocale::AnyTerritory || locale.language() == QLocale::C) {
        // No locale set up (a bare server or CI): speak as an American client.
        m.CountryAbbreviation = QStringLiteral("USA");
        m.CountryName = QStringLiteral("United States");
        m.LanguageAbbreviation = QStringLiteral("ENU");
        m.LanguageName = QStringLiteral("English");
        return;
    }
    const QString territory = QLocale::territoryToCode(locale.territory());
    m.CountryAbbreviation = threeLetterCountry(territory);
    m.CountryName = locale.nativeTerritoryName();
    // Language code and the first letter of the territory, as "ENU" or "DED".
    m.LanguageAbbreviation =
        (QLocale::languageToCode(locale.language()).left(2) + territory.left(1)).toUpper();
    m.LanguageName = locale.nativeLanguageName();
}
