#include "logon/NlsServer.h"

#include "logon/Sha1.h"

#include <algorithm>
#include <openssl/bn.h>

namespace logon {

NlsAccount NlsAccount::create(std::string_view account, std::string_view password) {
    return create(account, password, nls::randomNumber());
}

NlsAccount NlsAccount::create(std::string_view account, std::string_view password,
                              const nls::Number& salt) {
    return {salt, nls::verifier(nls::upper(account), nls::upper(password), salt)};
}

std::optional<NlsServerSession> NlsServerSession::start(std::string_view account,
                                                        const NlsAccount& stored,
                                                        const nls::Number& clientKey) {
    if (nls::isDegenerateKey(clientKey)) return std::nullopt;
    const BigNum& n = nls::modulus();
    BigNumContext ctx;
    const BigNum a = BigNum::fromLittleEndian(clientKey);

    NlsServerSession session;
    session.salt_ = stored.salt;
    session.clientKey_ = clientKey;

    // B = v + g^b mod N
    const BigNum privateKey = nls::randomPrivate();
    const BigNum v = BigNum::fromLittleEndian(stored.verifier);
    const BigNum gb = BigNum::fromLittleEndian(nls::power(privateKey));
    BigNum serverKey;
    BN_mod_add(serverKey.get(), v.get(), gb.get(), n.get(), ctx.get());
    session.serverKey_ = serverKey.toLittleEndian32();

    // S = (A · v^u)^b mod N
    const BigNum u = nls::scrambler(session.serverKey_);
    BigNum base, shared;
    BN_mod_exp(base.get(), v.get(), u.get(), n.get(), ctx.get());
    BN_mod_mul(base.get(), base.get(), a.get(), n.get(), ctx.get());
    BN_mod_exp(shared.get(), base.get(), privateKey.get(), n.get(), ctx.get());

    session.sessionKey_ = nls::sessionKey(shared);
    session.expectedProof_ = nls::clientProof(nls::upper(account), session.salt_, clientKey,
                                              session.serverKey_, session.sessionKey_);
    return session;
}

bool NlsServerSession::checkClientProof(const Digest& clientProof) const {
    return sameDigest(clientProof, expectedProof_);
}

Digest NlsServerSession::serverProof() const {
    return nls::serverProof(clientKey_, expectedProof_, sessionKey_);
}

std::optional<NlsAccount> NlsServerSession::acceptPasswordChange(ByteView changeProof) const {
    if (changeProof.size() != 84) return std::nullopt;
    Digest proof{};
    std::copy_n(changeProof.begin(), proof.size(), proof.begin());
    if (!checkClientProof(proof)) return std::nullopt;
    NlsAccount changed;
    std::copy_n(changeProof.begin() + 20, 32, changed.salt.begin());
    std::copy_n(changeProof.begin() + 52, 32, changed.verifier.begin());
    return changed;
}

} // namespace logon
