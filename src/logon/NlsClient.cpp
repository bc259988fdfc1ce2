#include "logon/NlsClient.h"

#include "logon/Sha1.h"

#include <openssl/bn.h>
#include <openssl/crypto.h>

namespace logon {

NlsClient::NlsClient(std::string_view account, std::string_view password)
    : account_(account), upperAccount_(nls::upper(account)), upperPassword_(nls::upper(password)),
      private_(nls::randomPrivate()), clientKey_(nls::power(private_)) {}

NlsClient::NlsClient(std::string_view account, std::string_view password, ByteView privateValue)
    : account_(account), upperAccount_(nls::upper(account)), upperPassword_(nls::upper(password)),
      private_(BigNum::fromBigEndian(privateValue)), clientKey_(nls::power(private_)) {}

NlsClient::~NlsClient() {
    OPENSSL_cleanse(upperPassword_.data(), upperPassword_.size());
}

std::optional<NlsClient::Proof> NlsClient::prove(const nls::Number& serverKey,
                                                 const nls::Number& salt) const {
    if (nls::isDegenerateKey(serverKey)) return std::nullopt;
    const BigNum& n = nls::modulus();
    BigNumContext ctx;
    const BigNum b = BigNum::fromLittleEndian(serverKey);

    // S = (B - g^x)^(a + u·x) mod N
    const BigNum x = nls::passwordExponent(upperAccount_, upperPassword_, salt);
    const BigNum v = BigNum::fromLittleEndian(nls::power(x));
    const BigNum u = nls::scrambler(serverKey);
    BigNum base, exponent, secret;
    BN_mod_sub(base.get(), b.get(), v.get(), n.get(), ctx.get());
    BN_mul(exponent.get(), u.get(), x.get(), ctx.get());
    BN_add(exponent.get(), exponent.get(), private_.get());
    BN_mod_exp(secret.get(), base.get(), exponent.get(), n.get(), ctx.get());

    Proof proof{{}, nls::sessionKey(secret)};
    proof.clientProof =
        nls::clientProof(upperAccount_, salt, clientKey_, serverKey, proof.sessionKey);
    return proof;
}

std::optional<Digest> NlsClient::answer(const nls::Number& serverKey, const nls::Number& salt) {
    const auto proof = prove(serverKey, salt);
    if (!proof) return std::nullopt;
    challenge_.emplace(serverKey, salt);
    return proof->clientProof;
}

bool NlsClient::checkServerProof(const Digest& serverProof) const {
    return challenge_ && checkServerProof(serverProof, challenge_->first, challenge_->second);
}

bool NlsClient::checkServerProof(const Digest& serverProof, const nls::Number& serverKey,
                                 const nls::Number& salt) const {
    const auto proof = prove(serverKey, salt);
    return proof && sameDigest(serverProof,
                               nls::serverProof(clientKey_, proof->clientProof, proof->sessionKey));
}

nls::Number NlsClient::verifier(const nls::Number& salt) const {
    return nls::verifier(upperAccount_, upperPassword_, salt);
}

} // namespace logon
