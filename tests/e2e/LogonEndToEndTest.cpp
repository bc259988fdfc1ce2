// The bot against the local sandbox over loopback: every product by every
// route it allows, account creation, refusals, and the order on the wire.
#include "e2e/BotFixture.h"
#include "session/ConnectionWrapper.h"

#include <QFile>

namespace {

const QString kVectors = QStringLiteral(CORVANTIDE_SHARED_DIR "/vectors/");

struct Product {
    const char* client;
    const char* key;
    const char* key2;
    bool localCapable;
};

constexpr Product kProducts[] = {
    {"STAR", "7178075237576", "", false},
    {"SEXP", "9230867218823", "", false},
    {"W2BN", "WF4G4B99KVMB2DTT", "", false},
    {"D2DV", "8K4NNCFJPXKW7CNW", "", true},
    {"D2XP", "KGC6RPK4X4G2DXGT", "HFXMFMW78PX7CWBR", true},
    {"WAR3", "V9FBR8JC4RJWCGPCMGPT9J2CND", "", true},
    {"W3XP", "7TGH6YHF7KTDNCJGEFTVDCGKCV", "BV6C66KR2HZ9NNWCHP4HEXPH4M", true},
};

// Game files for local hashing, under the names each product's folder uses.
class GameFolder {
public:
    GameFolder() {
        const QString exe = kVectors + QStringLiteral("exeinfo/War3.exe");
        const QString second = kVectors + QStringLiteral("checkrevision/file2.bin");
        const QString third = kVectors + QStringLiteral("checkrevision/file3.bin");
        for (const auto& [name, from] : {std::pair{"Game.exe", exe},
                                         {"War3.exe", exe},
                                         {"Bnclient.dll", second},
                                         {"Storm.dll", second},
                                         {"D2client.dll", third},
                                         {"Game.dll", third}}) {
            const QString to = dir.filePath(QString::fromLatin1(name));
            QFile::copy(from, to);
            QFile::setPermissions(to, QFile::ReadOwner | QFile::WriteOwner);
        }
        files = dir.filePath(QStringLiteral("War3.exe")) + u',' + dir.filePath("Storm.dll") + u',' +
                dir.filePath("Game.dll");
    }
    QTemporaryDir dir;
    QString files; // the sandbox's --hash-files
};

class LogonEndToEnd : public BotFixture {
protected:
    bool startSandbox(QStringList options = {}) {
        return sandbox.start(traced(options << QStringLiteral("--hash-files") << game.files));
    }
    // On the test's sandbox unless another `server` is named.
    int load(const Product& p, const QString& account, const QString& password,
             const SandboxProcess* server = nullptr) {
        if (!server) server = &sandbox;
        const int i = SlotTable::instance().LoadProfile(account + QString::fromLatin1(p.client));
        ConfigWrapper& c = Bots(i).Config;
        c.setAccount(account);
        c.setPassword(password);
        c.setClient(QString::fromLatin1(p.client));
        c.setVerbyte(QStringLiteral("d3"));
        c.setCdkey(QString::fromLatin1(p.key));
        c.setCdkey2(QString::fromLatin1(p.key2));
        c.setServer(server->bncsServer());
        c.setServerBNLS(server->bnlsServer());
        c.setChannel(QStringLiteral("Lobby"));
        return i;
    }
    void useLocalHashing(bool on) {
        SettingsWrapper& s = SettingsWrapper::instance();
        s.setLocalHashing(on);
        s.setPathD2DV(game.dir.path());
        s.setPathD2XP(game.dir.path());
        s.setPathWAR3(game.dir.path());
    }
    GameFolder game;
};

} // namespace

// Each product by BNLS and, where it can, by hashing its own files; the first
// logon's steps go on the wire in their order.
TEST_F(LogonEndToEnd, EveryProductReachesChatByEveryRouteInTheWiresOrder) {
    ASSERT_TRUE(startSandbox()) << "no sandbox at " << SandboxProcess::binary().toStdString();
    int n = 0;
    for (const Product& p : kProducts) {
        for (const bool local : {false, true}) {
            if (local && !p.localCapable) continue;
            useLocalHashing(local);
            const int i = load(p, QStringLiteral("route%1").arg(n++), QStringLiteral("secret"));
            SlotTable::instance().ConnectBot(i);
            EXPECT_TRUE(waitFor([&] { return Bots(i).Channel() == QLatin1String("Lobby"); }))
                << p.client << (local ? " local" : " bnls") << "\n"
                << chat(i).toStdString();
            EXPECT_TRUE(Bots(i).Online()) << p.client;
        }
    }

    // Pings and keep-alives may fall anywhere; the first logon's steps may not.
    QStringList order;
    for (const TracedFrame& t : readTrace(tracePath()))
        order << QString::fromLatin1(t.link + ' ' + t.direction + ' ' + t.id);
    int previous = -1;
    for (const char* step :
         {"bncs in proto", "bncs in 0x50", "bncs out 0x50", "bnls in 0x1a", "bnls out 0x1a",
          "bncs in 0x51", "bncs in 0x3a", "bncs in 0x0a", "bncs in 0x0b", "bncs in 0x0c"}) {
        const int at = order.indexOf(QString::fromLatin1(step));
        EXPECT_GT(at, previous) << step << " out of order:\n" << order.join(u'\n').toStdString();
        previous = at;
    }
}

