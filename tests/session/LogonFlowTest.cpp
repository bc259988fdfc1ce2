// The logon as it passes over the wire, with sockets detached from the
// network: what the client sends, in order, for each answer of the server.
#include "common/SlotFixture.h"
#include "config/SettingsWrapper.h"
#include "platform/ChatDocument.h"
#include "session/LogonRecord.h"
#include "session/PacketReader.h"
#include "session/PacketWriter.h"

#include <QFile>
#include <QTemporaryDir>

namespace {

const QString kStarKey = QStringLiteral("7178075237576");

QByteArray dword(quint32 v) {
    PacketWriter w;
    w.WriteDWORD(v);
    return w.payload();
}

QByteArray text(const char* s) {
    return QByteArray(s) + '\0';
}

// The ids of the frames the Battle.net socket sent; -1 for the protocol byte.
std::vector<int> frameIds(const SocketControl& socket) {
    std::vector<int> ids;
    for (const QByteArray& data : socket.sent)
        ids.push_back(data.size() == 1 ? -1 : quint8(data[1]));
    return ids;
}

class LogonFlowTest : public SlotFixture {
protected:
    int loadProfile(const QString& client, bool local) {
        SettingsWrapper::instance().setLocalHashing(local);
        const int i = SlotTable::instance().LoadProfile(QStringLiteral("flow-") + client);
        ConfigWrapper& c = Bots(i).Config;
        c.setAccount(QStringLiteral("Tester"));
        c.setPassword(QStringLiteral("SeCrEt"));
        c.setCdkey(kStarKey);
        c.setServer(QStringLiteral("bnet.example:6200"));
        c.setServerBNLS(QStringLiteral("bnls.example"));
        c.setVerbyte(QStringLiteral("d3"));
        c.setClient(client);
        c.setChannel(QStringLiteral("Home"));
        for (SocketControl* s : {&wsBNET(i), &wsBNLS(i)}) {
            s->setDetached(true);
            s->sent.clear();
        }
        return i;
    }
    void serverSends(int i, quint8 id, const QByteArray& payload) {
        wsBNET(i).simulateData(PacketWriter::frameBNCS(id, payload));
    }
    QString chat(int i) { return rtbChat(i).text(); }
};

} // namespace

TEST_F(LogonFlowTest, AFailedBnlsCheckStaysAtTheHeadOfTheStream) {
    const int i = loadProfile(QStringLiteral("STAR"), false);
    SlotTable::instance().ConnectBot(i);
    wsBNLS(i).simulateConnected();
    wsBNLS(i).simulateData(PacketWriter::frameBNLS(0x1A, dword(0) + dword(0) + dword(0) + text("")));
    EXPECT_EQ(chat(i).count(QStringLiteral("[BNLS] Version check failed.")), 1);
    wsBNLS(i).simulateData(QByteArray());
    EXPECT_EQ(chat(i).count(QStringLiteral("[BNLS] Version check failed.")), 2);
    EXPECT_TRUE(wsBNET(i).sent.isEmpty());
}

TEST_F(LogonFlowTest, AServerKeyOfZeroModuloNGetsNoProof) {
    const int i = loadProfile(QStringLiteral("WAR3"), true);
    SlotTable::instance().ConnectBot(i);
    wsBNET(i).simulateConnected();
    Bots(i).Connection.Output_AuthLogon_NLS(i);
    serverSends(i, 0x53, dword(0) + QByteArray(64, '\0')); // salt, then B = 0
    const std::vector<int> ids = frameIds(wsBNET(i));
    EXPECT_EQ(std::count(ids.begin(), ids.end(), 0x54), 0);
    EXPECT_TRUE(chat(i).contains(QStringLiteral("[BNET] The server's logon challenge is unusable "
                                                "(its key is 0 modulo N); no password proof was "
                                                "sent.")));
    EXPECT_FALSE(Bots(i).CanConnect);
}

