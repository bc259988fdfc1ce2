#pragma once

#include "config/SettingsCatalogue.h"

#include <QHash>
#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>

class RegistryWrapper;

// The program-wide settings under HKCU\Software\Corvantide4\Settings. A get
// reads the store and a set writes it; nothing is kept here, so a change is in
// force for the next read everywhere. Booleans are dword 0 or 1 and any value
// but 0 reads true. A failed read gives the default. A set says whether the
// value reached the store: a write lost to a full disk is not taken for a
// change, and settingNotSaved tells why.
//
// Every set announces the property's name through settingChanged, so that the
// window can check its menu items, apply fonts and lay itself out again.
class SettingsWrapper : public QObject {
    Q_OBJECT

public:
    static SettingsWrapper& instance();
    explicit SettingsWrapper(RegistryWrapper& store, QObject* parent = nullptr);

    // "HKCU\Software\Corvantide4\" and its "Settings" key.
    static const QString& RootKey();
    static const QString& SettingsKey();

    // The Battle.net gateways and BNLS servers offered when the lists are
    // first made.
    static const QStringList& Gateways();
    static const QStringList& BnlsServers();

    // Start-up: allows writes to create keys and records the program folder
    // as BotDir.
    void RecordBotDir();
    // Start-up: makes sure the seeded keys exist, in order, filling the
    // server lists when they are new. Returns the name of each key it had to
    // create, as the console reports it ("Servers1", ..., "History\Channels").
    QStringList SeedStore();
    // Start-up: reads the settings the menus show and writes each straight
    // back, so every one exists with at least its default.
    void WriteBackStartupSettings();

