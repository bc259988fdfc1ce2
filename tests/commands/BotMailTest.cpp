#include "commands/BotMail.h"

#include "common/ChatFixture.h"
#include "config/TextListFile.h"

#include <sys/stat.h>

class BotMailTest : public ChatFixture {
protected:
    void SetUp() override {
        ChatFixture::SetUp();
        QDir(GetProgramFolder() + QStringLiteral("/Mail")).removeRecursively();
        slot = load("alpha", "Keeper", "STAR");
        Bots(slot).UniqueAccount = QStringLiteral("Keeper#2");
    }

    static int load(const QString& profile, const QString& account, const QString& client) {
        const int i = SlotTable::instance().LoadProfile(profile);
        Bots(i).Config.setAccount(account);
        Bots(i).Config.setClient(client);
        return i;
    }
    QStringList take() {
        const QStringList lines = Bots(slot).Queue;
        Bots(slot).Queue.clear();
        return lines;
    }
    QStringList messages(const QString& user) {
        QList<MailRecord> mails;
        ReadMail(slot, user, mails);
        QStringList out;
        for (const MailRecord& mail : mails)
            out << QString::number(mail.ID) + ':' + mail.Message;
        return out;
    }
    // Mail lines as a hand or an older run left them.
    void append(const QByteArray& bytes) {
        QDir().mkpath(GetProgramFolder() + "/Mail");
        QFile file(MailFile(slot));
        ASSERT_TRUE(file.open(QIODevice::Append));
        file.write(bytes);
    }
    void storeLine(const QString& to, const QString& message, const QString& date) {
        append((to + "\tSender\t" + date + '\t' + message + "\r\n").toLatin1());
    }

    static unsigned modeOf(const QString& path) {
        struct stat info {};
        return ::stat(QFile::encodeName(path).constData(), &info) == 0 ? info.st_mode & 0777 : 0;
    }

    int slot = 0;
};

TEST_F(BotMailTest, MailIsStoredAsTabbedFieldsFromTheBotsOwnName) {
    EXPECT_FALSE(HasMail(slot, "bob"));
    append("b\tx\t\t\r\n");
    EXPECT_FALSE(HasMail(slot, "b")) << "under ten bytes is no mail";
    QFile::remove(MailFile(slot));

    QString cause;
    EXPECT_TRUE(AddMail(slot, "Bob", "caf\u00e9 at nine", &cause)) << cause.toStdString();
    // Mail is between users: the folder an older run left open is closed,
    // and the file is the user's alone.
    EXPECT_EQ(modeOf(GetProgramFolder() + "/Mail"), 0700u);
    EXPECT_EQ(modeOf(MailFile(slot)), 0600u);
    QList<MailRecord> mails;
    ASSERT_TRUE(ReadMail(slot, "BOB", mails));
    ASSERT_EQ(mails.size(), 1);
    EXPECT_EQ(mails[0].ID, 1);
    EXPECT_TRUE(mails[0].Date.endsWith('|' + MailDateText(QDate::currentDate())));
    QFile file(GetProgramFolder() + "/Mail/Keeper.ini");
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(),
              "Bob\tKeeper#2\t" + mails[0].Date.toLatin1() + "\tcaf\xE9 at nine\r\n");
}

TEST_F(BotMailTest, MailsAreNumberedPerRecipientAndMoveUpAfterADeletion) {
    AddMail(slot, "bob", "one");
    AddMail(slot, "carl", "for carl");
    AddMail(slot, "BOB", "two");
    storeLine("bob", "bad\tline", "1:00|1/1/99");
    AddMail(slot, "Bob", "three");
    EXPECT_EQ(messages("bob"), (QStringList{"1:one", "2:two", "3:three"}));

    EXPECT_FALSE(DeleteMail(slot, "bob", 4));
    EXPECT_TRUE(DeleteMail(slot, "bob", 1));
    EXPECT_EQ(modeOf(MailFile(slot)), 0600u) << "a rewrite stays private";
    EXPECT_EQ(messages("bob"), (QStringList{"1:two", "2:three"}));
    EXPECT_EQ(ReadTextLines(MailFile(slot)).size(), 3) << "the line of five fields is gone";
    EXPECT_TRUE(DeleteMail(slot, "Bob", -1));
    EXPECT_EQ(messages("bob"), QStringList{});
    EXPECT_EQ(messages("carl"), QStringList{"1:for carl"});

    // Profiles share mail by account.
    AddMail(load("beta", "keeper", "SEXP"), "bob", "hi");
    EXPECT_EQ(messages("bob"), QStringList{"1:hi"});
    EXPECT_FALSE(HasMail(load("gamma", "Someone", "STAR"), "bob"));
}

