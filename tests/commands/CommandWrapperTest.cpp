#include "commands/CommandWrapper.h"

#include "commands/BotMail.h"
#include "commands/DatabaseWrapper.h"
#include "commands/MacroWrapper.h"
#include "common/ChatFixture.h"
#include "config/Folders.h"
#include "shell/DesktopShell.h"

#include <QSignalSpy>

namespace {

// A profile bound to a userbase of five people, sockets detached.
class CommandWrapperTest : public ChatFixture {
protected:
    void SetUp() override {
        ChatFixture::SetUp();
        SettingsWrapper::instance().setFloodMode(0);
        killTree(SettingsWrapper::RootKey() + QStringLiteral("Databases\\crew"));
        for (const char* file : {"Quotes.ini", "Definitions.ini", "Macros.ini"})
            QFile::remove(GetSettingsPath() + QLatin1String(file));
        slot = loadConnected(QStringLiteral("commander"));
        Bots(slot).setOnline(true);
        Bots(slot).Config.setTrigger(QStringLiteral("!"));
        Bots(slot).Config.setClient(QStringLiteral("STAR"));
        Bots(slot).setDatabase(QStringLiteral("crew"));
        DatabaseWrapper db;
        db.AddUser(slot, QStringLiteral("Boss"), 100);
        db.AddUser(slot, QStringLiteral("Deputy"), 99);
        db.AddUser(slot, QStringLiteral("Op"), 90);
        db.AddUser(slot, QStringLiteral("Helper"), 30);
        db.AddUser(slot, QStringLiteral("Guest"), 10);
        Bots(slot).Queue.clear();
        rtbChat(slot).clear();
    }

    bool run(const QString& speaker, const QString& line) {
        return CommandWrapper().SearchCommands(slot, speaker, line, false);
    }
    // One command by a speaker, and what it put on the send queue.
    QStringList said(const QString& speaker, const QString& line) {
        Bots(slot).Queue.clear();
        run(speaker, line);
        return Bots(slot).Queue;
    }
    QString lastReply(const QString& speaker, const QString& line) {
        const QStringList lines = said(speaker, line);
        return lines.isEmpty() ? QString() : lines.last();
    }
    qint32 rankOf(QString name) {
        qint32 rank = 0;
        DatabaseWrapper().GrabRank(slot, name, rank);
        return rank;
    }