    // The font families of the host. Until the window supplies them every
    // stored font name counts as installed.
    void setInstalledFonts(const QStringList& families);

// Defaults come from the settings catalogue, looked up once per property.
#define CORVANTIDE_BOOL_SETTING(Name, ValueName)                                                   \
    bool Name() const {                                                                            \
        static const bool fallback =                                                               \
            SettingsCatalogue::ProgramDefault(QStringLiteral(ValueName)) != u"0";                  \
        return readBool(QStringLiteral(ValueName), fallback);                                      \
    }                                                                                              \
    bool set##Name(bool on) {                                                                      \
        return writeBool(QStringLiteral(ValueName), on, QStringLiteral(#Name));                    \
    }
#define CORVANTIDE_DWORD_SETTING(Name)                                                             \
    qint32 Name() const {                                                                          \
        static const qint32 fallback =                                                             \
            SettingsCatalogue::ProgramDefault(QStringLiteral(#Name)).toInt();                      \
        return readDword(QStringLiteral(#Name), fallback);                                         \
    }                                                                                              \
    bool set##Name(qint32 value) {                                                                 \
        return writeDword(QStringLiteral(#Name), value);                                           \
    }
#define CORVANTIDE_STRING_SETTING(Name)                                                            \
    QString Name() const {                                                                         \
        static const QString fallback = SettingsCatalogue::ProgramDefault(QStringLiteral(#Name));  \
        return readString(QStringLiteral(#Name), fallback);                                        \
    }                                                                                              \
    bool set##Name(const QString& value) {                                                         \
        return writeString(QStringLiteral(#Name), value);                                          \
    }

    // Connection.
    CORVANTIDE_BOOL_SETTING(RequestNews, "RequestNews")
    CORVANTIDE_BOOL_SETTING(RequestKeys, "RequestKeys")
    CORVANTIDE_BOOL_SETTING(ShowConnectTime, "ShowConnectTime")
    CORVANTIDE_BOOL_SETTING(ShowAdvanced, "ShowAdvanced")
    CORVANTIDE_BOOL_SETTING(LocalHashing, "LocalHashing")
    CORVANTIDE_STRING_SETTING(PathD2DV)
    CORVANTIDE_STRING_SETTING(PathD2XP)
    CORVANTIDE_STRING_SETTING(PathWAR3)
    CORVANTIDE_STRING_SETTING(PathSTAR)
    // The web page: its port (0: off) and the address it listens on.
    CORVANTIDE_DWORD_SETTING(WebPort)
    CORVANTIDE_STRING_SETTING(WebAddress)

    // Chat display.
    CORVANTIDE_BOOL_SETTING(HideBanUnban, "HideBanUnban")
    CORVANTIDE_BOOL_SETTING(HideEmote, "HideEmote")
    CORVANTIDE_BOOL_SETTING(HideJoinLeave, "HideJoinLeave")
    CORVANTIDE_BOOL_SETTING(HidePresent, "HidePresent")
    CORVANTIDE_BOOL_SETTING(HideOfflineFriends, "HideOfflineFriends")
    CORVANTIDE_BOOL_SETTING(HideChars, "HideChars")
    CORVANTIDE_BOOL_SETTING(VoidView, "VoidView")
    CORVANTIDE_BOOL_SETTING(DecodeUTF8, "DecodeUTF8")
    CORVANTIDE_BOOL_SETTING(Decryption, "Decryption")
    CORVANTIDE_BOOL_SETTING(Encryption, "Encryption")
    CORVANTIDE_BOOL_SETTING(RemoveProfanity, "RemoveProfanity")
    CORVANTIDE_BOOL_SETTING(ImproveProfanity, "ImproveProfanity")
    CORVANTIDE_BOOL_SETTING(AutoCQ, "AutoCQ")
    CORVANTIDE_DWORD_SETTING(ColorDisp)
    CORVANTIDE_BOOL_SETTING(TimeStamp, "TimeStamp")
    CORVANTIDE_BOOL_SETTING(Locked, "Locked")
    CORVANTIDE_BOOL_SETTING(LockWindow, "Locked")
    CORVANTIDE_BOOL_SETTING(WhisperPanel, "WhisperPanel")
    CORVANTIDE_BOOL_SETTING(Logging, "Logging")
    CORVANTIDE_BOOL_SETTING(HtmlLogging, "HtmlLogging")
    CORVANTIDE_BOOL_SETTING(Tabbed, "Tabbed")

    // Flood filter interval in milliseconds: 0, 500, 1000 or 2000.
    qint32 FloodMode() const;
    bool setFloodMode(qint32 milliseconds);

    // Icons.
    CORVANTIDE_DWORD_SETTING(IconDisp)
    CORVANTIDE_BOOL_SETTING(IconDraw, "IconDraw")

    // Fonts. A stored family the host lacks reads as the default.
    QString ChatFont() const;
    bool setChatFont(const QString& family);
    CORVANTIDE_DWORD_SETTING(ChatSize)
    QString TextFont() const;
    bool setTextFont(const QString& family);
    CORVANTIDE_DWORD_SETTING(TextSize)
    QString ListFont() const;
    bool setListFont(const QString& family);
    CORVANTIDE_DWORD_SETTING(ListSize)

    // Media.
    CORVANTIDE_STRING_SETTING(MediaPlayer)
    CORVANTIDE_STRING_SETTING(WinampDir)
    CORVANTIDE_STRING_SETTING(WmpDir)
    CORVANTIDE_STRING_SETTING(FoobarDir)
    CORVANTIDE_STRING_SETTING(iTunesDir)

    // Window.
    CORVANTIDE_BOOL_SETTING(Tray, "Tray")
    CORVANTIDE_BOOL_SETTING(Sidebar, "Sidebar")
    // Window opacity in percent: 20, 40, 60, 80 or 100.
    qint32 Transparency() const;
    bool setTransparency(qint32 percent);
    // Start with the desktop session: an XDG autostart entry, not a value of
    // the store. Off removes the entry, so that none is made unasked.
    bool WindowsStartup() const;
    bool setWindowsStartup(bool on);
    CORVANTIDE_STRING_SETTING(ThemeID)
    CORVANTIDE_STRING_SETTING(ThemeFile)

    // Window flashing; Flash is the master switch.
    CORVANTIDE_BOOL_SETTING(Flash, "FlashEnabled")
    CORVANTIDE_BOOL_SETTING(FlashTalk, "FlashTalk")
    CORVANTIDE_BOOL_SETTING(FlashEmote, "FlashEmote")
    CORVANTIDE_BOOL_SETTING(FlashWhisper, "FlashWhisper")
    CORVANTIDE_BOOL_SETTING(FlashBan, "FlashBan")
    CORVANTIDE_BOOL_SETTING(FlashFriendOn, "FlashFriendOn")
    CORVANTIDE_BOOL_SETTING(FlashFriendOff, "FlashFriendOff")
    CORVANTIDE_BOOL_SETTING(FlashFriendGame, "FlashFriendGame")

    // Tray tips; Balloon is the master switch.
    CORVANTIDE_BOOL_SETTING(Balloon, "BalloonEnabled")
    CORVANTIDE_BOOL_SETTING(BalloonTalk, "BalloonTalk")
    CORVANTIDE_BOOL_SETTING(BalloonEmote, "BalloonEmote")
    CORVANTIDE_BOOL_SETTING(BalloonWhisper, "BalloonWhisper")
    CORVANTIDE_BOOL_SETTING(BalloonBan, "BalloonBan")
    CORVANTIDE_BOOL_SETTING(BalloonFriendOn, "BalloonFriendOn")
    CORVANTIDE_BOOL_SETTING(BalloonFriendOff, "BalloonFriendOff")
    CORVANTIDE_BOOL_SETTING(BalloonFriendGame, "BalloonFriendGame")

    // The program's web site, "host" or "host:port": its version file and
    // count of users online. Empty: no web reads at all.
    CORVANTIDE_STRING_SETTING(WebHost)

    // Scripts and plug-ins: how many megabytes each may grow the bot by
    // before it is stopped and unloaded. Read as at least 16.
    qint32 ScriptMemoryLimit() const;
    bool setScriptMemoryLimit(qint32 megabytes);

#undef CORVANTIDE_BOOL_SETTING
#undef CORVANTIDE_DWORD_SETTING
#undef CORVANTIDE_STRING_SETTING

Q_SIGNALS:
    // A set of the property happened, or a fallback font asks for the
    // property to be applied again.
    void settingChanged(const QString& property) const;
    // A set of the property did not reach the store, for the reason given
    // ("the disk is full").
    void settingNotSaved(const QString& property, const QString& cause) const;

private:
    bool readBool(const QString& valueName, bool defaultValue) const;
    bool writeBool(const QString& valueName, bool on, const QString& property);
    qint32 readDword(const QString& valueName, qint32 defaultValue) const;
    bool writeDword(const QString& valueName, qint32 value, const QString& property = {});
    QString readString(const QString& valueName, const QString& defaultValue) const;
    bool writeString(const QString& valueName, const QString& value, const QString& property = {});
    // Announces the set, and its failure when it did not reach the store.
    bool announce(const QString& property, bool saved, const QString& cause);
    QString readFont(const QString& valueName, bool* fellBack = nullptr) const;

    RegistryWrapper& store_;
    // Dwords as read since the store's last write, by value name: every chat
    // event asks for a few settings, and the store's next write forgets them.
    struct DwordRead {
        qint32 defaultValue;
        qint32 value;
    };
    mutable QHash<QString, DwordRead> dwords_;
    mutable quint64 dwordsWrites_ = ~quint64(0);
    QSet<QString> fonts_;
};
