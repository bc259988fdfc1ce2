#include "QtPrinters.h"
#include "config/ConfigWrapper.h"
#include "config/Folders.h"
#include "config/RegistryWrapper.h"
#include "config/SettingLimits.h"
#include "config/SettingsWrapper.h"

#include <QCoreApplication>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

class Settings : public ::testing::Test {
protected:
    void SetUp() override {
        savedHome_ = HomeFolder();
        SetHomeFolder(home_.path());
    }
    void TearDown() override { SetHomeFolder(savedHome_); }

    qint32 storedDword(const char* name, qint32 absent = -999) {
        return store_.ReadDWORD(SettingsWrapper::SettingsKey(), QString::fromLatin1(name), absent);
    }

    QTemporaryDir home_;
    QString savedHome_;
    RegistryWrapper store_{QStringLiteral(":memory:")};
    SettingsWrapper settings_{store_};
};

// The defaults that are not the empty value of their type.
TEST_F(Settings, DefaultsOfAnEmptyStore) {
    for (bool on :
         {settings_.RequestKeys(), settings_.ShowConnectTime(), settings_.HideOfflineFriends(),
          settings_.HideChars(), settings_.VoidView(), settings_.DecodeUTF8(),
          settings_.RemoveProfanity(), settings_.AutoCQ(), settings_.TimeStamp(),
          settings_.Tabbed(), settings_.Tray(), settings_.Sidebar()})
        EXPECT_TRUE(on);
    EXPECT_EQ(settings_.FloodMode(), 1000);
    EXPECT_EQ(settings_.IconDisp(), 1);
    EXPECT_EQ(settings_.Transparency(), 100);
    EXPECT_EQ(settings_.ChatFont(), QStringLiteral("Arial"));
    EXPECT_EQ(settings_.ChatSize(), 8);
    EXPECT_EQ(settings_.ListFont(), QStringLiteral("Tahoma"));
    EXPECT_EQ(settings_.TextSize(), 10);
    EXPECT_EQ(settings_.MediaPlayer(), QStringLiteral("Winamp"));
    EXPECT_EQ(settings_.ThemeFile(), QStringLiteral("Default"));
    EXPECT_FALSE(settings_.WindowsStartup());
    EXPECT_FALSE(store_.KeyExists(SettingsWrapper::SettingsKey())) << "a get writes nothing";
}

// The check boxes' value names are the control panel test's: here what no
// box shows.
TEST_F(Settings, SetsReadBackUnderTheirValueNames) {
    QSignalSpy changed(&settings_, &SettingsWrapper::settingChanged);
    settings_.setLockWindow(true);
    settings_.setIconDisp(2);
    settings_.setMediaPlayer(QStringLiteral("foobar"));
    EXPECT_TRUE(settings_.Locked()) << "LockWindow and Locked share one value";
    EXPECT_EQ(settings_.IconDisp(), 2);
    EXPECT_EQ(settings_.MediaPlayer(), QStringLiteral("foobar"));
    ASSERT_EQ(changed.size(), 3);
    EXPECT_EQ(changed[0][0].toString(), QStringLiteral("LockWindow"));
    EXPECT_EQ(changed[2][0].toString(), QStringLiteral("MediaPlayer"));

    // Any dword but 0 is true.
    store_.WriteDWORD(SettingsWrapper::SettingsKey(), QStringLiteral("HideEmote"), -7);
    EXPECT_TRUE(settings_.HideEmote());
}

TEST_F(Settings, RangesAreEnforcedOnRead) {
    const auto storeDword = [&](const char* name, qint32 value) {
        store_.WriteDWORD(SettingsWrapper::SettingsKey(), QString::fromLatin1(name), value);
    };
    for (const auto& [stored, read] :
         {std::pair{750, 1000}, {0, 0}, {500, 500}, {2000, 2000}, {-1, 1000}}) {
        storeDword("FloodMode", stored);
        EXPECT_EQ(settings_.FloodMode(), read) << "stored " << stored;
    }
    storeDword("Transparency", 50);
    EXPECT_EQ(settings_.Transparency(), 100);
    storeDword("Transparency", 40);
    EXPECT_EQ(settings_.Transparency(), 40);
    settings_.setTransparency(55);
    EXPECT_EQ(storedDword("Transparency"), 100) << "a set of another value stores 100";
    settings_.setTransparency(20);
    EXPECT_EQ(settings_.Transparency(), 20);
}

