#include "SandboxHarness.h"
#include "logon/BncsUtil.h"
#include "logon/PasswordHash.h"
#include "session/PacketWriter.h"

#include <gtest/gtest.h>

using namespace sandboxtest;

namespace {

sandbox::SandboxOptions withAccount(const QString& name, const QString& password,
                                    const QString& email = {}) {
    sandbox::SandboxOptions o;
    o.accounts.append({name, password, email});
    return o;
}

// Identifies as the product and passes the version check with the server's own BNLS.
void passVersionCheck(Server& server, Client& client, const char* product,
                      const QStringList& keys) {
    const auto answer = askBnls(server.bnlsPort(), product, client.identify(product));
    EXPECT_EQ(client.challenge.logonType, QByteArray(product).contains('3') ? 2u : 0u) << product;
    EXPECT_TRUE(client.challenge.archive.startsWith("ver-IX86-"));
    ASSERT_EQ(answer.success, 1u);
    ASSERT_EQ(client.authCheck(keys, answer.version, answer.checksum), 0u);
}

} // namespace

TEST(SandboxLogon, OldSystemChecksThePasswordCreatesAccountsAndChangesPasswords) {
    Server server(withAccount("alice", "Secret"));
    {
        Client c(server.bncsPort());
        passVersionCheck(server, c, "STAR", {kStarKey});
        EXPECT_EQ(c.oldLogon("alice", "wrong"), 2u);
        EXPECT_EQ(c.oldLogon("nobody", "x"), 1u);
        // The logon hashes the lower-cased password, whatever case the account was made with.
        EXPECT_EQ(c.oldLogon("ALICE", "SECRET"), 0u);
        EXPECT_TRUE(c.next(0x59)) << "an account without e-mail is asked for one";
        EXPECT_EQ(c.enterChat(), "alice");
    }
    {
        Client c(server.bncsPort());
        passVersionCheck(server, c, "SEXP", {kStarKey});
        // Names refused for their length, letters, a banned word or being taken; then one
        // with every mark a name may hold.
        for (const auto& [name, status] : std::initializer_list<std::pair<QString, quint32>>{
                 {"ab", 6},
                 {"abcdefghijklmnop", 2},
                 {"bad name", 2},
                 {QString::fromUtf8("na\xC3\xAFve"), 2},
                 {"xBlizzardx", 3},
                 {"Alice", 4},
                 {"[Clan]-me_1.(x)", 0}})
            EXPECT_EQ(c.oldCreate(name, "x"), status) << name.toStdString();
        EXPECT_EQ(c.oldCreate("bob", "hunter2"), 0u);
        EXPECT_EQ(c.oldLogon("bob", "hunter2"), 0u);
    }
    {
        // 0x31: old password's double hash, new password's single hash.
        Client c(server.bncsPort());
        passVersionCheck(server, c, "W2BN", {kD2Key});
        const auto change = [&](const QString& oldPass, const QString& newPass) {
            const auto proof = logon::doublePasswordHash(oldPass.toStdString(), c.clientToken,
                                                         c.challenge.serverToken);
            const auto hash = logon::passwordHash(newPass.toStdString());
            PacketWriter w;
            w.WriteDWORD(c.clientToken);
            w.WriteDWORD(c.challenge.serverToken);
            w.WriteVOID(QByteArray(reinterpret_cast<const char*>(proof.data()), 20));
            w.WriteVOID(QByteArray(reinterpret_cast<const char*>(hash.data()), 20));
            w.WriteSTRING(QStringLiteral("bob"));
            return c.status(0x31, w.payload());
        };
        EXPECT_EQ(change("wrong", "new"), 0u);
        EXPECT_EQ(change("hunter2", "fresh"), 1u);
        EXPECT_EQ(c.oldLogon("bob", "hunter2"), 2u);
        EXPECT_EQ(c.oldLogon("bob", "fresh"), 0u);
    }
}

TEST(SandboxLogon, NewSystemRunsTheProofExchange) {
    Server server(withAccount("carol", "pw", "carol@example.com"));
    Client c(server.bncsPort());
    passVersionCheck(server, c, "WAR3", {kWar3Key});
    bool holds = false;
    EXPECT_EQ(c.newLogon("carol", "bad", &holds), 2u);
    EXPECT_EQ(c.newLogon("dave", "pw"), 1u);
    EXPECT_EQ(c.newCreate("d", "pw"), 7u);
    EXPECT_EQ(c.newCreate("da ve", "pw"), 8u);
    EXPECT_EQ(c.newCreate("Carol", "pw"), 4u);
    EXPECT_EQ(c.newCreate("dave", "Pw"), 0u);
    // An account without e-mail passes with 0x0E; the server's proof holds either way.
    EXPECT_EQ(c.newLogon("dave", "PW", &holds), 0x0Eu);
    EXPECT_TRUE(holds);
    PacketWriter email;
    email.WriteSTRING(QStringLiteral("dave@example.com"));
    c.send(0x59, email.payload());
    EXPECT_EQ(c.enterChat(), "dave");
    EXPECT_EQ(server.context().store.find("dave")->email, "dave@example.com");

    Client again(server.bncsPort());
    passVersionCheck(server, again, "W3XP", {kWar3Key, "7TGH6YHF7KTDNCJGEFTVDCGKCV"});
    holds = false;
    EXPECT_EQ(again.newLogon("carol", "pw", &holds), 0u);
    EXPECT_TRUE(holds);
}