TEST_F(BotMailTest, JoinNoticeRepeatsUntilTheMailIsRead) {
    AddMail(slot, "Bob", "one");
    AddMail(slot, "bob", "two");
    const QString notice = " You have 2 new mail message(s). Type !read 1 for one message, or "
                           "!readall for all messages.";
    NotifyMailOnJoin(slot, "bob");
    NotifyMailOnJoin(slot, "bob");
    EXPECT_EQ(take(), (QStringList{"/w bob" + notice, "/w bob" + notice}));

    NotifyMailOnJoin(slot, "Bo");
    EXPECT_TRUE(HasMail(slot, "bo")) << "a prefix passes the quick test";
    EXPECT_TRUE(take().isEmpty()) << "but not the reading";

    // Diablo II realms reach the account, whichever character joined.
    Bots(slot).Config.setClient("D2XP");
    NotifyMailOnJoin(slot, "Hero*Bob");
    EXPECT_EQ(take(), QStringList{"/w *Bob" + notice});
    EXPECT_TRUE(AnswerMailRequest(slot, "Hero*Bob", "!readall"));
    const QStringList sent = take();
    ASSERT_EQ(sent.size(), 2);
    EXPECT_TRUE(sent[1].startsWith("/w *Bob 2: two   (From: Keeper#2 at "))
        << sent[1].toStdString();
    EXPECT_EQ(QFileInfo(MailFile(slot)).size(), 0);
    NotifyMailOnJoin(slot, "Hero*Bob");
    EXPECT_TRUE(take().isEmpty());
}

TEST_F(BotMailTest, ReadRequestsWhisperOneOrAllAndCountAsHandled) {
    const QString today = MailDateText(QDate::currentDate());
    storeLine("bob", "old news", "9:15:00|1/2/99");
    storeLine("bob", "fresh", "12:00:00|" + today);
    storeLine("bob", "third", "13:00:00|" + today);

    EXPECT_FALSE(AnswerMailRequest(slot, "bob", "!read"));
    EXPECT_FALSE(AnswerMailRequest(slot, "bob", "!read1"));
    for (const char* silent : {"!read 4", "!read x", "!read 0", "!read -1", "!read 70000"})
        EXPECT_TRUE(AnswerMailRequest(slot, "bob", silent)) << silent;
    EXPECT_TRUE(take().isEmpty());
    EXPECT_EQ(messages("bob").size(), 3);

    EXPECT_TRUE(AnswerMailRequest(slot, "Bob", "!read 3"));
    EXPECT_EQ(take(), QStringList{"/w Bob 3: third   (From: Sender at 13:00:00)"}) << "the last";
    EXPECT_TRUE(AnswerMailRequest(slot, "Bob", "!READ 2"));
    EXPECT_EQ(take(), QStringList{"/w Bob 2: fresh   (From: Sender at 12:00:00)"});
    EXPECT_TRUE(AnswerMailRequest(slot, "Bob", "!ReadAll"));
    EXPECT_EQ(take(), QStringList{"/w Bob 1: old news   (From: Sender on 1/2/99 at 9:15:00)"});
    EXPECT_TRUE(AnswerMailRequest(slot, "Bob", "!readall")) << "handled without mail too";
    EXPECT_TRUE(take().isEmpty());
}