TEST_F(Settings, FontsFallBackWhenTheHostLacksThem) {
    settings_.setChatFont(QStringLiteral("DejaVu Sans"));
    settings_.setListFont(QStringLiteral("No Such Font"));
    EXPECT_EQ(settings_.ChatFont(), QStringLiteral("DejaVu Sans")) << "no list: all count";

    settings_.setInstalledFonts({QStringLiteral("dejavu sans"), QStringLiteral("Tahoma")});
    QSignalSpy changed(&settings_, &SettingsWrapper::settingChanged);
    EXPECT_EQ(settings_.ChatFont(), QStringLiteral("DejaVu Sans"));
    EXPECT_EQ(settings_.ListFont(), QStringLiteral("Tahoma"));
    EXPECT_TRUE(changed.isEmpty());

    settings_.setChatFont(QStringLiteral("Gone"));
    changed.clear();
    EXPECT_EQ(settings_.ChatFont(), QStringLiteral("Arial"));
    ASSERT_EQ(changed.size(), 1);
    EXPECT_EQ(changed[0][0].toString(), QStringLiteral("ChatSize"));
}

TEST_F(Settings, StartupIsAnAutostartEntry) {
    settings_.setWindowsStartup(true);
    EXPECT_TRUE(settings_.WindowsStartup());
    QFile entry(AutostartFile());
    ASSERT_TRUE(entry.open(QIODevice::ReadOnly));
    const QByteArray text = entry.readAll();
    entry.close();
    const QByteArray exec = "Exec=\"" + QCoreApplication::applicationFilePath().toUtf8() +
                            "\" \"--home\" \"" + home_.path().toUtf8() + "\"\n";
    EXPECT_TRUE(text.contains(exec)) << text.constData();
    EXPECT_TRUE(text.startsWith("[Desktop Entry]\n"));

    EXPECT_TRUE(settings_.setWindowsStartup(false));
    EXPECT_FALSE(settings_.WindowsStartup());
    EXPECT_FALSE(QFile::exists(AutostartFile())) << "off removes the entry";

    // A home with characters the Exec line reserves is quoted and escaped.
    QTemporaryDir odd(home_.filePath(QStringLiteral("my $dir \"x\" XXXXXX")));
    SetHomeFolder(odd.path());
    settings_.setWindowsStartup(true);
    QFile oddEntry(AutostartFile());
    ASSERT_TRUE(oddEntry.open(QIODevice::ReadOnly));
    QString escaped = odd.path();
    escaped.replace(QStringLiteral("$"), QStringLiteral("\\\\$"))
        .replace(QStringLiteral("\""), QStringLiteral("\\\\\""));
    const QString oddText = QString::fromUtf8(oddEntry.readAll());
    EXPECT_TRUE(oddText.contains(u'"' + escaped + QStringLiteral("\"\n"))) << oddText.toStdString();
}

TEST_F(Settings, SeedingCreatesMissingKeysInOrder) {
    const QStringList first = settings_.SeedStore();
    EXPECT_EQ(first, (QStringList{QStringLiteral("Servers1"), QStringLiteral("Servers2"),
                                  QStringLiteral("Aliases"), QStringLiteral("Database"),
                                  QStringLiteral("Groups"), QStringLiteral("History\\Channels")}));
    QStringList names;
    EXPECT_EQ(store_.EnumKeys(SettingsWrapper::RootKey() + QStringLiteral("Servers1"), names), 4);
    EXPECT_TRUE(names.contains(QStringLiteral("uswest.battle.net")));
    EXPECT_EQ(store_.EnumKeys(SettingsWrapper::RootKey() + QStringLiteral("Servers2"), names), 17);
    EXPECT_EQ(store_.EnumKeys(SettingsWrapper::RootKey() + QStringLiteral("Databases"), names), 0);

    EXPECT_TRUE(settings_.SeedStore().isEmpty()) << "a second start creates nothing";
    store_.DeleteKey(QStringLiteral("Software\\Corvantide4\\Groups"));
    EXPECT_EQ(settings_.SeedStore(), QStringList{QStringLiteral("Groups")});
    // A list the user emptied is not filled again.
    store_.DeleteKey(QStringLiteral("Software\\Corvantide4\\Servers1\\asia.battle.net"));
    settings_.SeedStore();
    EXPECT_EQ(store_.EnumKeys(SettingsWrapper::RootKey() + QStringLiteral("Servers1"), names), 3);
}

