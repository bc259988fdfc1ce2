#include "logon/BncsUtil.h"

#include "logon/ExeInfo.h"
#include "logon/HandleTable.h"
#include "logon/NlsClient.h"
#include "logon/PasswordHash.h"
#include "logon/ProductKey.h"
#include "logon/VersionCheck.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace logon {

namespace {

constexpr int kComponentVersion = 1 * 10000 + 0 * 100 + 3;

struct KeyDecoder {
    ProductKey key;
    std::optional<Digest> hash;
};

HandleTable<KeyDecoder>& keyDecoders() {
    static HandleTable<KeyDecoder> table;
    return table;
}

HandleTable<NlsClient>& nlsSessions() {
    static HandleTable<NlsClient> table;
    return table;
}

// The call table never lets an exception out: running out of memory or entropy is one more
// way for a call to fail.
template <typename Result, typename Work> Result refuseOnThrow(Result refused, Work work) {
    try {
        return work();
    } catch (...) {
        return refused;
    }
}

nls::Number numberAt(const std::uint8_t* bytes) {
    nls::Number number{};
    std::copy_n(bytes, number.size(), number.begin());
    return number;
}

} // namespace

int bncsutil_getVersion() {
    return kComponentVersion;
}

int kd_init() {
    return 1;
}

KeyHandle kd_create(const char* key, int keyLength) {
    if (!key || keyLength <= 0) return 0;
    return refuseOnThrow<KeyHandle>(0, [&] {
        auto decoded = ProductKey::decode({key, std::size_t(keyLength)});
        if (!decoded) return KeyHandle{0};
        return keyDecoders().add(std::make_unique<KeyDecoder>(KeyDecoder{*decoded, std::nullopt}));
    });
}

int kd_calculateHash(KeyHandle decoder, std::uint32_t clientToken, std::uint32_t serverToken) {
    KeyDecoder* entry = keyDecoders().find(decoder);
    if (!entry) return 0;
    return refuseOnThrow(0, [&] {
        entry->hash = entry->key.hash(clientToken, serverToken);
        return int(kKeyHashSize);
    });
}

int kd_getHash(KeyHandle decoder, std::uint8_t* hash) {
    const KeyDecoder* entry = keyDecoders().find(decoder);
    if (!entry || !entry->hash || !hash) return 0;
    std::copy(entry->hash->begin(), entry->hash->end(), hash);
    return 1;
}

std::uint32_t kd_product(KeyHandle decoder) {
    const KeyDecoder* entry = keyDecoders().find(decoder);
    return entry ? entry->key.product() : 0;
}

std::uint32_t kd_val1(KeyHandle decoder) {
    const KeyDecoder* entry = keyDecoders().find(decoder);
    return entry ? entry->key.val1() : 0;
}

int kd_free(KeyHandle decoder) {
    return keyDecoders().remove(decoder) ? 1 : 0;
}

int extractMPQNumber(std::string_view mpqName) {
    return archiveNumber(mpqName);
}

int checkRevisionFlat(std::string_view formula, std::string_view file1, std::string_view file2,
                      std::string_view file3, int mpqNumber, std::uint32_t& checksum) {
    return refuseOnThrow(0, [&] {
        const auto result = checkRevision(
            formula, mpqNumber, {std::string(file1), std::string(file2), std::string(file3)});
        if (!result) return 0;
        checksum = *result;
        return 1;
    });
}

std::size_t getExeInfo(std::string_view fileName, char* info, std::size_t infoSize,
                       std::uint32_t& version, int platform) {
    version = 0;
    if (platform != kPlatformIx86) return 0;
    return refuseOnThrow<std::size_t>(0, [&] {
        const auto read = ExeInfo::read(std::string(fileName));
        if (!read) return std::size_t{0};
        version = read->version;
        if (info && infoSize > 0) {
            const std::size_t copied = std::min(read->text.size(), infoSize);
            std::memcpy(info, read->text.data(), copied);
            if (copied < infoSize) info[copied] = '\0';
        }
        return read->text.size();
    });
}

int hashPassword(std::string_view password, std::uint8_t* hash) {
    if (!hash) return 0;
    const Digest digest = passwordHash(password);
    std::copy(digest.begin(), digest.end(), hash);
    return 1;
}