TEST_F(LogonFlowTest, PingSpoofSendsItsExactCounts) {
    struct Case {
        int spoof;
        int emptyFrames;
        int pingsAfterAuthInfo;
        int answers;
    };
    for (const Case c : {Case{0, 0, 1, 1}, Case{1, 0, 0, 0}, Case{2, 0, 1, 0}, Case{3, 713, 1, 0},
                         Case{4, 7713, 1, 1}, Case{9, 0, 0, 0}}) {
        const int i = loadProfile(QStringLiteral("STAR"), false);
        Bots(i).Config.setPingSpoof(c.spoof);
        SlotTable::instance().ConnectBot(i);
        wsBNLS(i).simulateConnected();
        wsBNET(i).simulateConnected();
        const std::vector<int> ids = frameIds(wsBNET(i));
        EXPECT_EQ(std::count(ids.begin(), ids.end(), 0x00), c.emptyFrames) << c.spoof;
        EXPECT_EQ(std::count(ids.begin(), ids.end(), 0x25), c.pingsAfterAuthInfo) << c.spoof;
        const qsizetype before = wsBNET(i).sent.size();
        serverSends(i, 0x25, dword(0xDEAD));
        EXPECT_EQ(wsBNET(i).sent.size() - before, c.answers) << c.spoof;
        // The answer carries the server's value back, as game clients do.
        if (c.answers) {
            EXPECT_EQ(wsBNET(i).sent.last(), PacketWriter::frameBNCS(0x25, dword(0xDEAD)));
        }
        SlotTable::instance().UnloadProfile(Bots(i).Profile());
    }
}

// A time-out while connecting is the table's line; in chat it is a server
// that stopped acknowledging, said in words of its own. Both are tried again.
TEST_F(LogonFlowTest, ATimeOutInChatIsADeadLinkAndTriedAgain) {
    for (const bool inChat : {false, true}) {
        const int i = loadConnected(QStringLiteral("timeout%1").arg(inChat));
        Bots(i).CanConnect = true;
        Bots(i).setOnline(inChat);
        wsBNET(i).simulateError(10060, QStringLiteral("Connection timed out"));
        EXPECT_EQ(chat(i).contains(QStringLiteral("[BNET] The server stopped acknowledging what "
                                                  "the bot sent; the connection is closed.")),
                  inChat);
        EXPECT_EQ(chat(i).contains(QStringLiteral("[BNET] 10060: ")), !inChat);
        EXPECT_TRUE(chat(i).contains(QStringLiteral("[BNET] Reconnecting in "))) << inChat;
        EXPECT_FALSE(Bots(i).Online());
        SlotTable::instance().UnloadProfile(Bots(i).Profile());
    }
}

// A key the server refuses ends the session with the reason, naming who holds a key in use.
TEST_F(LogonFlowTest, KeyRefusalsEndInTheirReason) {
    struct Row {
        quint32 code;
        const char* line;
    };
    for (const Row r : {Row{0x200, "[BNET] Your CD-Key is invalid."},
                        {0x201, "[BNET] Your CD-Key is in use by Someone."},
                        {0x202, "[BNET] Your CD-Key has been banned."},
                        {0x203, "[BNET] Your CD-Key is for another game."},
                        {0x210, "[BNET] Your expansion CD-Key is invalid."},
                        {0x211, "[BNET] Your expansion CD-Key is in use by Someone."},
                        {0x212, "[BNET] Your expansion CD-Key has been banned."},
                        {0x213, "[BNET] Your expansion CD-Key is for another game."}}) {
        SCOPED_TRACE(r.line);
        const int i = loadProfile(QStringLiteral("STAR"), false);
        SlotTable::instance().ConnectBot(i);
        wsBNLS(i).simulateConnected();
        wsBNET(i).simulateConnected();
        serverSends(i, 0x51, dword(r.code) + text("Someone"));
        EXPECT_TRUE(chat(i).contains(QString::fromLatin1(r.line))) << chat(i).toStdString();
        EXPECT_EQ(wsBNET(i).State(), SocketControl::Closed);
        EXPECT_FALSE(Bots(i).CanConnect);
        SlotTable::instance().UnloadProfile(Bots(i).Profile());
    }
}

