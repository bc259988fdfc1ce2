// Bad input is refused and leaves the component working: wrong keys, formulas and archive
// names, unreadable or foreign files, and handles that were freed or never given out.

#include "TestSupport.h"
#include "logon/BncsUtil.h"
#include "logon/NlsServer.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace logon {
namespace {

KeyHandle create(const std::string& key) {
    return kd_create(key.c_str(), int(key.size()));
}

TEST(Refusal, ProductKeysOfWrongLengthAlphabetOrCheck) {
    for (const std::string key :
         {"", "718007523757", "71780752375761", "7178075237577", "717807523757A", "WF4G4B99KVMB2DT",
          "WF4G4B99KVMB2DTA", "WF4G4B99KVMB2DT1", "WF4G4B99KVMB2DTY", "V9FBR8JC4RJWCGPCMGPT9J2CN",
          "V9FBR8JC4RJWCGPCMGPT9J2CN1", "V9FBR8JC4RJWCGPCMGPT9J2CNA",
          "V9FBR8JC4RJWCGPCMGPT9J2C D"}) {
        SCOPED_TRACE(key);
        EXPECT_EQ(create(key), 0u);
    }
    EXPECT_EQ(kd_create(nullptr, 13), 0u);
    EXPECT_EQ(kd_create("7178075237576", -1), 0u);
    // Only the given length counts, not what follows it.
    const KeyHandle prefix = kd_create("71780752375760", 13);
    EXPECT_NE(prefix, 0u);
    kd_free(prefix);
}

TEST(Refusal, FreedAndUnknownKeyHandles) {
    const KeyHandle decoder = create("7178075237576");
    ASSERT_NE(decoder, 0u);
    std::uint8_t hash[20];
    EXPECT_EQ(kd_getHash(decoder, hash), 0) << "no hash before kd_calculateHash";
    EXPECT_EQ(kd_calculateHash(decoder, 1, 2), 20);
    EXPECT_EQ(kd_getHash(decoder, nullptr), 0);
    EXPECT_EQ(kd_free(decoder), 1);

    for (const KeyHandle stale : {decoder, KeyHandle{0}, KeyHandle{0xFFFFFFFF}}) {
        EXPECT_EQ(kd_calculateHash(stale, 1, 2), 0);
        EXPECT_EQ(kd_getHash(stale, hash), 0);
        EXPECT_EQ(kd_product(stale), 0u);
        EXPECT_EQ(kd_val1(stale), 0u);
        EXPECT_EQ(kd_free(stale), 0);
    }
    // A new decoder never takes the number of a freed one.
    const KeyHandle next = create("7178075237576");
    EXPECT_NE(next, decoder);
    EXPECT_EQ(kd_free(next), 1);
}

TEST(Refusal, ArchiveNames) {
    EXPECT_EQ(extractMPQNumber("VER-ix86-7.MPQ"), 7);
    EXPECT_EQ(extractMPQNumber("ix86ver0.mpq"), 0);
    for (const char* name : {"", ".mpq", "ver-IX86-8.mpq", "IX86ver9.mpq", "ver-IX86-a.mpq",
                             "ver-IX86-1", "ver-IX86-1.mpq.bak", "lockdown-IX86-05.mpq",
                             "CheckRevision.mpq", "ver-XMAC-1.mpq", "1.mpq"}) {
        SCOPED_TRACE(name);
        EXPECT_LT(extractMPQNumber(name), 0);
    }
}

TEST(Refusal, VersionCheckFormulasArchiveNumbersAndFiles) {
    const auto file = [](const char* name) {
        return (test::kVectors + "checkrevision/" + name).toStdString();
    };
    std::uint32_t checksum = 0xDEADBEEF;
    const auto check = [&](const std::string& formula, int number, const std::string& file3) {
        return checkRevisionFlat(formula, file("file1.bin"), file("file2.bin"), file3, number,
                                 checksum);
    };
    const char* kFormula = "A=1054538081 B=741521288 C=797042342 4 A=A^S B=B-C C=C^A A=A+B";
    for (const std::string formula :
         {"", "4", "A=1 B=2 C=3", "A=A*S", "D=A+S", "S=A+B", "A=A+D", "A=A+", "A=A+SS",
          "A=", "A=4294967296 A=A+S", "A=12x A=A+S", "=A+S", "a=a+s", "AB=A+S"}) {
        SCOPED_TRACE(formula);
        EXPECT_EQ(check(formula, 0, file("file3.bin")), 0);
    }
    EXPECT_EQ(check(kFormula, -1, file("file3.bin")), 0);
    EXPECT_EQ(check(kFormula, 8, file("file3.bin")), 0);
    EXPECT_EQ(check(kFormula, 0, file("missing.bin")), 0);
    EXPECT_EQ(check(kFormula, 0, test::kVectors.toStdString()), 0) << "a folder is no file";
    EXPECT_EQ(checksum, 0xDEADBEEF) << "a refused check leaves the result alone";
    EXPECT_EQ(check("A=4294967295 A=A+S", 0, file("file3.bin")), 1);
}

class ExeInfoRefusal : public ::testing::Test {
protected:
    std::size_t exeInfo(const QString& path, int platform = kPlatformIx86) {
        version_ = 0xDEADBEEF;
        return getExeInfo(path.toStdString(), info_, sizeof info_, version_, platform);
    }
    QString write(const QString& name, const QByteArray& bytes) {
        QFile file(temp_.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        return file.fileName();
    }
    const QString war3Path = test::kVectors + "exeinfo/War3.exe";
    QTemporaryDir temp_;
    char info_[256];
    std::uint32_t version_;
};

TEST_F(ExeInfoRefusal, FilesThatAreNotPeOrHaveNoVersion) {
    QFile war3(war3Path);
    ASSERT_TRUE(war3.open(QIODevice::ReadOnly));
    const QByteArray image = war3.readAll();
    ASSERT_GT(exeInfo(war3Path), 0u);
    EXPECT_EQ(exeInfo(war3Path, 2), 0u) << "only platform 1";

    QByteArray notMz = image;
    notMz[0] = 'X';
    QByteArray farHeader = image;
    farHeader[0x3F] = 0x7F;
    const std::vector<std::pair<std::string, QString>> refused = {
        {"missing", temp_.filePath("missing.exe")},
        {"folder", temp_.path()},
        {"empty", write("empty.exe", {})},
        {"text", write("text.exe", "hello")},
        {"headers only", write("short.exe", image.left(0x400))},
        {"cut in the resources", write("cut.exe", image.chopped(2048))},
        {"not MZ", write("notmz.exe", notMz)},
        {"PE header beyond the end", write("far.exe", farHeader)},
        {"no version resource", test::kVectors + "exeinfo/Plain.exe"},
    };
    for (const auto& [what, path] : refused) {
        SCOPED_TRACE(what);
        EXPECT_EQ(exeInfo(path), 0u);
        EXPECT_EQ(version_, 0u);
    }

    // A short buffer asks for more.
    const auto path = write("War3.exe", image);
    char small[8] = {};
    std::uint32_t version = 0;
    const std::size_t needed = getExeInfo(path.toStdString(), small, sizeof small, version, 1);
    EXPECT_GT(needed, sizeof small);
    EXPECT_EQ(std::string(small, sizeof small), "War3.exe");
    ASSERT_EQ(exeInfo(path), needed);
    EXPECT_EQ(std::string(info_).size(), needed);
}

TEST(Refusal, FreedAndUnknownNlsHandles) {
    EXPECT_EQ(nls_init("", "password"), 0u);
    const NlsHandle session = nls_init("account", "password");
    ASSERT_NE(session, 0u);
    std::uint8_t key[32] = {}, proof[20] = {}, change[84], buffer[128];
    const nls::Number salt{}, zero{};

    EXPECT_EQ(nls_check_M2(session, proof), 0) << "no challenge answered yet";
    EXPECT_EQ(nls_get_M1(session, proof, zero.data(), salt.data()), 0) << "B = 0";
    const nls::Number n = nls::modulus().toLittleEndian32();
    EXPECT_EQ(nls_get_M1(session, proof, n.data(), salt.data()), 0) << "B = N";
    EXPECT_EQ(nls_check_M2(session, proof, zero.data(), nullptr), 0);
    EXPECT_EQ(nls_account_create(session, buffer, 65 + 6), 0u) << "no room for the NUL";
    EXPECT_EQ(nls_account_create(session, buffer, 65 + 7), 65u + 7);
    EXPECT_EQ(nls_free(session), 1);
    const NlsAccount stored = NlsAccount::create("account", "password");
    EXPECT_FALSE(NlsServerSession::start("account", stored, zero)) << "the server's check of A";
    EXPECT_FALSE(NlsServerSession::start("account", stored, n)) << "A = N is A = 0";

    for (const NlsHandle stale : {session, NlsHandle{0}, NlsHandle{0xFFFFFFFF}}) {
        nls::Number b{};
        b[0] = 7;
        EXPECT_EQ(nls_get_A(stale, key), 0);
        EXPECT_EQ(nls_get_M1(stale, proof, b.data(), salt.data()), 0);
        EXPECT_EQ(nls_check_M2(stale, proof), 0);
        EXPECT_EQ(nls_account_create(stale, buffer, sizeof buffer), 0u);
        EXPECT_EQ(nls_account_change_proof(stale, change, "new", b.data(), salt.data()), 0u);
        EXPECT_EQ(nls_free(stale), 0);
    }
}

} // namespace
} // namespace logon
