// The client half against the server half the local test server uses: logons, account
// creations and password changes for many random accounts.

#include "logon/BncsUtil.h"
#include "logon/NlsServer.h"
#include "logon/OldLogonServer.h"
#include "logon/PasswordHash.h"

#include <gtest/gtest.h>
#include <random>

namespace logon {
namespace {

class RoundTrip : public ::testing::Test {
protected:
    std::string randomText(std::size_t min, std::size_t max) {
        static constexpr std::string_view chars =
            "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_[]. ";
        std::string text(std::uniform_int_distribution<std::size_t>(min, max)(random_), ' ');
        for (char& c : text)
            c = chars[std::uniform_int_distribution<std::size_t>(0, chars.size() - 1)(random_)];
        return text;
    }

    // What the server does with 0x52: salt, verifier, then the account name.
    static NlsAccount createAccount(NlsHandle session, const std::string& account) {
        std::vector<std::uint8_t> packet(account.size() + 65);
        EXPECT_EQ(nls_account_create(session, packet.data(), packet.size()), packet.size());
        EXPECT_EQ(std::string(packet.begin() + 64, packet.end() - 1), account);
        EXPECT_EQ(packet.back(), 0);
        NlsAccount stored;
        std::copy_n(packet.begin(), 32, stored.salt.begin());
        std::copy_n(packet.begin() + 32, 32, stored.verifier.begin());
        return stored;
    }

    static nls::Number clientKeyOf(NlsHandle session) {
        nls::Number key{};
        EXPECT_TRUE(nls_get_A(session, key.data()));
        return key;
    }

    // 0x53 and 0x54 between a session and the server; true when both proofs hold.
    static bool exchangeProofs(NlsHandle session, const std::string& account,
                               const NlsAccount& stored) {
        const auto server = NlsServerSession::start(account, stored, clientKeyOf(session));
        Digest clientProof{};
        EXPECT_TRUE(server);
        EXPECT_TRUE(nls_get_M1(session, clientProof.data(), server->serverKey().data(),
                               server->salt().data()));
        const bool accepted = server->checkClientProof(clientProof);
        const bool serverProven = nls_check_M2(session, server->serverProof().data());
        EXPECT_EQ(accepted, serverProven);
        return accepted && serverProven;
    }

    static bool logon(const std::string& account, const std::string& password,
                      const NlsAccount& stored) {
        const NlsHandle session = nls_init(account, password);
        const bool passed = exchangeProofs(session, account, stored);
        EXPECT_TRUE(nls_free(session));
        return passed;
    }

    std::mt19937 random_{20240521};
};

TEST_F(RoundTrip, NewSystemCreateLogonAndChangePassword) {
    for (int i = 0; i < 40; ++i) {
        const std::string account = randomText(1, 15);
        const std::string password = randomText(0, 20);
        const std::string newPassword = randomText(1, 20) + "!";
        SCOPED_TRACE(account + " / " + password + " / " + newPassword);

        const NlsHandle creator = nls_init(account, password);
        ASSERT_NE(creator, 0u);
        NlsAccount stored = createAccount(creator, account);
        EXPECT_TRUE(nls_free(creator));

        EXPECT_TRUE(logon(account, password, stored));
        // The system ignores case in names and passwords alike.
        EXPECT_TRUE(logon(nls::upper(account), nls::upper(password), stored));
        EXPECT_FALSE(logon(account, newPassword, stored));

        // 0x55 and 0x56: prove the old password, send the new salt and verifier.
        const NlsHandle old = nls_init(account, password);
        const auto server = NlsServerSession::start(account, stored, clientKeyOf(old));
        ASSERT_TRUE(server);
        std::uint8_t changeProof[84];
        const NlsHandle renewed = nls_account_change_proof(
            old, changeProof, newPassword, server->serverKey().data(), server->salt().data());
        ASSERT_NE(renewed, 0u);
        const auto changed = server->acceptPasswordChange(changeProof);
        ASSERT_TRUE(changed);
        EXPECT_TRUE(nls_check_M2(old, server->serverProof().data(), server->serverKey().data(),
                                 server->salt().data()));
        EXPECT_NE(changed->salt, stored.salt);
        stored = *changed;
        EXPECT_TRUE(nls_free(old));

        // The renewed session logs on with the new password at once.
        EXPECT_TRUE(exchangeProofs(renewed, account, stored));
        EXPECT_TRUE(nls_free(renewed));

        EXPECT_TRUE(logon(account, newPassword, stored));
        EXPECT_FALSE(logon(account, password, stored));
    }
}

TEST_F(RoundTrip, ChangeProofOfWrongOldPasswordIsRefused) {
    const NlsAccount stored = NlsAccount::create("Mallory", "right");
    const NlsHandle old = nls_init("Mallory", "wrong");
    const auto server = NlsServerSession::start("Mallory", stored, clientKeyOf(old));
    std::uint8_t changeProof[84];
    const NlsHandle renewed = nls_account_change_proof(
        old, changeProof, "new", server->serverKey().data(), server->salt().data());
    EXPECT_FALSE(server->acceptPasswordChange(changeProof));
    EXPECT_FALSE(server->acceptPasswordChange(ByteView(changeProof).first(83)));
    EXPECT_TRUE(nls_free(old));
    EXPECT_TRUE(nls_free(renewed));
}

TEST_F(RoundTrip, OldSystemLogonAgainstStoredHash) {
    for (int i = 0; i < 100; ++i) {
        const std::string password = randomText(0, 30);
        const std::uint32_t clientToken = random_(), serverToken = random_();
        SCOPED_TRACE(password);

        std::uint8_t stored[20], proof[20];
        ASSERT_TRUE(hashPassword(password, stored));
        ASSERT_TRUE(doubleHashPassword(password, clientToken, serverToken, proof));
        Digest storedHash, sent;
        std::copy_n(stored, 20, storedHash.begin());
        std::copy_n(proof, 20, sent.begin());

        EXPECT_TRUE(checkOldLogonProof(storedHash, clientToken, serverToken, sent));
        EXPECT_FALSE(checkOldLogonProof(storedHash, clientToken + 1, serverToken, sent));
        EXPECT_FALSE(checkOldLogonProof(storedHash, clientToken, serverToken ^ 0x100, sent));
        EXPECT_FALSE(
            checkOldLogonProof(passwordHash(password + "x"), clientToken, serverToken, sent));
    }
}

} // namespace
} // namespace logon