    int slot = 0;
};

TEST_F(CommandWrapperTest, RanksReachTheirLevelsAndNoHigher) {
    QSignalSpy quits(&DesktopShell::instance(), &DesktopShell::quitRequested);
    EXPECT_FALSE(run(QStringLiteral("Deputy"), QStringLiteral("quit")));
    EXPECT_FALSE(run(QStringLiteral("Deputy"), QStringLiteral("hide")));
    EXPECT_EQ(quits.count(), 0);
    EXPECT_TRUE(run(QStringLiteral("boss"), QStringLiteral("QuIt")));
    EXPECT_EQ(quits.count(), 1);

    // Too low a rank looks like no command at all: no reply, nothing queued.
    EXPECT_TRUE(said(QStringLiteral("Helper"), QStringLiteral("ban someone")).isEmpty());
    EXPECT_FALSE(run(QStringLiteral("Helper"), QStringLiteral("ban someone")));
    EXPECT_EQ(said(QStringLiteral("Op"), QStringLiteral("ban someone")),
              QStringList{QStringLiteral("/ban someone")});

    // Strangers and one-letter lines get silence.
    Bots(slot).Queue.clear();
    EXPECT_FALSE(run(QStringLiteral("Stranger"), QStringLiteral("ver")));
    EXPECT_FALSE(run(QStringLiteral("Boss"), QStringLiteral("u")));
    EXPECT_TRUE(Bots(slot).Queue.isEmpty());

    // Diablo II character names are ranked by their account.
    EXPECT_EQ(lastReply(QStringLiteral("Knight*Guest"), QStringLiteral("ver")).left(12),
              QStringLiteral("Corvantide v"));
}

TEST_F(CommandWrapperTest, PlainAndArgumentFormsAreApart) {
    EXPECT_FALSE(run(QStringLiteral("Op"), QStringLiteral("ban")));
    EXPECT_EQ(said(QStringLiteral("Op"), QStringLiteral("ban ")), QStringList{"/ban "});
    EXPECT_FALSE(run(QStringLiteral("Boss"), QStringLiteral("quit now")));
    EXPECT_EQ(said(QStringLiteral("Op"), QStringLiteral("dnd")), QStringList{"/dnd"});
    EXPECT_EQ(said(QStringLiteral("Op"), QStringLiteral("dnd back soon")),
              QStringList{"/dnd back soon"});
    EXPECT_EQ(said(QStringLiteral("Helper"), QStringLiteral("away")), QStringList{"/away"});
    EXPECT_EQ(said(QStringLiteral("Helper"), QStringLiteral("away x")), QStringList{"/away x"});
    // A word that only sounds like a setting finds no other table.
    EXPECT_FALSE(run(QStringLiteral("Boss"), QStringLiteral("settle down")));
}

TEST_F(CommandWrapperTest, RankedUsersAreSparedByName) {
    EXPECT_EQ(lastReply(QStringLiteral("Op"), QStringLiteral("ban guest")),
              QStringLiteral("Could not ban that user they are in the database."));
    EXPECT_EQ(lastReply(QStringLiteral("Op"), QStringLiteral("k Guest")),
              QStringLiteral("Could not kick that user they are in the database."));
    // With a reason the whole text is looked up and finds nobody.
    EXPECT_EQ(lastReply(QStringLiteral("Op"), QStringLiteral("kick Guest go away")),
              QStringLiteral("/kick Guest go away"));
    // A block looks up the first word alone.
    EXPECT_EQ(lastReply(QStringLiteral("Op"), QStringLiteral("block Guest go away")),
              QStringLiteral("Could not ignore that user they are in the database."));
    EXPECT_EQ(lastReply(QStringLiteral("Op"), QStringLiteral("block Pest#2 noisy")),
              QStringLiteral("Added block for Pest, you should not see them chatting anymore."));
    EXPECT_TRUE(IsBlocked(QStringLiteral("pest")));
    EXPECT_EQ(lastReply(QStringLiteral("Op"), QStringLiteral("block Pest")),
              QStringLiteral("Block already exists for that user."));
    EXPECT_EQ(lastReply(QStringLiteral("Op"), QStringLiteral("unblock Pest#1")),
              QStringLiteral("Removed block for Pest, you should see them chatting again."));
    EXPECT_EQ(lastReply(QStringLiteral("Op"), QStringLiteral("unblock Pest")),
              QStringLiteral("Block does not exist for that user."));
}

TEST_F(CommandWrapperTest, RanksAreGivenAndTakenOnlyBelowYourOwn) {
    const QString higher =
        QStringLiteral("Could not add user, rank specified is higher than yours.");
    EXPECT_EQ(lastReply(QStringLiteral("Op"), QStringLiteral("add newbie 90")), higher);
    EXPECT_EQ(lastReply(QStringLiteral("Boss"), QStringLiteral("add newbie 100")), higher);
    EXPECT_EQ(lastReply(QStringLiteral("Op"), QStringLiteral("add newbie 89")),
              QStringLiteral("Added newbie to the userbase."));
    EXPECT_EQ(rankOf(QStringLiteral("NEWBIE")), 89);
    const QString invalid =
        QStringLiteral("Could not add user, invalid rank or user already exists in userbase.");
    EXPECT_EQ(lastReply(QStringLiteral("Op"), QStringLiteral("add Newbie 20")), invalid);
    EXPECT_EQ(lastReply(QStringLiteral("Op"), QStringLiteral("add other ten")), invalid);
    EXPECT_EQ(lastReply(QStringLiteral("Op"), QStringLiteral("add other 0")), invalid);
    EXPECT_EQ(lastReply(QStringLiteral("Op"), QStringLiteral("add other")),
              QStringLiteral(
                  "Please include the username you want to add followed by their rank (1-100)."));

    EXPECT_EQ(lastReply(QStringLiteral("Op"), QStringLiteral("remove op")),
              QStringLiteral("Could not remove user, rank of that user is higher than yours."));
    EXPECT_EQ(lastReply(QStringLiteral("Op"), QStringLiteral("remove nobody")),
              QStringLiteral("Could not remove user, user not found in userbase."));
    EXPECT_EQ(lastReply(QStringLiteral("Op"), QStringLiteral("remove newbie")),
              QStringLiteral("Removed newbie from the userbase."));
    EXPECT_EQ(rankOf(QStringLiteral("newbie")), 0);
    EXPECT_EQ(lastReply(QStringLiteral("Guest"), QStringLiteral("find helper")),
              QStringLiteral("Helper has a rank of 30."));
    EXPECT_EQ(lastReply(QStringLiteral("Guest"), QStringLiteral("finduser Sword*HELPER")),
              QStringLiteral("Helper has a rank of 30."));
    EXPECT_EQ(lastReply(QStringLiteral("Guest"), QStringLiteral("find newbie")),
              QStringLiteral("Could not find that user."));
}

TEST_F(CommandWrapperTest, SayGuardsServerCommandsBelowNinety) {
    EXPECT_EQ(said(QStringLiteral("Guest"), QStringLiteral("say hello there")),
              QStringList{"hello there"});
    EXPECT_EQ(said(QStringLiteral("Guest"), QStringLiteral("say /ban x")),
              QStringList{"Insufficient permission to send that message."});
    EXPECT_EQ(said(QStringLiteral("Guest"), QStringLiteral("say /O igpub")),
              QStringList{"Insufficient permission to send that message."});
    // One word, or a command not on the guarded list, goes through.
    EXPECT_EQ(said(QStringLiteral("Guest"), QStringLiteral("say /rejoin")), QStringList{"/rejoin"});
    EXPECT_EQ(said(QStringLiteral("Guest"), QStringLiteral("say /w bob hi")),
              QStringList{"/w bob hi"});
    EXPECT_EQ(said(QStringLiteral("Op"), QStringLiteral("say /ban x")), QStringList{"/ban x"});
}

TEST_F(CommandWrapperTest, SettingCommandsKeepTheirBounds) {
    struct Case {
        const char* line;
        const char* reply;
    };
    const Case cases[] = {
        {"sethome ", "Could not change home channel, invalid length."},
        {"sethome 0123456789012345678901234567890123",
         "Could not change home channel, invalid length."},
        {"sethome Op Room", "Successfully set new home channel."},
        {"setaccount 0123456789abcdef", "Could not change account, invalid length."},
        {"setaccount newname", "Successfully set new account."},
        {"setpassword ", "Could not change password, invalid length."},
        {"settrigger ab", "Could not change trigger, invalid length."},
        {"settrigger ", "Could not change trigger, invalid length."},
        {"setserver ", "Could not change BNCS server, please specify server."},
        {"setserverbnls ", "Could not change BNLS server, please specify server."},
        {"setcdkey ", "Could not change cdkey, please specify a cdkey."},
        {"setcdkeyex ", "Could not change expansion cdkey, please specify a cdkey."},
        {"setidletime 0",
         "Could not change idle interval, please specify a number greater than zero."},
        {"setidletime soon",
         "Could not change idle interval, please specify a number greater than zero."},
        {"setidletime 7", "Successfully set new idle interval."},
        {"setidle back at $time", "Successfully set new idle message."},
        {"setproduct STA", "Could not change productID, please specify productID."},
        {"setproduct JSTR", "Could not change productID, that product is not supported."},
        {"setclient 3RAW", "Successfully set new productID."},
    };
    for (const Case& c : cases)
        EXPECT_EQ(lastReply(QStringLiteral("Op"), QLatin1String(c.line)), QLatin1String(c.reply))
            << c.line;
    ConfigWrapper& config = Bots(slot).Config;
    EXPECT_EQ(config.Channel(), QStringLiteral("Op Room"));
    EXPECT_EQ(config.Account(), QStringLiteral("newname"));
    EXPECT_EQ(config.Trigger(), QStringLiteral("!"));
    EXPECT_EQ(config.IdleTime(), 7);
    EXPECT_EQ(config.IdleMsg(), QStringLiteral("back at $time"));
    EXPECT_EQ(config.Client(), QStringLiteral("WAR3"));
    lastReply(QStringLiteral("Op"), QStringLiteral("setproduct d2xp"));
    EXPECT_EQ(config.Client(), QStringLiteral("D2XP"));

    // Both forms of SETIDLE clear the message with the same words.
    const QString cleared =
        QStringLiteral("Idle message has been cleared, as a result idle is now disabled.");
    EXPECT_EQ(lastReply(QStringLiteral("Op"), QStringLiteral("setidle")), cleared);
    config.setIdleMsg(QStringLiteral("x"));
    EXPECT_EQ(lastReply(QStringLiteral("Op"), QStringLiteral("setidle ")), cleared);
    EXPECT_TRUE(config.IdleMsg().isEmpty());
    // Setting commands are for rank 90.
    EXPECT_FALSE(run(QStringLiteral("Helper"), QStringLiteral("settrigger ?")));
}

TEST_F(CommandWrapperTest, QuotesAndDefinitionsByTheirIds) {
    EXPECT_EQ(
        lastReply(QStringLiteral("Helper"), QStringLiteral("addquote wit brevity is the soul")),
        QStringLiteral("Added new quote, type !getquote wit to view."));
    EXPECT_EQ(lastReply(QStringLiteral("Helper"), QStringLiteral("quote WIT again")),
              QStringLiteral("Could not add quote, quote with same ID already exists, type "
                             "!removequote <ID> to delete."));
    EXPECT_EQ(lastReply(QStringLiteral("Helper"), QStringLiteral("getquote Wit")),
              QStringLiteral("Quote: brevity is the soul"));
    EXPECT_EQ(lastReply(QStringLiteral("Helper"), QStringLiteral("quote lonely")),
              QStringLiteral("Insufficient fields specified for quote format, do !addquote <ID> "
                             "<quote>."));
    EXPECT_EQ(said(QStringLiteral("Helper"), QStringLiteral("randomquote")),
              QStringList{"brevity is the soul"});
    EXPECT_EQ(lastReply(QStringLiteral("Helper"), QStringLiteral("removequote wit")),
              QStringLiteral("Removed quote with ID: wit."));
    EXPECT_EQ(lastReply(QStringLiteral("Helper"), QStringLiteral("getquote wit")),
              QStringLiteral("Could not find quote with that ID."));

    EXPECT_EQ(lastReply(QStringLiteral("Helper"), QStringLiteral("define gg good game")),
              QStringLiteral("Added new definition, type !getdef gg to view."));
    EXPECT_EQ(lastReply(QStringLiteral("Helper"), QStringLiteral("getdef GG")),
              QStringLiteral("Definition for GG: good game"));
    EXPECT_EQ(lastReply(QStringLiteral("Helper"), QStringLiteral("defs")),
              QStringLiteral("Definitions: gg."));
    EXPECT_EQ(lastReply(QStringLiteral("Helper"), QStringLiteral("removedef nope")),
              QStringLiteral("Could not remove definition with that ID, it doesn't exist."));
    EXPECT_EQ(lastReply(QStringLiteral("Guest"), QStringLiteral("define x y")), QString());
}

// (A macro's lines on their way out are the end-to-end commands test's.)
TEST_F(CommandWrapperTest, AnEmptyMacroIsHandledSilentlyAndAMissingOneSaysSo) {
    writeFile(GetSettingsPath() + QStringLiteral("Macros.ini"), "empty {\r\n}\r\n");
    MacroWrapper::instance().Reload();
    EXPECT_TRUE(said(QStringLiteral("Helper"), QStringLiteral("macro empty")).isEmpty());
    EXPECT_TRUE(run(QStringLiteral("Helper"), QStringLiteral("macro empty")));
    EXPECT_EQ(lastReply(QStringLiteral("Helper"), QStringLiteral("macro missing")),
              QStringLiteral("Could not find macro with that name."));
}

TEST_F(CommandWrapperTest, ChannelFactsAndTheKeyboardsReplies) {
    BotElement& bot = Bots(slot);
    bot.setChannel(QStringLiteral("Lobby"));
    wsBNET(slot).simulateData(
        chatEventFrame(1, 0x02, 30, QStringLiteral("Op"), "PX3W 0 0 0 0 0 0 0 0 3RAW"));
    wsBNET(slot).simulateData(
        chatEventFrame(1, 0x00, 400, QStringLiteral("Guest"), "RATS 0 0 0 0 0 0 0 0 0 RATS"));
    bot.Queue.clear();
    EXPECT_EQ(lastReply(QStringLiteral("Helper"), QStringLiteral("users")),
              QStringLiteral("There are 2 users here, 1 have ops and 0 users belong to a clan."));
    EXPECT_EQ(lastReply(QStringLiteral("Guest"), QStringLiteral("where")),
              QStringLiteral("/w Guest I am currently in the channel Lobby (2 users)."));
    EXPECT_EQ(lastReply(QStringLiteral("Guest"), QStringLiteral("ping guest")).left(35),
              QStringLiteral("Guest's ping at login was [400 ms ("));
    EXPECT_EQ(lastReply(QStringLiteral("Guest"), QStringLiteral("ping nobody")),
              QStringLiteral("Could not get ping of nobody they are not in the channel."));
    EXPECT_TRUE(lastReply(QStringLiteral("Guest"), QStringLiteral("userinfo Op"))
                    .contains(QStringLiteral("user has flags of [0x02 (")));
    EXPECT_TRUE(lastReply(QStringLiteral("Guest"), QStringLiteral("uptime"))
                    .startsWith(QStringLiteral("[Uptime] System: ")));

    // From the keyboard, replies stay on screen in yellow and nothing is said.
    bot.Queue.clear();
    EXPECT_TRUE(CommandWrapper().SearchCommands(slot, {}, QStringLiteral("where"), true));
    EXPECT_TRUE(CommandWrapper().SearchCommands(slot, {}, QStringLiteral("ver"), true));
    EXPECT_TRUE(bot.Queue.isEmpty());
    EXPECT_TRUE(rtbChat(slot).text().contains(QStringLiteral("Corvantide v")));
    bool yellow = false;
    for (const TextRun& run : rtbChat(slot).runs())
        yellow = yellow || (run.text.contains(QStringLiteral("Corvantide v")) &&
                            run.format.color == 0x00FFFFu);
    EXPECT_TRUE(yellow);
}

} // namespace

