// Every row of the reference files, through the call table the session uses.

#include "TestSupport.h"
#include "logon/BncsUtil.h"
#include "logon/NlsClient.h"
#include "logon/ProductKey.h"

#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/time.h>

namespace logon {
namespace {

using test::hex;
using test::readVectors;
using test::unhex;

nls::Number number(const std::string& hexText) {
    nls::Number n{};
    const auto bytes = unhex(hexText);
    std::copy(bytes.begin(), bytes.end(), n.begin());
    return n;
}

TEST(Vectors, PasswordHashes) {
    const auto file = readVectors("xsha1.tsv");
    ASSERT_EQ(file.size(), 11u);
    for (const auto& row : file) {
        SCOPED_TRACE(row["password_hex"]);
        const auto bytes = unhex(row["password_hex"]);
        const std::string password(bytes.begin(), bytes.end());
        std::uint8_t single[20], proof[20];
        ASSERT_TRUE(hashPassword(password, single));
        ASSERT_TRUE(doubleHashPassword(password, row.number("client_token"),
                                       row.number("server_token"), proof));
        EXPECT_EQ(hex(single), row["hash_password"]);
        EXPECT_EQ(hex(proof), row["double_hash_password"]);
    }
}

TEST(Vectors, ProductKeys) {
    const auto file = readVectors("cdkeys.tsv");
    ASSERT_EQ(file.size(), 28u);
    ASSERT_TRUE(kd_init());
    for (const auto& row : file) {
        const std::string& key = row["key"];
        SCOPED_TRACE(key);
        const KeyHandle decoder = kd_create(key.c_str(), int(key.size()));
        if (row["valid"] == "0") {
            EXPECT_EQ(decoder, 0u);
            continue;
        }
        ASSERT_NE(decoder, 0u);
        ASSERT_EQ(kd_calculateHash(decoder, row.number("client_token"), row.number("server_token")),
                  20);
        std::uint8_t hash[20];
        ASSERT_TRUE(kd_getHash(decoder, hash));
        EXPECT_EQ(hex(hash), row["hash"]);
        EXPECT_EQ(kd_product(decoder), row.number("product"));
        EXPECT_EQ(kd_val1(decoder), row.number("val1"));
        EXPECT_EQ(hex(ProductKey::decode(key)->val2()), row["val2_hex"]);
        // A key typed in lower case reads the same.
        std::string lower = key;
        for (char& c : lower)
            c = char(std::tolower(static_cast<unsigned char>(c)));
        const KeyHandle lowerKey = kd_create(lower.c_str(), int(lower.size()));
        EXPECT_EQ(kd_product(lowerKey), kd_product(decoder));
        EXPECT_EQ(kd_val1(lowerKey), kd_val1(decoder));
        EXPECT_TRUE(kd_free(lowerKey));
        EXPECT_TRUE(kd_free(decoder));
    }
}

// Swaps the operands of every commutative operation: "A=A^S" becomes "A=S^A".
std::string swapOperands(const std::string& formula) {
    std::istringstream in(formula);
    std::string token, result;
    while (in >> token) {
        if (token.size() == 5 && token[1] == '=' && (token[3] == '+' || token[3] == '^'))
            std::swap(token[2], token[4]);
        result += (result.empty() ? "" : " ") + token;
    }
    return result;
}

// Formulas of another shape than the usual one (the operands swapped) take the general path
// of the checksum and must still give the reference checksums.
TEST(Vectors, VersionCheck) {
    const auto file = readVectors("checkrevision.tsv");
    ASSERT_EQ(file.size(), 36u);
    const std::string dir = test::kVectors.toStdString() + "checkrevision/";
    int swapped = 0;
    for (const auto& row : file) {
        SCOPED_TRACE(row["formula"] + " " + row["mpq_name"] + " " + row["file1"]);
        const int number = extractMPQNumber(row["mpq_name"]);
        EXPECT_EQ(number, std::stoi(row["mpq_number"]));
        const std::string other = swapOperands(row["formula"]);
        for (const std::string& formula : {row["formula"], other}) {
            std::uint32_t checksum = 0;
            EXPECT_EQ(checkRevisionFlat(formula, dir + row["file1"], dir + row["file2"],
                                        dir + row["file3"], number, checksum),
                      std::stoi(row["result"]))
                << formula;
            EXPECT_EQ(checksum, row.number("checksum")) << formula;
        }
        swapped += other != row["formula"]; // nothing to swap in "A=A-S B=B-C ..."
    }
    EXPECT_EQ(swapped, 27);
}

TEST(Vectors, ExecutableInformation) {
    const auto file = readVectors("exeinfo.tsv");
    ASSERT_EQ(file.size(), 3u);
    const QTemporaryDir temp;
    for (const auto& row : file) {
        SCOPED_TRACE(row["file"]);
        const QString name = QString::fromStdString(row["file"]);
        const QString copy = temp.filePath(name);
        ASSERT_TRUE(QFile::copy(test::kVectors + "exeinfo/" + name, copy));
        std::tm utc{};
        ASSERT_TRUE(strptime(row["mtime_utc"].c_str(), "%Y-%m-%d %H:%M:%S", &utc));
        const timeval times[2] = {{timegm(&utc), 0}, {timegm(&utc), 0}};
        ASSERT_EQ(::utimes(copy.toLocal8Bit().constData(), times), 0);

        char info[256];
        std::uint32_t version = 1;
        const std::size_t length =
            getExeInfo(copy.toStdString(), info, sizeof info, version, kPlatformIx86);
        EXPECT_EQ(length, row.number("result"));
        EXPECT_EQ(version, row.number("version"));
        if (length > 0) {
            EXPECT_EQ(std::string(info), row["info"]);
        }
        EXPECT_EQ(QFileInfo(copy).size(), qint64(row.number("size")));
    }
}

TEST(Vectors, NewLogonSystem) {
    const auto file = readVectors("nls.tsv");
    ASSERT_EQ(file.size(), 5u);
    for (const auto& row : file) {
        SCOPED_TRACE(row["account"]);
        const auto privateValue = unhex(row["a_hex"]);
        const NlsHandle session =
            nls_init_with_private(row["account"], row["password"], privateValue);
        ASSERT_NE(session, 0u);
        const nls::Number salt = number(row["salt"]), serverKey = number(row["B"]);

        std::uint8_t clientKey[32], clientProof[20];
        ASSERT_TRUE(nls_get_A(session, clientKey));
        EXPECT_EQ(hex(clientKey), row["A"]);
        ASSERT_TRUE(nls_get_M1(session, clientProof, serverKey.data(), salt.data()));
        EXPECT_EQ(hex(clientProof), row["M1"]);

        const auto serverProof = unhex(row["M2"]);
        EXPECT_TRUE(nls_check_M2(session, serverProof.data()));
        EXPECT_TRUE(nls_check_M2(session, serverProof.data(), serverKey.data(), salt.data()));
        EXPECT_TRUE(nls_free(session));

        const NlsClient client(row["account"], row["password"], privateValue);
        EXPECT_EQ(hex(client.prove(serverKey, salt)->sessionKey), row["K"]);
        EXPECT_EQ(hex(client.verifier(salt)), row["verifier"]);
    }
}

} // namespace
} // namespace logon