TEST_F(Settings, StartupWritesSettingsBack) {
    store_.WriteDWORD(SettingsWrapper::SettingsKey(), QStringLiteral("FloodMode"), 750);
    store_.setCreateKeyIfDoesntExists(false);
    settings_.RecordBotDir();
    EXPECT_TRUE(store_.CreateKeyIfDoesntExists());
    EXPECT_EQ(store_.ReadSTRING(SettingsWrapper::RootKey(), QStringLiteral("BotDir")),
              GetProgramFolder());

    settings_.WriteBackStartupSettings();
    EXPECT_EQ(storedDword("FloodMode"), 1000) << "the range holds in the store after start";
    EXPECT_EQ(storedDword("Tray"), 1);
    EXPECT_EQ(storedDword("HideBanUnban"), 0);
    EXPECT_FALSE(QFile::exists(AutostartFile())) << "no entry that nobody asked for";
    EXPECT_FALSE(settings_.WindowsStartup());
}

// Without a name a profile guards everything but its channels; with one its values live in
// the profiles' key.
TEST(Profile, ValuesLiveInTheProfilesKey) {
    RegistryWrapper store(QStringLiteral(":memory:"));
    ConfigWrapper config(store);
    EXPECT_EQ(config.Trigger(), QString()) << "not the default \".\"";
    EXPECT_EQ(config.IdleTime(), 0);
    config.setAccount(QStringLiteral("nobody"));
    EXPECT_FALSE(store.KeyExists(SettingsWrapper::RootKey() + QStringLiteral("Profiles")));
    EXPECT_EQ(config.Channels(4), QStringLiteral("--"));
    EXPECT_EQ(store.ReadSTRING(SettingsWrapper::RootKey() + QStringLiteral("Profiles"),
                               QStringLiteral("Channels4")),
              QStringLiteral("--"));

    config.Profile = QStringLiteral("Main");
    const QString key = SettingsWrapper::RootKey() + QStringLiteral("Profiles\\Main");
    EXPECT_EQ(config.profileKey(), key);
    EXPECT_EQ(config.Trigger(), QStringLiteral("."));
    EXPECT_EQ(config.Owner(), QStringLiteral("Corvantide"));
    EXPECT_EQ(config.IdleTime(), 1);
    EXPECT_FALSE(config.StartupLoad());

    config.setEmail(QStringLiteral("a@b.c"));
    config.setClient(QStringLiteral("W3XP"));
    config.setCdkey(QStringLiteral("K1"));
    config.setStartupLoad(true);
    EXPECT_EQ(store.ReadSTRING(key, QStringLiteral("EmailAddress")), QStringLiteral("a@b.c"));
    EXPECT_EQ(store.ReadSTRING(key, QStringLiteral("Product")), QStringLiteral("W3XP"));
    EXPECT_EQ(store.ReadSTRING(key, QStringLiteral("Cdkey1")), QStringLiteral("K1"));
    EXPECT_EQ(store.ReadDWORD(key, QStringLiteral("Load at Startup")), 1);
    EXPECT_TRUE(config.StartupLoad());

    EXPECT_EQ(config.Channels(0), QStringLiteral("Op :+"));
    EXPECT_EQ(config.Channels(1), QStringLiteral("Clan DbM"));
    EXPECT_EQ(config.Channels(2), QStringLiteral("Clan DbM"));
    EXPECT_FALSE(store.ValueExists(key, QStringLiteral("Channels0")));
    EXPECT_EQ(config.Channels(5), QStringLiteral("--"));
    EXPECT_TRUE(store.ValueExists(key, QStringLiteral("Channels5")));
    config.setChannels(5, QStringLiteral("Home"));
    EXPECT_EQ(config.Channels(5), QStringLiteral("Home"));
}

// The choices the terminal offers and holds a value to.
TEST(SettingLimits, EachLimitedValueHasItsChoices) {
    const std::pair<QStringList, QList<qint32>> limits[] = {
        {{"Settings", "FloodMode"}, {0, 500, 1000, 2000}},
        {{"Settings", "Transparency"}, {20, 40, 60, 80, 100}},
        {{"Settings", "ColorDisp"}, {0, 1, 2}},
        {{"Settings", "IconDisp"}, {0, 1, 2}},
        {{"Profiles\\Main", "PingSpoof"}, {0, 1, 2, 3, 4}},
        {{"Settings", "ChatSize"}, {}},
    };
    for (const auto& [value, choices] : limits)
        EXPECT_EQ(SettingLimits::Choices(value[0], value[1]), choices) << value[1].toStdString();
}

} // namespace