namespace {

// Lines as the server delivers them: talk and whispers from the channel.
TEST_F(CommandWrapperTest, TalkAndWhispersReachTheCommandsMailAndTheTriggerQuestion) {
    const auto talk = [&](const char* user, const char* text, quint32 id = 5) {
        Bots(slot).Queue.clear();
        wsBNET(slot).simulateData(
            chatEventFrame(id, 0, 20, QLatin1String(user), QLatin1String(text)));
        return Bots(slot).Queue;
    };
    EXPECT_EQ(talk("Guest", "!say hi").value(0), QStringLiteral("hi"));
    // The trigger is compared without regard to case; a whisper needs the
    // exact character.
    Bots(slot).Config.setTrigger(QStringLiteral("x"));
    EXPECT_EQ(talk("Guest", "Xsay up").value(0), QStringLiteral("up"));
    EXPECT_EQ(talk("Guest", "xsay low", 4).value(0), QStringLiteral("low"));
    EXPECT_TRUE(talk("Guest", "Xsay low", 4).isEmpty());
    EXPECT_TRUE(talk("Stranger", "xsay hi").isEmpty());
    Bots(slot).Config.setTrigger(QStringLiteral("!"));

    EXPECT_EQ(talk("Guest", "?TRIGGER"), QStringList{"Current trigger is: ! (Alt + 33)"});
    EXPECT_TRUE(talk("Stranger", "?trigger").isEmpty());
    EXPECT_TRUE(rtbChat(slot).text().contains(QStringLiteral("?trigger")));

    // "!readall" is no command, so with trigger "!" it still reaches the mail.
    AddMail(slot, QStringLiteral("guest"), QStringLiteral("see you at nine"));
    const QStringList read = talk("Guest", "!readall");
    ASSERT_EQ(read.size(), 1);
    EXPECT_TRUE(read[0].startsWith(QStringLiteral("/w Guest 1: see you at nine   (From: ")));
}

} // namespace