// An account is made on the first logon and takes the same password, in any
// case, on the next; a wrong password ends the session for good.
TEST_F(LogonEndToEnd, AMissingAccountIsMadeAndLogsOnAgainAndAWrongPasswordEndsTheSession) {
    ASSERT_TRUE(startSandbox({QStringLiteral("--account"), QStringLiteral("known:right")}));
    useLocalHashing(false);
    for (const Product& p :
         {kProducts[0], kProducts[1], kProducts[2], kProducts[3], kProducts[4], kProducts[5]}) {
        const QString account = QStringLiteral("Mixed") + QString::fromLatin1(p.client);
        for (const int session : {1, 2}) {
            const int i =
                load(p, account, QStringLiteral("PaSsWoRd-") + QString::fromLatin1(p.client));
            SlotTable::instance().ConnectBot(i);
            ASSERT_TRUE(waitFor([&] { return Bots(i).Online(); }))
                << p.client << " session " << session << "\n"
                << chat(i).toStdString();
            EXPECT_EQ(chat(i).contains(QStringLiteral("[BNET] Successfully created account")),
                      session == 1)
                << p.client;
            SlotTable::instance().UnloadProfile(Bots(i).Profile());
        }

        const int wrong = load(p, QStringLiteral("known"), QStringLiteral("WRONG!"));
        SlotTable::instance().ConnectBot(wrong);
        ASSERT_TRUE(saw(wrong, QStringLiteral("[Connections Closed]")));
        EXPECT_TRUE(
            chat(wrong).contains(QStringLiteral("[BNET] Account's password was incorrect!")));
        EXPECT_FALSE(Bots(wrong).CanConnect);
        // No retry: the watchdog leaves a killed slot alone however old its attempt.
        Bots(wrong).LastConnect -= 60000;
        ConnectionWrapper::Watchdog(wrong);
        EXPECT_EQ(chat(wrong).count(QStringLiteral("Connecting to BNLS host")), 1);
        SlotTable::instance().UnloadProfile(Bots(wrong).Profile());
    }
}

TEST_F(LogonEndToEnd, VersionResultsShowTheirWordsForEachRoute) {
    struct Case {
        const char* result;
        bool local;
        const char* line;
    };
    for (const Case c :
         {Case{"0x100", true, "[BNET] Your hash files are out of date!"},
          Case{"0x100", false, "[BNLS] Server has not been updated for new hash files yet!"},
          Case{"0x101", true, "[BNET] Incorrect version byte specified for this client."},
          Case{"0x101", false, "[BNLS] The version byte you specified does not match"}}) {
        SandboxProcess server;
        ASSERT_TRUE(
            server.start({QStringLiteral("--hash-files"), game.files,
                          QStringLiteral("--version-result"), QString::fromLatin1(c.result)}));
        useLocalHashing(c.local);
        const int i = load(kProducts[3], QStringLiteral("version") + QString::number(c.local),
                           QStringLiteral("pass"), &server);
        SlotTable::instance().ConnectBot(i);
        ASSERT_TRUE(saw(i, QStringLiteral("[Connections Closed]")));
        EXPECT_TRUE(chat(i).contains(QString::fromLatin1(c.line))) << c.result << c.local;
        SlotTable::instance().UnloadProfile(Bots(i).Profile());
    }
}

TEST_F(LogonEndToEnd, AFailedBnlsCheckStandsStillUntilTheWatchdog) {
    ASSERT_TRUE(startSandbox({QStringLiteral("--bnls-fail")}));
    useLocalHashing(false);
    const int i = load(kProducts[0], QStringLiteral("stuck"), QStringLiteral("pass"));
    SlotTable::instance().ConnectBot(i);
    ASSERT_TRUE(saw(i, QStringLiteral("[BNLS] Version check failed.")));
    pause(500);
    EXPECT_FALSE(chat(i).contains(QStringLiteral("Authorizing client information")));
    EXPECT_TRUE(Bots(i).CanConnect);
    // Thirty seconds after the attempt the watchdog gives it up, naming the
    // server it waited on, and plans the next try.
    Bots(i).LastConnect -= 31000;
    ConnectionWrapper::Watchdog(i);
    EXPECT_TRUE(chat(i).contains(
        QStringLiteral("[BNLS] The BNLS server did not answer within 30 seconds.")));
    EXPECT_TRUE(chat(i).contains(QStringLiteral("[BNET] Reconnecting in 1")));
    EXPECT_TRUE(Bots(i).Reconnect.isArmed());
}
