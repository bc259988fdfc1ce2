#include "config/SettingsCatalogue.h"

namespace {

using Entry = SettingsCatalogue::Entry;
using Type = SettingsCatalogue::Type;

Entry text(const char* name, const char* defaultText = "") {
    return {QString::fromLatin1(name), Type::String, QString::fromLatin1(defaultText)};
}

Entry number(const char* name, int defaultValue) {
    return {QString::fromLatin1(name), Type::Dword, QString::number(defaultValue)};
}

Entry flag(const char* name, bool defaultValue, const char* property = nullptr) {
    return {QString::fromLatin1(name), Type::Boolean,
            defaultValue ? QStringLiteral("1") : QStringLiteral("0"),
            property ? QString::fromLatin1(property) : QString()};
}

QList<Entry> profileValues() {
    QList<Entry> list{text("Account"),        text("Password"),
                      text("EmailAddress"),   text("Product"),
                      text("Verbyte"),        text("Cdkey1"),
                      text("Cdkey2"),         text("Owner", "Corvantide"),
                      text("Server"),         text("ServerBNLS"),
                      text("Channel"),        text("Trigger", "."),
                      text("IdleMsg"),        number("IdleTime", 1),
                      text("Database"),       number("PingSpoof", 0),
                      flag("LagPlug", false), flag("Load at Startup", false),
                      flag("Stalk", false),   text("Stalker")};
    for (int i = 0; i <= 9; ++i) {
        const char* quick = i == 0 ? "Op :+" : (i <= 2 ? "Clan DbM" : "--");
        list.append({QStringLiteral("Channels") + QString::number(i), Type::String,
                     QString::fromLatin1(quick)});
    }
    return list;
}

QList<Entry> programValues() {
    return {flag("RequestNews", false),
            flag("RequestKeys", true),
            flag("ShowConnectTime", true),
            flag("ShowAdvanced", false),
            flag("LocalHashing", false),
            text("PathD2DV"),
            text("PathD2XP"),
            text("PathWAR3"),
            text("PathSTAR"),
            flag("HideBanUnban", false),
            flag("HideEmote", false),
            flag("HideJoinLeave", false),
            flag("HidePresent", false),
            flag("HideOfflineFriends", true),
            flag("HideChars", true),
            flag("VoidView", true),
            flag("DecodeUTF8", true),
            flag("Decryption", false),
            flag("Encryption", false),
            flag("RemoveProfanity", true),
            flag("ImproveProfanity", false),
            flag("AutoCQ", true),
            number("ColorDisp", 0),
            flag("TimeStamp", true),
            flag("Locked", false),
            flag("WhisperPanel", false),
            flag("Logging", false),
            flag("HtmlLogging", false),
            flag("Tabbed", true),
            number("FloodMode", 1000),
            number("IconDisp", 1),
            flag("IconDraw", false),
            text("ChatFont", "Arial"),
            number("ChatSize", 8),
            text("TextFont", "Tahoma"),
            number("TextSize", 10),
            text("ListFont", "Tahoma"),
            number("ListSize", 8),
            text("MediaPlayer", "Winamp"),
            text("WinampDir"),
            text("WmpDir"),
            text("FoobarDir"),
            text("iTunesDir"),
            flag("Tray", true),
            flag("Sidebar", true),
            number("Transparency", 100),
            flag("WindowsStartup", false),
            text("ThemeID", "Default.theme"),
            text("ThemeFile", "Default"),
            flag("FlashEnabled", false, "Flash"),
            flag("FlashTalk", false),
            flag("FlashEmote", false),
            flag("FlashWhisper", false),
            flag("FlashBan", false),
            flag("FlashFriendOn", false),
            flag("FlashFriendOff", false),
            flag("FlashFriendGame", false),
            flag("BalloonEnabled", false, "Balloon"),
            flag("BalloonTalk", false),
            flag("BalloonEmote", false),
            flag("BalloonWhisper", false),
            flag("BalloonBan", false),
            flag("BalloonFriendOn", false),
            flag("BalloonFriendOff", false),
            flag("BalloonFriendGame", false),
            text("WebHost"),
            number("ScriptMemoryLimit", 256),
            number("WebPort", 0),
            text("WebAddress", "127.0.0.1")};
}

// Keys whose values the catalogue knows by the shape of their path: the
// depth below the root and the first element.
const QList<Entry>* valuesOf(const QStringList& parts) {
    static const QList<Entry> user{number("Flags", 0)};
    static const QList<Entry> group{text("Prefix"), number("Color", 0xFFFFFF)};
    static QList<Entry> verbytes;
    if (verbytes.isEmpty()) {
        for (int i = 0; i <= 6; ++i)
            verbytes.append({QString::number(i), Type::String, QString()});
    }
    const QString first = parts.value(0).toLower();
    if (parts.size() == 1 && first == u"settings") return &SettingsCatalogue::ProgramValues();
    if (parts.size() == 1 && first == u"verbytes") return &verbytes;
    if (parts.size() == 2 && first == u"profiles") return &SettingsCatalogue::ProfileValues();
    if (parts.size() == 2 && first == u"groups") return &group;
    if (parts.size() == 3 && first == u"databases") return &user;
    return nullptr;
}

const Entry* findIn(const QList<Entry>& values, const QString& valueName) {
    for (const Entry& entry : values) {
        if (entry.valueName.compare(valueName, Qt::CaseInsensitive) == 0) return &entry;
    }
    return nullptr;
}

} // namespace

const QList<Entry>& SettingsCatalogue::ProfileValues() {
    static const QList<Entry> list = profileValues();
    return list;
}

const QList<Entry>& SettingsCatalogue::ProgramValues() {
    static const QList<Entry> list = programValues();
    return list;
}

const Entry* SettingsCatalogue::Find(const QString& keyBelowRoot, const QString& valueName) {
    const QList<Entry>* values = valuesOf(keyBelowRoot.split(u'\\', Qt::SkipEmptyParts));
    return values ? findIn(*values, valueName) : nullptr;
}

const Entry* SettingsCatalogue::FindProfileValue(const QString& valueName) {
    return findIn(ProfileValues(), valueName);
}

QString SettingsCatalogue::ProgramDefault(const QString& valueName) {
    const Entry* entry = findIn(ProgramValues(), valueName);
    return entry ? entry->defaultText : QString();
}

QString SettingsCatalogue::ProfileDefault(const QString& valueName) {
    const Entry* entry = findIn(ProfileValues(), valueName);
    return entry ? entry->defaultText : QString();
}
