#pragma once

#include "logon/NlsMath.h"

#include <optional>

namespace logon {

// What a server stores of a new-system account: never the password, only salt and verifier.
struct NlsAccount {
    nls::Number salt{};
    nls::Number verifier{};

    static NlsAccount create(std::string_view account, std::string_view password);
    static NlsAccount create(std::string_view account, std::string_view password,
                             const nls::Number& salt);
};

// The server side of one new-system logon or password change, for the local test server.
class NlsServerSession {
public:
    // Nothing when A is a multiple of N, which would let a client in without the password.
    static std::optional<NlsServerSession> start(std::string_view account, const NlsAccount& stored,
                                                 const nls::Number& clientKey);

    const nls::Number& salt() const { return salt_; }
    const nls::Number& serverKey() const { return serverKey_; }

    bool checkClientProof(const Digest& clientProof) const;
    // M2; send it only after the client's proof holds.
    Digest serverProof() const;

    // A password change proof: M1 of the old password, the new salt and the new verifier.
    // Gives the account to store when the proof holds.
    std::optional<NlsAccount> acceptPasswordChange(ByteView changeProof) const;

private:
    NlsServerSession() = default;

    nls::Number salt_{};
    nls::Number clientKey_{};
    nls::Number serverKey_{};
    Digest expectedProof_{};
    nls::SessionKey sessionKey_{};
};

} // namespace logon