int doubleHashPassword(std::string_view password, std::uint32_t clientToken,
                       std::uint32_t serverToken, std::uint8_t* hash) {
    if (!hash) return 0;
    const Digest digest = doublePasswordHash(password, clientToken, serverToken);
    std::copy(digest.begin(), digest.end(), hash);
    return 1;
}

NlsHandle nls_init(std::string_view account, std::string_view password) {
    if (account.empty()) return 0;
    return refuseOnThrow<NlsHandle>(
        0, [&] { return nlsSessions().add(std::make_unique<NlsClient>(account, password)); });
}

NlsHandle nls_init_with_private(std::string_view account, std::string_view password,
                                ByteView privateValue) {
    if (account.empty() || privateValue.empty()) return 0;
    return refuseOnThrow<NlsHandle>(0, [&] {
        return nlsSessions().add(std::make_unique<NlsClient>(account, password, privateValue));
    });
}

int nls_get_A(NlsHandle session, std::uint8_t* clientKey) {
    const NlsClient* client = nlsSessions().find(session);
    if (!client || !clientKey) return 0;
    std::copy(client->clientKey().begin(), client->clientKey().end(), clientKey);
    return 1;
}

int nls_get_M1(NlsHandle session, std::uint8_t* clientProof, const std::uint8_t* serverKey,
               const std::uint8_t* salt) {
    NlsClient* client = nlsSessions().find(session);
    if (!client || !clientProof || !serverKey || !salt) return 0;
    return refuseOnThrow(0, [&] {
        const auto proof = client->answer(numberAt(serverKey), numberAt(salt));
        if (!proof) return 0;
        std::copy(proof->begin(), proof->end(), clientProof);
        return 1;
    });
}

int nls_check_M2(NlsHandle session, const std::uint8_t* serverProof, const std::uint8_t* serverKey,
                 const std::uint8_t* salt) {
    const NlsClient* client = nlsSessions().find(session);
    if (!client || !serverProof || (serverKey == nullptr) != (salt == nullptr)) return 0;
    return refuseOnThrow(0, [&] {
        Digest proof{};
        std::copy_n(serverProof, proof.size(), proof.begin());
        const bool holds =
            serverKey ? client->checkServerProof(proof, numberAt(serverKey), numberAt(salt))
                      : client->checkServerProof(proof);
        return holds ? 1 : 0;
    });
}

std::size_t nls_account_create(NlsHandle session, std::uint8_t* buffer, std::size_t bufferSize) {
    const NlsClient* client = nlsSessions().find(session);
    if (!client || !buffer) return 0;
    const std::string& account = client->account();
    const std::size_t needed = 2 * kNlsKeySize + account.size() + 1;
    if (bufferSize < needed) return 0;
    return refuseOnThrow<std::size_t>(0, [&] {
        const nls::Number salt = nls::randomNumber();
        const nls::Number verifier = client->verifier(salt);
        std::uint8_t* out = std::copy(salt.begin(), salt.end(), buffer);
        out = std::copy(verifier.begin(), verifier.end(), out);
        out = std::copy(account.begin(), account.end(), out);
        *out = 0;
        return needed;
    });
}

NlsHandle nls_account_change_proof(NlsHandle session, std::uint8_t* changeProof,
                                   std::string_view newPassword, const std::uint8_t* serverKey,
                                   const std::uint8_t* salt) {
    NlsClient* client = nlsSessions().find(session);
    if (!client || !changeProof || !serverKey || !salt) return 0;
    return refuseOnThrow<NlsHandle>(0, [&] {
        const auto proof = client->answer(numberAt(serverKey), numberAt(salt));
        if (!proof) return NlsHandle{0};
        auto changed = std::make_unique<NlsClient>(client->account(), newPassword);
        const nls::Number newSalt = nls::randomNumber();
        const nls::Number newVerifier = changed->verifier(newSalt);
        std::uint8_t* out = std::copy(proof->begin(), proof->end(), changeProof);
        out = std::copy(newSalt.begin(), newSalt.end(), out);
        std::copy(newVerifier.begin(), newVerifier.end(), out);
        return nlsSessions().add(std::move(changed));
    });
}

int nls_free(NlsHandle session) {
    return nlsSessions().remove(session) ? 1 : 0;
}

} // namespace logon
