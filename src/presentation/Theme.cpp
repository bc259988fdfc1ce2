#include "presentation/Theme.h"

#include "config/FileHandler.h"
#include "config/Folders.h"
#include "config/SettingsWrapper.h"
#include "presentation/ChatWriter.h"
#include "session/SlotTable.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>

namespace {

constexpr quint32 rgb(quint32 r, quint32 g, quint32 b) {
    return r | (g << 8) | (b << 16);
}

// The classic desktop scheme, by colour number.
constexpr std::array<quint32, 25> kSchemeColors{
    rgb(212, 208, 200), rgb(58, 110, 165),  rgb(10, 36, 106),   rgb(128, 128, 128),
    rgb(212, 208, 200), rgb(255, 255, 255), rgb(0, 0, 0),       rgb(0, 0, 0),
    rgb(0, 0, 0),       rgb(255, 255, 255), rgb(212, 208, 200), rgb(212, 208, 200),
    rgb(128, 128, 128), rgb(10, 36, 106),   rgb(255, 255, 255), rgb(212, 208, 200),
    rgb(128, 128, 128), rgb(128, 128, 128), rgb(0, 0, 0),       rgb(212, 208, 200),
    rgb(255, 255, 255), rgb(64, 64, 64),    rgb(212, 208, 200), rgb(0, 0, 0),
    rgb(255, 255, 225)};
constexpr quint32 kGreyText = 17;

// The number at the start of a colour value as a 32-bit pattern: decimal
// with an optional sign, or hexadecimal behind "&H".
quint32 parseColor(QStringView text) {
    text = text.trimmed();
    quint32 value = 0;
    if (text.startsWith(QLatin1String("&H"), Qt::CaseInsensitive)) {
        for (QChar c : text.mid(2)) {
            const int digit = QStringLiteral("0123456789ABCDEF").indexOf(c.toUpper());
            if (digit < 0) break;
            value = value * 16 + quint32(digit);
        }
        return value;
    }
    const bool negative = text.startsWith(u'-');
    if (negative || text.startsWith(u'+')) text = text.mid(1);
    for (QChar c : text) {
        if (c < u'0' || c > u'9') break;
        value = value * 10 + quint32(c.unicode() - u'0');
    }
    return negative ? 0u - value : value;
}

class ThemeReader {
public:
    explicit ThemeReader(QString file) : m_file(std::move(file)) {}

    void color(const char* section, const char* key, quint32& field) const {
        const QString text = ReadIni(m_file, QLatin1String(section), QLatin1String(key));
        if (!text.trimmed().isEmpty()) field = parseColor(text);
    }
    void text(const char* section, const char* key, QString& field) const {
        bool found = false;
        const QString value =
            ReadIni(m_file, QLatin1String(section), QLatin1String(key), field, &found);
        if (found) field = value;
    }
    void userColors(const char* section, UserColors& c) const {
        color(section, "Normal", c.Normal);
        color(section, "Moderator", c.Moderator);
        color(section, "BlizzardRep", c.BlizzardRep);
        color(section, "Squelched", c.Squelched);
        color(section, "Blocked", c.Blocked);
        color(section, "Idle_10min", c.Idle_10min);
        color(section, "Idle_20min", c.Idle_20min);
        color(section, "Yourself", c.Yourself);
    }

private:
    QString m_file;
};

void readTheme(const ThemeReader& in, ThemeRecord& t) {
    for (int digit = 0; digit < 10; ++digit) {
        const QByteArray key = QByteArray::number(digit);
        in.color("CustomColors", key.constData(), t.custom[size_t(digit)]);
    }

    StarCraftColors& sc = t.starcraft;
    in.color("StarCraftColors", "Grey", sc.Grey);
    in.color("StarCraftColors", "Torquiose", sc.Torquiose);
    in.color("StarCraftColors", "Violet", sc.Violet);
    in.color("StarCraftColors", "Yellow", sc.Yellow);
    in.color("StarCraftColors", "Green", sc.Green);
    in.color("StarCraftColors", "Red", sc.Red);
    in.color("StarCraftColors", "White", sc.White);

    DiabloColors& d = t.diablo;
    in.color("DiabloColors", "White", d.White);
    in.color("DiabloColors", "Red", d.Red);
    in.color("DiabloColors", "Blue", d.Blue);
    in.color("DiabloColors", "Green", d.Green);
    in.color("DiabloColors", "Yellow", d.Yellow);
    in.color("DiabloColors", "Grey", d.Grey);
    in.color("DiabloColors", "Black", d.Black);
    in.color("DiabloColors", "Orange", d.Orange);
    in.color("DiabloColors", "Gold", d.Gold);
    in.color("DiabloColors", "Purple", d.Purple);
    in.color("DiabloColors", "DarkGreen", d.DarkGreen);

    in.userColors("DefinedUserColors", t.userList);
    in.userColors("DefinedUserInChatColors", t.userInChat);

    StatusColors& s = t.status;
    in.color("DefinedStatusColors", "Success", s.Success);
    in.color("DefinedStatusColors", "Information", s.Information);
    in.color("DefinedStatusColors", "Error", s.Error);
    in.color("DefinedStatusColors", "Failure", s.Failure);
    in.color("DefinedStatusColors", "Warning", s.Warning);
    in.color("DefinedStatusColors", "Neutral", s.Neutral);
    in.color("DefinedStatusColors", "Time", s.Time);

    in.color("DefinedClanColors", "Chieftain", t.clan.Chieftain);
    in.color("DefinedClanColors", "Shaman", t.clan.Shaman);
    in.color("DefinedClanColors", "Peon", t.clan.Peon);
    in.color("DefinedClanColors", "Grunt", t.clan.Grunt);
    in.color("DefinedFriendColors", "Offline", t.friends.Offline);
    in.color("DefinedFriendColors", "Online", t.friends.Online);
    in.color("DefinedFriendColors", "Mutual", t.friends.Mutual);

    InterfaceColors& ui = t.interface;
    in.color("InterfaceColors", "BackColor", ui.BackColor);
    in.color("InterfaceColors", "BorderColor", ui.BorderColor);
    in.color("InterfaceColors", "ForeColor", ui.ForeColor);
    in.text("InterfaceColors", "TextAlign", ui.TextAlign);
    ui.TextAlign.truncate(1);
    in.text("InterfaceColors", "CenterPicture", ui.CenterPicture);
    in.text("InterfaceColors", "LeftPicture", ui.LeftPicture);
    in.text("InterfaceColors", "ListPicture", ui.ListPicture);
    in.text("InterfaceColors", "RightPicture", ui.RightPicture);

    in.text("Time", "Time", t.time);

    ChatEventTemplates& e = t.events;
    in.text("ChatEvent", "talk", e.talk);
    in.text("ChatEvent", "emote", e.emote);
    in.text("ChatEvent", "whisperto", e.whisperto);
    in.text("ChatEvent", "whisperfrom", e.whisperfrom);
    in.text("ChatEvent", "join", e.join);
    in.text("ChatEvent", "present", e.present);
    in.text("ChatEvent", "leave", e.leave);
    in.text("ChatEvent", "broadcast", e.broadcast);
    in.text("ChatEvent", "channeljoined", e.channeljoined);
    in.text("ChatEvent", "channeldoesnotexist", e.channeldoesnotexist);
    in.text("ChatEvent", "channelfull", e.channelfull);
    in.text("ChatEvent", "channelrestricted", e.channelrestricted);
    in.text("ChatEvent", "flagupdate", e.flagupdate);
    in.text("ChatEvent", "error", e.error);
    in.text("ChatEvent", "error", e.info);
}

} // namespace

