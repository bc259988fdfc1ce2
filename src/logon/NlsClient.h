#pragma once

#include "logon/NlsMath.h"

#include <optional>

namespace logon {

// The client side of one new-system logon: holds the private value a and answers the
// server's challenge (salt, B) with the proof M1, then checks the server's proof M2.
class NlsClient {
public:
    NlsClient(std::string_view account, std::string_view password);
    // Fixes the private value (big-endian), so that a run can be compared with known values.
    NlsClient(std::string_view account, std::string_view password, ByteView privateValue);
    ~NlsClient();
    NlsClient(const NlsClient&) = delete;
    NlsClient& operator=(const NlsClient&) = delete;

    const std::string& account() const { return account_; }
    const nls::Number& clientKey() const { return clientKey_; }

    struct Proof {
        Digest clientProof;
        nls::SessionKey sessionKey;
    };
    // Nothing when B is a multiple of N: such a challenge would make the key guessable.
    std::optional<Proof> prove(const nls::Number& serverKey, const nls::Number& salt) const;

    // M1 for the challenge, which is kept for the check of M2 that follows.
    std::optional<Digest> answer(const nls::Number& serverKey, const nls::Number& salt);
    bool checkServerProof(const Digest& serverProof) const;
    bool checkServerProof(const Digest& serverProof, const nls::Number& serverKey,
                          const nls::Number& salt) const;

    // The verifier of this account and password under a salt, for creation or change.
    nls::Number verifier(const nls::Number& salt) const;

private:
    std::string account_;
    std::string upperAccount_;
    std::string upperPassword_;
    BigNum private_;
    nls::Number clientKey_;
    std::optional<std::pair<nls::Number, nls::Number>> challenge_;
};

} // namespace logon
