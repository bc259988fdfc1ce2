#include "commands/AliasesAndGroups.h"
#include "commands/BotMail.h"
#include "common/ChatFixture.h"
#include "config/FileStamp.h"
#include "platform/LocalClock.h"
#include "presentation/ChatWriter.h"
#include "presentation/UserColors.h"

#include <QDateTime>
#include <cstdlib>

// What the chat path remembers between events must never show what the
// store or a file held before a change.
class ChatPathCachesTest : public ChatFixture {
protected:
    void SetUp() override {
        ChatFixture::SetUp();
        SettingsWrapper::instance().setFloodMode(0);
        QDir(GetProgramFolder() + QStringLiteral("/Mail")).removeRecursively();
        slot = loadConnected(QStringLiteral("caches"));
        Bots(slot).setOnline(true);
        Bots(slot).UniqueAccount = QStringLiteral("Keeper");
        Bots(slot).Config.setAccount(QStringLiteral("Keeper"));
        read({chatEventFrame(7, 0, 0, {}, QStringLiteral("Hall")),
              chatEventFrame(1, 0, 20, QStringLiteral("bob"), QStringLiteral("RATS 0"))});
    }
    // Frames that arrive in one read from the socket.
    void read(const QList<QByteArray>& frames) {
        QByteArray bytes;
        for (const QByteArray& frame : frames)
            bytes += frame;
        wsBNET(slot).simulateData(bytes);
    }
    QByteArray talk(const QString& text) {
        return chatEventFrame(5, 0, 20, QStringLiteral("bob"), text);
    }
    QString lastLine() { return rtbChat(slot).text().trimmed().section(u'\n', -1); }
    int slot = 0;
};

TEST_F(ChatPathCachesTest, AliasesAndGroupsCountFromTheNextLine) {
    read({talk("one")});
    EXPECT_EQ(lastLine(), QStringLiteral("<bob> one"));
    CreateAlias(QStringLiteral("Robert"), {QStringLiteral("bob")});
    read({talk("two")});
    EXPECT_EQ(lastLine(), QStringLiteral("<Robert> two"));
    DeleteAlias(QStringLiteral("Robert"));
    read({talk("three")});
    EXPECT_EQ(lastLine(), QStringLiteral("<bob> three"));

    const quint32 plain = GetUserColor(slot, QStringLiteral("bob"), 0, true);
    CreateGroup(QStringLiteral("Ops"), {QStringLiteral("bob")}, 0x123456, {});
    EXPECT_EQ(GetUserColor(slot, QStringLiteral("bob"), 0, true), 0x123456u);
    RegistryWrapper::instance().WriteDWORD(SettingsWrapper::RootKey() + "Groups\\Ops",
                                           QStringLiteral("Color"), 0x654321);
    EXPECT_EQ(GetUserColor(slot, QStringLiteral("bob"), 0, true), 0x654321u);
    DeleteGroup(QStringLiteral("Ops"));
    EXPECT_EQ(GetUserColor(slot, QStringLiteral("bob"), 0, true), plain);
}

// A hand edit between two reads counts in the second; the program's own
// write counts at once, within the same read.
TEST_F(ChatPathCachesTest, MailEditedByHandCountsOnTheNextJoin) {
    const auto rejoin = [this] {
        return QList<QByteArray>{chatEventFrame(3, 0, 20, QStringLiteral("bob"), {}),
                                 chatEventFrame(2, 0, 20, QStringLiteral("bob"), "RATS 0")};
    };
    read(rejoin());
    EXPECT_TRUE(Bots(slot).Queue.isEmpty());

    QDir().mkpath(GetProgramFolder() + QStringLiteral("/Mail"));
    writeFile(MailFile(slot), "bob\tann\t12:00:00|1/1/26\thello\r\n");
    read(rejoin());
    ASSERT_EQ(Bots(slot).Queue.size(), 1);
    EXPECT_TRUE(Bots(slot).Queue[0].contains(QStringLiteral("You have 1 new mail")));
    Bots(slot).Queue.clear();

    writeFile(MailFile(slot), "annie\tbob\t12:00:00|1/1/26\thello\r\n");
    read(rejoin());
    EXPECT_TRUE(Bots(slot).Queue.isEmpty());

    {
        const FileStamp::Burst burst;
        NotifyMailOnJoin(slot, QStringLiteral("bob"));
        AddMail(slot, QStringLiteral("bob"), QStringLiteral("again"));
        NotifyMailOnJoin(slot, QStringLiteral("bob"));
    }
    ASSERT_EQ(Bots(slot).Queue.size(), 1);
    EXPECT_TRUE(Bots(slot).Queue[0].contains(QStringLiteral("You have 1 new mail")));
}

TEST_F(ChatPathCachesTest, AChangeOfZoneCountsAtOnce) {
    const QByteArray before = qgetenv("TZ");
    const bool hadZone = qEnvironmentVariableIsSet("TZ");
    CurrentTheme().time = QStringLiteral("[%hh:%nn:%ss] ");
    qputenv("TZ", "UTC0");
    const QTime utc = LocalClock::now();
    qputenv("TZ", "EAST-5");
    const QTime east = LocalClock::now();
    EXPECT_EQ((east.hour() - utc.hour() + 24) % 24, 5);
    EXPECT_EQ(FormatTimestamp().mid(1, 2),
              QStringLiteral("%1").arg(east.hour(), 2, 10, QChar(u'0')))
        << FormatTimestamp().toStdString();
    if (hadZone)
        qputenv("TZ", before);
    else
        qunsetenv("TZ");
    tzset();
}
