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
        db.AddUser(slot, QStringLiteral("Mod"), 70);
        db.AddUser(slot, QStringLiteral("Helper"), 30);
        db.AddUser(slot, QStringLiteral("Guest"), 10);
        Bots(slot).Queue.clear();
        rtbChat(slot).clear();
    }

    bool run(const QString& speaker, const QString& line) {
        return CommandWrapper().SearchCommands(slot, speaker, line, false);
    }
    // The last line one command by a speaker put on the send queue.
    QString lastReply(const QString& speaker, const QString& line) {
        Bots(slot).Queue.clear();
        run(speaker, line);
        return Bots(slot).Queue.isEmpty() ? QString() : Bots(slot).Queue.last();
    }
    int slot = 0;
};

// One conversation: who says what, and all the bot says back ("" is silence,
// and then the line was no command). Later rows see what earlier rows stored.
TEST_F(CommandWrapperTest, EachLineIsAnsweredAsTheSpeakersRankAndTheStoreAllow) {
    struct Row {
        const char* speaker;
        const char* line;
        const char* said;
    };
    const char* quietly = "(a command that says nothing)";
    const char* length = "Could not change home channel, invalid length.";
    const char* idle = "Could not change idle interval, please specify a number greater than zero.";
    writeFile(GetSettingsPath() + QStringLiteral("Macros.ini"), "empty {\r\n}\r\n");
    MacroWrapper::instance().Reload();
    QSignalSpy quits(&DesktopShell::instance(), &DesktopShell::quitRequested);
    const char* higher = "Could not add user, rank specified is higher than yours.";
    const char* invalid = "Could not add user, invalid rank or user already exists in userbase.";
    const char* guarded = "Insufficient permission to send that message.";
    const Row rows[] = {
        // Ranks reach their levels and no higher; one-letter lines get silence (strangers'
        // are the end-to-end test's); two letters make a command, REJOIN from rank 80.
        {"Deputy", "quit", ""},
        {"Deputy", "hide", ""},
        {"Boss", "u", ""},
        {"Mod", "rj", ""},
        {"Op", "rj", quietly},
        // (A macro's lines on their way out are the end-to-end commands test's.)
        {"Helper", "macro empty", quietly},
        {"Helper", "macro missing", "Could not find macro with that name."},
        // The plain and the argument form of a command are apart.
        {"Op", "ban", ""},
        {"Op", "ban ", "/ban "},
        {"Boss", "quit now", ""},
        {"Op", "dnd", "/dnd"},
        {"Op", "dnd back soon", "/dnd back soon"},
        {"Helper", "away", "/away"},
        {"Helper", "away x", "/away x"},
        {"Boss", "settle down", ""}, // sounds like a setting, finds no other table
        // Too low a rank looks like no command at all.
        {"Helper", "ban someone", ""},
        {"Op", "ban someone", "/ban someone"},
        // Ranked users are spared by name; with a reason the whole text is
        // looked up for a kick, the first word alone for a block.
        {"Op", "ban guest", "Could not ban that user they are in the database."},
        {"Op", "k Guest", "Could not kick that user they are in the database."},
        {"Op", "kick Guest go away", "/kick Guest go away"},
        {"Op", "block Guest go away", "Could not ignore that user they are in the database."},
        {"Op", "block Pest#2 noisy",
         "Added block for Pest, you should not see them chatting anymore."},
        {"Op", "block Pest", "Block already exists for that user."},
        {"Op", "unblock Pest#1", "Removed block for Pest, you should see them chatting again."},
        {"Op", "unblock Pest", "Block does not exist for that user."},
        // Ranks are given and taken from 70 on, and only below your own.
        {"Helper", "add pal 5", ""},
        {"Mod", "add pal 20", "Added pal to the userbase."},
        {"Op", "add newbie 90", higher},
        {"Boss", "add newbie 100", higher},
        {"Op", "add newbie 89", "Added newbie to the userbase."},
        {"Guest", "find NEWBIE", "newbie has a rank of 89."},
        {"newbie", "say /kick x", guarded},
        {"Op", "add Newbie 20", invalid},
        {"Op", "add other ten", invalid},
        {"Op", "add other 0", invalid},
        {"Op", "add other",
         "Please include the username you want to add followed by their rank (1-100)."},
        {"Op", "remove op", "Could not remove user, rank of that user is higher than yours."},
        {"Op", "remove nobody", "Could not remove user, user not found in userbase."},
        {"Op", "remove newbie", "Removed newbie from the userbase."},
        {"Guest", "find newbie", "Could not find that user."},
        {"Guest", "find helper", "Helper has a rank of 30."},
        {"Guest", "finduser Sword*HELPER", "Helper has a rank of 30."},
        // Mail is for rank 20 on.
        {"Guest", "mail bob hi", ""},
        {"pal", "mail bob hi", "Added new mail message for bob."},
        // Below rank 90, SAY sends no guarded server command of more than a word.
        {"Guest", "say hello there", "hello there"},
        {"Guest", "say /ban x", guarded},
        {"Guest", "say /O igpub", guarded},
        {"Guest", "say /rejoin", "/rejoin"},
        {"Guest", "say /w bob hi", "/w bob hi"},
        {"Op", "say /ban x", "/ban x"},
        // Quotes and definitions by their IDs, in any case.
        {"Helper", "addquote wit brevity is the soul",
         "Added new quote, type !getquote wit to view."},
        {"Helper", "quote WIT again",
         "Could not add quote, quote with same ID already exists, type !removequote <ID> to "
         "delete."},
        {"Helper", "getquote Wit", "Quote: brevity is the soul"},
        {"Helper", "quote lonely",
         "Insufficient fields specified for quote format, do !addquote <ID> <quote>."},
        {"Helper", "randomquote", "brevity is the soul"},
        {"Helper", "removequote wit", "Removed quote with ID: wit."},
        {"Helper", "getquote wit", "Could not find quote with that ID."},
        {"Helper", "define gg good game", "Added new definition, type !getdef gg to view."},
        {"Helper", "getdef GG", "Definition for GG: good game"},
        {"Helper", "defs", "Definitions: gg."},
        {"Helper", "removedef nope", "Could not remove definition with that ID, it doesn't exist."},
        {"Guest", "define x y", ""},
        // Setting commands are for rank 90 and keep their bounds.
        {"Helper", "settrigger ?", ""},
        {"Op", "sethome ", length},
        {"Op", "sethome 01234567890123456789012345678901", length},
        {"Op", "sethome 0123456789012345678901234567890", "Successfully set new home channel."},
        {"Op", "sethome Op Room", "Successfully set new home channel."},
        {"Op", "setaccount 0123456789abcdef", "Could not change account, invalid length."},
        {"Op", "setaccount newname12345678", "Successfully set new account."},
        {"Op", "setpassword ", "Could not change password, invalid length."},
        {"Op", "setpassword 0123456789abcdef", "Could not change password, invalid length."},
        {"Op", "setpassword 0123456789abcde", "Successfully set new password."},
        {"Op", "settrigger ab", "Could not change trigger, invalid length."},
        {"Op", "settrigger ", "Could not change trigger, invalid length."},
        {"Op", "settrigger !", "Successfully set new trigger."},
        {"Op", "setserver ", "Could not change BNCS server, please specify server."},
        {"Op", "setserverbnls ", "Could not change BNLS server, please specify server."},
        {"Op", "setcdkey ", "Could not change cdkey, please specify a cdkey."},
        {"Op", "setcdkeyex ", "Could not change expansion cdkey, please specify a cdkey."},
        {"Op", "setidletime 0", idle},
        {"Op", "setidletime soon", idle},
        {"Op", "setidletime 7", "Successfully set new idle interval."},
        {"Op", "setidle back at $time", "Successfully set new idle message."},
        {"Op", "setproduct STA", "Could not change productID, please specify productID."},
        {"Op", "setproduct JSTR", "Could not change productID, that product is not supported."},
        {"Op", "setclient 3RAW", "Successfully set new productID."},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.speaker) + ": " + row.line);
        Bots(slot).Queue.clear();
        const bool handled = run(QLatin1String(row.speaker), QLatin1String(row.line));
        EXPECT_EQ(Bots(slot).Queue.join(u'\n'), QLatin1String(row.said == quietly ? "" : row.said));
        EXPECT_EQ(handled, *row.said != '\0');
    }
    EXPECT_FALSE(IsBlocked(QStringLiteral("pest")));

    ConfigWrapper& config = Bots(slot).Config;
    EXPECT_EQ(config.Channel(), QStringLiteral("Op Room"));
    EXPECT_EQ(config.Account(), QStringLiteral("newname12345678"));
    EXPECT_EQ(config.Password(), QStringLiteral("0123456789abcde"));
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

    EXPECT_EQ(quits.count(), 0);
    EXPECT_TRUE(run(QStringLiteral("boss"), QStringLiteral("QuIt")));
    EXPECT_EQ(quits.count(), 1);
    // Diablo II character names are ranked by their account.
    EXPECT_EQ(lastReply(QStringLiteral("Knight*Guest"), QStringLiteral("ver")).left(12),
              QStringLiteral("Corvantide v"));
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
    EXPECT_TRUE(CommandWrapper().SearchCommands(slot, {}, QStringLiteral("ver"), true));
    EXPECT_TRUE(bot.Queue.isEmpty());
    bool yellow = false;
    for (const TextRun& run : rtbChat(slot).runs())
        yellow = yellow || (run.text.contains(QStringLiteral("Corvantide v")) &&
                            run.format.color == 0x00FFFFu);
    EXPECT_TRUE(yellow);
}

// Lines as the server delivers them: talk and whispers from the channel.
// (Strangers' silence and the trigger question are the end-to-end test's.)
TEST_F(CommandWrapperTest, TalkAndWhispersReachTheCommandsAndTheMail) {
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
    Bots(slot).Config.setTrigger(QStringLiteral("!"));

    // "!readall" is no command, so with trigger "!" it still reaches the mail.
    AddMail(slot, QStringLiteral("guest"), QStringLiteral("see you at nine"));
    const QStringList read = talk("Guest", "!readall");
    ASSERT_EQ(read.size(), 1);
    EXPECT_TRUE(read[0].startsWith(QStringLiteral("/w Guest 1: see you at nine   (From: ")));
}

} // namespace
