#include "sandbox/AccountStore.h"
#include "sandbox/BncsSession.h"
#include "sandbox/FloodGuard.h"
#include "sandbox/SandboxContext.h"
#include "session/PacketWriter.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace sandbox;

TEST(SandboxFlood, AClientPacedLikeTheBotsQueueNeverTrips) {
    // The bot's queue: each line holds the next back by 1500 + 38 × L, or 1700 + 45 × L once
    // four lines have gone in a row, or 1700 + 40 × L for lines of 70 or more.
    for (int length : {0, 1, 10, 69, 70, 150, 223, 400}) {
        FloodGuard guard{FloodBudget{}};
        qint64 now = 0;
        for (int line = 1; line <= 60; ++line) {
            ASSERT_TRUE(guard.admit(now, length)) << "length " << length << ", line " << line;
            const int burst = line;
            now += length >= 70 ? 1700 + 40 * length
                                : (burst < 4 ? 1500 + 38 * length : 1700 + 45 * length);
        }
    }
}

TEST(SandboxFlood, BurstsAndFastPacingTripWhileTimeRepaysTheDebt) {
    FloodGuard burst{FloodBudget{}};
    for (int line = 1; line <= 4; ++line)
        EXPECT_TRUE(burst.admit(0, 2)) << line;
    EXPECT_FALSE(burst.admit(0, 2));
    EXPECT_EQ(burst.debt(5040), 0);

    // A line a second, ten characters long: 500 ms of debt more each time.
    FloodGuard hasty{FloodBudget{}};
    int admitted = 0;
    for (qint64 now = 0; hasty.admit(now, 10); now += 1000)
        ++admitted;
    EXPECT_EQ(admitted, 9);

    FloodGuard off{FloodBudget{false, 1200, 30, 4000}};
    for (int line = 0; line < 100; ++line)
        EXPECT_TRUE(off.admit(0, 200));
}

TEST(SandboxAccounts, AFileKeepsAccountsAndBansAcrossRuns) {
    QTemporaryDir dir;
    const QString path = dir.filePath("accounts.json");
    {
        AccountStore store(path);
        QString error;
        ASSERT_TRUE(store.load(error));
        ASSERT_TRUE(store.create(AccountStore::fromPassword("Zed", "Mixed", "z@example.com")));
        EXPECT_FALSE(store.create(AccountStore::fromPassword("zed", "other", {})));
        store.setChannelBans("Op Room", {"troll", "pest"});
        store.setChannelBans("Empty", {});
    }
    AccountStore again(path);
    QString error;
    ASSERT_TRUE(again.load(error)) << error.toStdString();
    const AccountRecord* zed = again.find("ZED");
    ASSERT_TRUE(zed);
    EXPECT_EQ(zed->name, "Zed");
    EXPECT_EQ(zed->email, "z@example.com");
    EXPECT_EQ(again.channelBans("op room"), (QStringList{"troll", "pest"}));
    EXPECT_TRUE(again.channelBans("Empty").isEmpty());

    QFile broken(dir.filePath("broken.json"));
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    broken.write("{not json");
    broken.close();
    AccountStore bad(broken.fileName());
    EXPECT_FALSE(bad.load(error));
}

TEST(SandboxOptions, ParsesOptionsTheEndToEndTestsLeaveAndRefusesNonsense) {
    QString error;
    const auto o = SandboxOptions::parse({"--bnls-port=7000", "--flood", "1000,20,3000", "--account",
                                          "bob:pw:bob@x", "--account", "amy:pw", "--resident-rate",
                                          "2.5", "--trace", "--exclusive-keys"},
                                         error);
    ASSERT_TRUE(o) << error.toStdString();
    EXPECT_EQ(o->bnlsPort, 7000);
    EXPECT_EQ(o->flood.perByte, 20);
    EXPECT_EQ(o->accounts.size(), 2);
    EXPECT_EQ(o->accounts[0].email, "bob@x");
    EXPECT_DOUBLE_EQ(o->residentRate, 2.5);
    EXPECT_TRUE(o->trace && o->exclusiveKeys);
    EXPECT_FALSE(SandboxOptions::parse({"--flood", "off"}, error)->flood.enabled);

    for (const QStringList& bad : {QStringList{"--bncs-port", "70000"},
                                   {"--hash-files", "a,b"},
                                   {"--flood", "1,2"},
                                   {"--account", "nopassword"},
                                   {"--residents"},
                                   {"--bogus"},
                                   {"--resident-rate", "0"}})
        EXPECT_FALSE(SandboxOptions::parse(bad, error)) << bad.join(' ').toStdString();
}

namespace {

// A BNCS session without a socket: what it sends is collected, and whether it hung up.
struct Wire {
    explicit Wire(SandboxContext& context)
        : session(context,
                  WireLink{[this](const QByteArray& b) { sent += b; }, [this] { hungUp = true; }}) {
    }
    QByteArray sent;
    bool hungUp = false;
    BncsSession session;
};

QByteArray authInfo() {
    PacketWriter w;
    for (quint32 v : {0u, 0x49583836u})
        w.WriteDWORD(v);
    w.WriteVOID("RATS");
    for (int i = 0; i < 6; ++i)
        w.WriteDWORD(0);
    w.WriteSTRING(QStringLiteral("USA"));
    w.WriteSTRING(QStringLiteral("United States"));
    return PacketWriter::frameBNCS(0x50, w.payload());
}

} // namespace

TEST(SandboxFrames, CuttingTakesWholeFramesAndDropsBrokenStreams) {
    SandboxContext context{SandboxOptions{}};
    {
        Wire w(context);
        w.session.receive(QByteArray(1, '\x02'));
        EXPECT_TRUE(w.hungUp) << "only the game protocol is served";
    }
    {
        // A frame split over three reads is answered once, when it is whole.
        Wire w(context);
        const QByteArray frame = QByteArray(1, '\x01') + authInfo();
        w.session.receive(frame.left(3));
        w.session.receive(frame.mid(3, 20));
        EXPECT_TRUE(w.sent.isEmpty());
        w.session.receive(frame.mid(23));
        EXPECT_TRUE(w.sent.startsWith("\xFF\x50"));
        EXPECT_FALSE(w.hungUp);
        // An empty keep-alive of four bytes is taken at once, without waiting for more.
        w.session.receive(PacketWriter::frameBNCS(0x00, {}));
        w.session.receive(PacketWriter::frameBNCS(0x0B, {}));
        EXPECT_TRUE(w.hungUp) << "a channel list before the logon is out of turn";
    }
    for (const QByteArray& broken :
         {QByteArray::fromHex("01fe500400"), QByteArray::fromHex("01ff500300"),
          QByteArray::fromHex("01ff51080001020304")}) {
        Wire w(context);
        w.session.receive(broken);
        EXPECT_TRUE(w.hungUp) << broken.toHex().toStdString();
    }
    {
        // 0x51 cut short after its first fields: read past the end, the client is dropped.
        Wire w(context);
        w.session.receive(QByteArray(1, '\x01') + authInfo());
        PacketWriter p;
        p.WriteDWORD(1);
        w.session.receive(PacketWriter::frameBNCS(0x51, p.payload()));
        EXPECT_TRUE(w.hungUp);
    }
}
