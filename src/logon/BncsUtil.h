#pragma once

// The logon component's call table: product keys, password hashes, the version check,
// executable information and the new logon system, behind integer handles. Text is ANSI
// bytes; every output buffer is the caller's, at the size each call names. A call that can't
// do its work returns 0 (or a negative archive number) and leaves the process alone.

#include "logon/Bytes.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace logon {

using KeyHandle = std::uint32_t;
using NlsHandle = std::uint32_t;

constexpr int kPlatformIx86 = 1;
constexpr std::size_t kKeyHashSize = 20;
constexpr std::size_t kPasswordHashSize = 20;
constexpr std::size_t kNlsKeySize = 32;
constexpr std::size_t kNlsProofSize = 20;
constexpr std::size_t kNlsChangeProofSize = 84;

// major·10000 + minor·100 + patch
int bncsutil_getVersion();

// Product keys. kd_calculateHash gives the hash length (20) and kd_getHash fills a buffer
// of that length.
int kd_init();
KeyHandle kd_create(const char* key, int keyLength);
int kd_calculateHash(KeyHandle decoder, std::uint32_t clientToken, std::uint32_t serverToken);
int kd_getHash(KeyHandle decoder, std::uint8_t* hash);
std::uint32_t kd_product(KeyHandle decoder);
std::uint32_t kd_val1(KeyHandle decoder);
int kd_free(KeyHandle decoder);

// The version check: archive number (below 0 for none), and the checksum of three files,
// returned above 0 on success.
int extractMPQNumber(std::string_view mpqName);
int checkRevisionFlat(std::string_view formula, std::string_view file1, std::string_view file2,
                      std::string_view file3, int mpqNumber, std::uint32_t& checksum);

// Executable information of a PE file for platform 1. Returns the text's length, 0 on
// failure; the text is NUL-terminated when shorter than the buffer, so a longer result asks
// for a retry with a bigger one.
std::size_t getExeInfo(std::string_view fileName, char* info, std::size_t infoSize,
                       std::uint32_t& version, int platform);

// Old logon system hashes, 20 bytes each.
int hashPassword(std::string_view password, std::uint8_t* hash);
int doubleHashPassword(std::string_view password, std::uint32_t clientToken,
                       std::uint32_t serverToken, std::uint8_t* hash);

// New logon system. Keys and salts are 32 bytes, proofs 20.
NlsHandle nls_init(std::string_view account, std::string_view password);
// For tests: the private value a, big-endian, instead of a random one.
NlsHandle nls_init_with_private(std::string_view account, std::string_view password,
                                ByteView privateValue);
int nls_get_A(NlsHandle session, std::uint8_t* clientKey);
int nls_get_M1(NlsHandle session, std::uint8_t* clientProof, const std::uint8_t* serverKey,
               const std::uint8_t* salt);
// Without B and salt, those of the session's last nls_get_M1.
int nls_check_M2(NlsHandle session, const std::uint8_t* serverProof,
                 const std::uint8_t* serverKey = nullptr, const std::uint8_t* salt = nullptr);
// Salt, verifier and the account name with its NUL: 65 bytes plus the name. Returns the
// length written, 0 when the buffer is too small.
std::size_t nls_account_create(NlsHandle session, std::uint8_t* buffer, std::size_t bufferSize);
// Fills 84 bytes (M1 of the old password, new salt, new verifier) and returns the session
// of the new password.
NlsHandle nls_account_change_proof(NlsHandle session, std::uint8_t* changeProof,
                                   std::string_view newPassword, const std::uint8_t* serverKey,
                                   const std::uint8_t* salt);
int nls_free(NlsHandle session);

} // namespace logon