ThemeRecord& CurrentTheme() {
    static ThemeRecord theme;
    return theme;
}

quint32 DisplayColor(quint32 color) {
    if ((color & 0x80000000u) == 0) return color & 0xFFFFFF;
    const quint32 number = color & 0xFF;
    return kSchemeColors[number < kSchemeColors.size() ? number : kGreyText];
}

QString ThemePath() {
    const QString path = GetProgramFolder() + QStringLiteral("/Themes/");
    QDir().mkpath(path);
    return path;
}

void LoadTheme(const QString& name) {
    const QString file = ThemePath() + name + QStringLiteral(".ini");
    {
        QFile touch(file);
        touch.open(QIODevice::Append);
    }
    ThemeRecord theme;
    readTheme(ThemeReader(file), theme);
    CurrentTheme() = std::move(theme);
    Q_EMIT ThemeEvents::instance().themeLoaded();
}

void SeedDefaultThemes() {
    const QString folder = ThemePath();
    QDirIterator shipped(QStringLiteral(":/Themes"), QDir::Files);
    while (shipped.hasNext()) {
        const QString source = shipped.next();
        const QString target = folder + shipped.fileName();
        if (QFile::exists(target)) continue;
        QFile in(source);
        QFile out(target);
        if (in.open(QIODevice::ReadOnly) && out.open(QIODevice::WriteOnly)) out.write(in.readAll());
    }
}

QStringList ThemeNames() {
    QStringList names;
    for (const QString& file : ListFiles(ThemePath() + QStringLiteral("*.qss"))) {
        if (!file.isEmpty()) names.append(file.chopped(4));
    }
    return names;
}

QStringList ImportThemes() {
    const QStringList names = ThemeNames();
    for (const QString& name : names)
        WriteChat(0, {{0x00FFFF, QStringLiteral("- Importing theme ") + name}});
    return names;
}

QString ActiveThemeName() {
    const QString wanted = SettingsWrapper::instance().ThemeID().toLower();
    for (const QString& name : ThemeNames()) {
        if (name.toLower() + QStringLiteral(".theme") == wanted) return name;
    }
    return {};
}

QString ReadThemeStyleSheet(const QString& name) {
    QFile file(ThemePath() + name + QStringLiteral(".qss"));
    if (!file.open(QIODevice::ReadOnly)) return {};
    return QString::fromUtf8(file.readAll());
}

void ChooseTheme(const QString& name) {
    WriteChat(SlotTable::instance().CurrentIndex(),
              {{0x00FFFF, QStringLiteral("Applying theme: ") + name + QStringLiteral(".theme")}});
    SettingsWrapper::instance().setThemeID(name + QStringLiteral(".theme"));
    Q_EMIT ThemeEvents::instance().styleSheetChosen(name);
}

ThemeEvents& ThemeEvents::instance() {
    static ThemeEvents events;
    return events;
}
