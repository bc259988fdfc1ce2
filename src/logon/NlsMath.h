#pragma once

#include "logon/BigNum.h"

#include <string>
#include <string_view>

// The arithmetic both halves of the new logon system share: SRP over a 256-bit group with
// SHA-1, as WarCraft III speaks it.
namespace logon::nls {

// A big number as it travels: 32 bytes, little-endian.
using Number = std::array<std::uint8_t, 32>;
using SessionKey = std::array<std::uint8_t, 40>;

// Account and password are hashed in upper case (ASCII letters only).
std::string upper(std::string_view text);

const BigNum& modulus();
const BigNum& generator();

// A fresh random salt.
Number randomNumber();
// A fresh random private exponent in [1, N-1].
BigNum randomPrivate();

// A public key (A or B) that is a multiple of N fixes the shared secret whatever the password:
// both sides refuse it.
bool isDegenerateKey(const Number& publicKey);

// g^e mod N, as it travels.
Number power(const BigNum& exponent);

// x = SHA1(salt, SHA1(U ":" P)) read little-endian; the password verifier is g^x.
BigNum passwordExponent(std::string_view account, std::string_view password, const Number& salt);
Number verifier(std::string_view account, std::string_view password, const Number& salt);

// u: the first four bytes of SHA1(B), big-endian.
BigNum scrambler(const Number& serverKey);

// K: S split into its even and odd bytes, each half hashed, the hashes interleaved.
SessionKey sessionKey(const BigNum& secret);

// M1 = SHA1(I, SHA1(U), salt, A, B, K): the client proves it knows the password.
Digest clientProof(std::string_view account, const Number& salt, const Number& clientKey,
                   const Number& serverKey, const SessionKey& key);
// M2 = SHA1(A, M1, K): the server proves it holds the verifier.
Digest serverProof(const Number& clientKey, const Digest& clientProof, const SessionKey& key);

} // namespace logon::nls