TEST(SandboxLogon, NewSystemPasswordChangeAndCrossSystemRefusals) {
    Server server(withAccount("erin", "old"));
    server.context().store.create({"oldtimer", logon::passwordHash("x"), std::nullopt, {}});
    Client c(server.bncsPort());
    passVersionCheck(server, c, "WAR3", {kWar3Key});
    EXPECT_EQ(c.newLogon("oldtimer", "x"), 5u) << "an old-system account must be upgraded";

    const auto changeTo = [&](const char* from, const char* to) {
        const logon::NlsHandle nls = logon::nls_init("erin", from);
        std::uint8_t key[32];
        logon::nls_get_A(nls, key);
        PacketWriter w;
        w.WriteVOID(QByteArray(reinterpret_cast<const char*>(key), 32));
        w.WriteSTRING(QStringLiteral("erin"));
        c.send(0x55, w.payload());
        PacketReader r = c.next(0x55)->reader();
        EXPECT_EQ(r.ReadDWORD(), 0u);
        const QByteArray salt = r.ReadVOID(32), serverKey = r.ReadVOID(32);
        std::uint8_t proof[84];
        const auto* b = reinterpret_cast<const std::uint8_t*>(serverKey.data());
        const auto* s = reinterpret_cast<const std::uint8_t*>(salt.data());
        const logon::NlsHandle fresh = logon::nls_account_change_proof(nls, proof, to, b, s);
        c.send(0x56, QByteArray(reinterpret_cast<const char*>(proof), 84));
        PacketReader reply = c.next(0x56)->reader();
        const quint32 status = reply.ReadDWORD();
        const QByteArray m2 = reply.ReadVOID(20);
        const bool holds =
            logon::nls_check_M2(nls, reinterpret_cast<const std::uint8_t*>(m2.data()), b, s) != 0;
        logon::nls_free(fresh);
        logon::nls_free(nls);
        return std::pair{status, holds};
    };
    EXPECT_EQ(changeTo("wrong", "new").first, 2u);
    EXPECT_EQ(changeTo("old", "new"), std::pair(0u, true));
    EXPECT_EQ(c.newLogon("erin", "old"), 2u);
    EXPECT_EQ(c.newLogon("erin", "new"), 0x0Eu);

    Client star(server.bncsPort());
    passVersionCheck(server, star, "STAR", {kStarKey});
    EXPECT_EQ(star.oldLogon("erin", "new"), 6u) << "a new-system account can't use the old one";
}

TEST(SandboxLogon, AuthCheckRefusesWrongVersionsAndKeys) {
    Server server;
    const auto attempt = [&](const char* product, const QStringList& keys, int checksumDelta = 0,
                             int versionDelta = 0) {
        Client c(server.bncsPort());
        const auto answer = askBnls(server.bnlsPort(), product, c.identify(product));
        return c.authCheck(keys, answer.version + versionDelta, answer.checksum + checksumDelta);
    };
    EXPECT_EQ(attempt("STAR", {kStarKey}, 1), 0x101u);
    EXPECT_EQ(attempt("STAR", {kStarKey}, 0, -1), 0x100u);
    EXPECT_EQ(attempt("STAR", {kD2Key}), 0x203u) << "a 16-character key for StarCraft";
    EXPECT_EQ(attempt("D2XP", {kD2Key}), 0x200u) << "the expansion needs its second key";
    EXPECT_EQ(attempt("D2XP", {kD2Key, kStarKey}), 0x213u);
    EXPECT_EQ(attempt("D2DV", {kD2Key}), 0u);

    // A key the server has never issued: its hash can't be matched.
    sandbox::SandboxOptions o;
    o.versionResult = 0;
    Server lenient(o);
    Client c(lenient.bncsPort());
    c.identify("STAR");
    PacketWriter w;
    for (quint32 v : {c.clientToken, 0u, 0u, 1u, 0u, 13u, 1u, 1234567u, 0u})
        w.WriteDWORD(v);
    w.WriteVOID(QByteArray(20, 'x'));
    w.WriteSTRING(QString());
    w.WriteSTRING(QString());
    EXPECT_EQ(c.status(0x51, w.payload()), 0x200u);
}

TEST(SandboxLogon, AKeyInUseIsRefusedWhenKeysAreExclusive) {
    sandbox::SandboxOptions o;
    o.exclusiveKeys = true;
    Server server(o);
    Client first(server.bncsPort());
    passVersionCheck(server, first, "STAR", {kStarKey});
    Client second(server.bncsPort());
    const auto answer = askBnls(server.bnlsPort(), "STAR", second.identify("STAR"));
    EXPECT_EQ(second.authCheck({kStarKey}, answer.version, answer.checksum), 0x201u);
    // Only the expansion's key is taken: the refusal names that key.
    Client d2(server.bncsPort());
    passVersionCheck(server, d2, "D2XP", {kD2Key, kD2Key2});
    Client other(server.bncsPort());
    const auto d2Answer = askBnls(server.bnlsPort(), "D2XP", other.identify("D2XP"));
    EXPECT_EQ(other.authCheck({"KGC6RPK4X4G2DXGT", kD2Key2}, d2Answer.version, d2Answer.checksum),
              0x211u);
}
