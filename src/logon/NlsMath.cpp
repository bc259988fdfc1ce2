#include "logon/NlsMath.h"

#include "logon/Sha1.h"

#include <new>
#include <openssl/bn.h>
#include <openssl/crypto.h>
#include <openssl/rand.h>

namespace logon::nls {

namespace {

constexpr std::uint8_t kModulusBigEndian[32] = {
    0xF8, 0xFF, 0x1A, 0x8B, 0x61, 0x99, 0x18, 0x03, 0x21, 0x86, 0xB6, 0x8C, 0xA0, 0x92, 0xB5, 0x55,
    0x7E, 0x97, 0x6C, 0x78, 0xC7, 0x32, 0x12, 0xD9, 0x12, 0x16, 0xF6, 0x65, 0x85, 0x23, 0xC7, 0x87};
constexpr std::uint32_t kGenerator = 47;
// SHA1(g) xor SHA1(N), a constant of the protocol.
constexpr Digest kGroupHash = {0x6c, 0x0e, 0x97, 0xed, 0x0a, 0xf9, 0x6b, 0xab, 0xb1, 0x58,
                               0x89, 0xeb, 0x8b, 0xba, 0x25, 0xa4, 0xf0, 0x8c, 0x01, 0xf8};

} // namespace

std::string upper(std::string_view text) {
    std::string result(text);
    for (char& c : result) {
        if (c >= 'a' && c <= 'z') c = char(c - 'a' + 'A');
    }
    return result;
}

const BigNum& modulus() {
    static const BigNum n = BigNum::fromBigEndian(kModulusBigEndian);
    return n;
}

const BigNum& generator() {
    static const BigNum g = BigNum::fromWord(kGenerator);
    return g;
}

Number randomNumber() {
    Number bytes{};
    if (RAND_bytes(bytes.data(), int(bytes.size())) != 1) throw std::bad_alloc();
    return bytes;
}

BigNum randomPrivate() {
    BigNum value;
    do {
        if (BN_priv_rand_range(value.get(), modulus().get()) != 1) throw std::bad_alloc();
    } while (value.isZero());
    return value;
}

bool isDegenerateKey(const Number& publicKey) {
    BigNumContext ctx;
    BigNum reduced;
    BN_nnmod(reduced.get(), BigNum::fromLittleEndian(publicKey).get(), modulus().get(), ctx.get());
    return reduced.isZero();
}

Number power(const BigNum& exponent) {
    BigNumContext ctx;
    BigNum result;
    BN_mod_exp(result.get(), generator().get(), exponent.get(), modulus().get(), ctx.get());
    return result.toLittleEndian32();
}

BigNum passwordExponent(std::string_view account, std::string_view password, const Number& salt) {
    const Digest inner = Sha1().add(account).add(":").add(password).finish();
    return BigNum::fromLittleEndian(Sha1().add(salt).add(inner).finish());
}

Number verifier(std::string_view account, std::string_view password, const Number& salt) {
    return power(passwordExponent(account, password, salt));
}

BigNum scrambler(const Number& serverKey) {
    const Digest hash = Sha1::of(serverKey);
    return BigNum::fromBigEndian(ByteView(hash).first(4));
}

SessionKey sessionKey(const BigNum& secret) {
    const Number s = secret.toLittleEndian32();
    std::array<std::uint8_t, 16> even{}, odd{};
    for (std::size_t i = 0; i < even.size(); ++i) {
        even[i] = s[2 * i];
        odd[i] = s[2 * i + 1];
    }
    const Digest evenHash = Sha1::of(even), oddHash = Sha1::of(odd);
    SessionKey key{};
    for (std::size_t i = 0; i < evenHash.size(); ++i) {
        key[2 * i] = evenHash[i];
        key[2 * i + 1] = oddHash[i];
    }
    OPENSSL_cleanse(even.data(), even.size());
    OPENSSL_cleanse(odd.data(), odd.size());
    return key;
}

Digest clientProof(std::string_view account, const Number& salt, const Number& clientKey,
                   const Number& serverKey, const SessionKey& key) {
    return Sha1()
        .add(kGroupHash)
        .add(Sha1().add(account).finish())
        .add(salt)
        .add(clientKey)
        .add(serverKey)
        .add(key)
        .finish();
}

Digest serverProof(const Number& clientKey, const Digest& clientProof, const SessionKey& key) {
    return Sha1().add(clientKey).add(clientProof).add(key).finish();
}

} // namespace logon::nls
