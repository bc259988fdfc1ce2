#include "common/ChatFixture.h"
#include "presentation/ChatLog.h"
#include "presentation/ChatWriter.h"

#include <QSignalSpy>

class ThemeTest : public ChatFixture {
protected:
    void SetUp() override {
        ChatFixture::SetUp();
        QDir(ThemePath()).removeRecursively();
    }
    static QString themeFile(const QString& name) { return ThemePath() + name + ".ini"; }
};

TEST_F(ThemeTest, EveryKeyAFileLacksTakesItsDefaultOnEveryLoad) {
    writeFile(themeFile("Custom"), "[ChatEvent]\r\ntalk=#1%message\r\nerror=#2oops\r\n"
                                   "[CustomColors]\r\n3=  255 and more\r\n4=&HFF00\r\n5=-1\r\n"
                                   "6=\r\n[InterfaceColors]\r\nTextAlign=Left\r\n"
                                   "[DefinedUserColors]\r\nYourself=2147483665\r\n");
    QSignalSpy loaded(&ThemeEvents::instance(), &ThemeEvents::themeLoaded);
    LoadTheme("Custom");
    EXPECT_EQ(loaded.count(), 1);
    const ThemeRecord& t = CurrentTheme();
    EXPECT_EQ(t.events.talk, QStringLiteral("#1%message"));
    EXPECT_EQ(t.events.error, QStringLiteral("#2oops"));
    EXPECT_EQ(t.events.info, QStringLiteral("#2oops")) << "the key error is read twice";
    EXPECT_EQ(t.events.leave, ChatEventTemplates{}.leave);
    EXPECT_EQ(t.custom[3], 255u);
    EXPECT_EQ(t.custom[4], 0xFF00u);
    EXPECT_EQ(t.custom[5], 0xFFFFFFFFu);
    EXPECT_EQ(t.custom[6], 0xFFFFFFu) << "an empty value takes the default";
    EXPECT_EQ(t.interface.TextAlign, QStringLiteral("L"));
    EXPECT_EQ(t.userList.Yourself, 0x80000011u);
    EXPECT_EQ(t.userInChat.Yourself, 0xFF00FFu);

    // A new file starts from the defaults, not from the theme before; a
    // missing one is created empty.
    LoadTheme("Fresh");
    EXPECT_TRUE(QFile::exists(themeFile("Fresh")));
    EXPECT_EQ(CurrentTheme().events.talk, ChatEventTemplates{}.talk);
    EXPECT_EQ(CurrentTheme().events.info, QStringLiteral("#0[Info] %message"));
    EXPECT_EQ(CurrentTheme().custom[3], 0xFFFFFFu);
    EXPECT_EQ(CurrentTheme().time, QStringLiteral("#0[%time] "));
}

TEST_F(ThemeTest, TheShippedThemeIsSeededOnceAndChosenByThemeId) {
    SeedDefaultThemes();
    ASSERT_TRUE(QFile::exists(themeFile("Default")));
    ASSERT_TRUE(QFile::exists(ThemePath() + "Default.qss"));
    LoadTheme("Default");
    EXPECT_NE(CurrentTheme().interface.ForeColor, 0u);
    EXPECT_EQ(CurrentTheme().events.join, ChatEventTemplates{}.join);
    EXPECT_FALSE(ReadThemeStyleSheet("Default").isEmpty());

    // The user's own edit survives the next start.
    writeFile(ThemePath() + "Default.qss", "QWidget { color: red; }");
    SeedDefaultThemes();
    EXPECT_EQ(ReadThemeStyleSheet("Default"), QStringLiteral("QWidget { color: red; }"));
    EXPECT_EQ(ReadThemeStyleSheet("Missing"), QString());

    // (Choosing one from the menu is the window test's.)
    writeFile(ThemePath() + "Night.qss", "");
    EXPECT_EQ(ImportThemes(), (QStringList{"Default", "Night"}));
    SettingsWrapper::instance().setThemeID("NIGHT.theme");
    EXPECT_EQ(ActiveThemeName(), QStringLiteral("Night"));
}

class ChatLogTest : public ChatFixture {
protected:
    static QString logOf(const QString& profile) {
        QFile file(LogFileName(profile, QDate::currentDate()));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }
};

TEST_F(ChatLogTest, OneFilePerProfileAndDayWithOneHeaderAndABlockPerSave) {
    const int talker = SlotTable::instance().LoadProfile("a/b");
    SlotTable::instance().LoadProfile("silent");
    WriteChat(talker, Status::Information, "unlogged");
    SaveLogFiles();
    EXPECT_FALSE(QDir(GetSettingsPath() + "Logs").exists()) << "logging off: not even the folder";
    rtbChat(talker).clear();
    SettingsWrapper::instance().setLogging(true);
    WriteChat(talker, Status::Information, "first");
    SaveLogFiles();
    WriteChat(talker, Status::Information, "second");
    SaveLogFiles();

    EXPECT_TRUE(LogFileName("a/b", QDate(2024, 3, 5)).endsWith("/Logs/a_b ~ 05-03-24.txt"));
    EXPECT_FALSE(QFile::exists(LogFileName("silent", QDate::currentDate())));
    const QString log = logOf("a/b");
    const QString rule(70, u'-');
    EXPECT_TRUE(log.startsWith(rule + "\r\nCorvantide v4.0 Text Log for a/b\r\n" + rule +
                               "\r\n\r\nLog below saved at "));
    EXPECT_EQ(log.count("Text Log for"), 1);
    EXPECT_EQ(log.count("Log below saved at "), 2);
    EXPECT_TRUE(log.endsWith(rule + "\r\nfirst\r\nsecond\r\n"));
}