// The name the server gave may differ from the account's; it, not the account, is the bot's
// name in chat. The server's keep-alive gets no echo (some servers echo that in turn), and a
// packet the bot does not know is dumped.
TEST_F(LogonFlowTest, EnteringChatTakesTheGivenNameAndAsksForFriends) {
    const int i = loadConnected(QStringLiteral("named"));
    serverSends(i, 0x00, {});
    serverSends(i, 0x5A, "xyz");
    EXPECT_TRUE(wsBNET(i).sent.isEmpty());
    EXPECT_TRUE(chat(i).contains(QStringLiteral("Unhandled packet: 0x5A")));
    EXPECT_TRUE(chat(i).contains(QStringLiteral("FF 5A 07 00 78 79 7A")));
    serverSends(i, 0x0A, text("Tester#2") + text("RATS 0 0 0 0 0 0 0 0 RATS") + text("Tester"));
    EXPECT_TRUE(Bots(i).Online());
    EXPECT_EQ(Bots(i).UniqueAccount, QStringLiteral("Tester#2"));
    EXPECT_EQ(frameIds(wsBNET(i)).back(), 0x65);
}

TEST_F(LogonFlowTest, MissingSettingsAreAllNamedAndNoSocketOpensWithoutThem) {
    const int i = SlotTable::instance().LoadProfile(QStringLiteral("empty-profile"));
    wsBNET(i).setDetached(true);
    SlotTable::instance().ConnectBot(i);
    for (const char* line :
         {"[BNET] Cannot connect: Account is empty; set it with: corvantide profile set "
          "empty-profile Account NAME.",
          "[BNET] Cannot connect: Password is empty; set it with: corvantide profile set "
          "empty-profile Password SECRET.",
          "[BNET] Cannot connect: Product is not one of STAR, SEXP, W2BN, D2DV, D2XP, WAR3, W3XP; "
          "set it with: corvantide profile set empty-profile Product STAR."})
        EXPECT_TRUE(chat(i).contains(QString::fromLatin1(line))) << line;
    EXPECT_EQ(wsBNET(i).State(), SocketControl::Closed);
    EXPECT_EQ(wsBNLS(i).State(), SocketControl::Closed);
    EXPECT_FALSE(Bots(i).CanConnect) << "an empty setting is not tried again";

    // StarCraft's version check needs BNLS whatever LocalHashing says.
    const int star = loadProfile(QStringLiteral("STAR"), true);
    Bots(star).Config.setServerBNLS(QString());
    SlotTable::instance().ConnectBot(star);
    EXPECT_TRUE(chat(star).contains(QStringLiteral(
        "[BNLS] Cannot connect: ServerBNLS is empty and STAR always takes its version check from "
        "a BNLS server; set it with: corvantide profile set flow-STAR ServerBNLS HOST[:PORT].")));
    EXPECT_EQ(wsBNLS(star).State(), SocketControl::Closed);
    EXPECT_FALSE(Bots(star).CanConnect);

    // WarCraft III with local hashing connects straight to Battle.net.
    const int war3 = loadProfile(QStringLiteral("WAR3"), true);
    // Without the game's folder there is nothing to hash: said before connecting.
    SettingsWrapper::instance().setPathWAR3(QString());
    SlotTable::instance().ConnectBot(war3);
    EXPECT_TRUE(chat(war3).contains(QStringLiteral(
        "[BncsUtil] Cannot connect: LocalHashing is on and PathWAR3 (the WarCraft III folder) is "
        "empty; set it with: corvantide config set Settings PathWAR3 FOLDER.")));
    EXPECT_EQ(wsBNET(war3).State(), SocketControl::Closed);

    QTemporaryDir game;
    for (const char* name : {"War3.exe", "Storm.dll", "Game.dll"}) {
        QFile file(game.filePath(QLatin1String(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    SettingsWrapper::instance().setPathWAR3(game.path());
    SlotTable::instance().ConnectBot(war3);
    EXPECT_EQ(wsBNET(war3).State(), SocketControl::Connecting);
    EXPECT_EQ(wsBNLS(war3).State(), SocketControl::Closed);
    SettingsWrapper::instance().setPathWAR3(QString());
}
