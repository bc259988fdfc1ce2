#include "logon/Sha1.h"

#include <new>
#include <openssl/crypto.h>
#include <openssl/evp.h>

namespace logon {

void Sha1::Free::operator()(evp_md_ctx_st* ctx) const {
    EVP_MD_CTX_free(ctx);
}

Sha1::Sha1() : ctx_(EVP_MD_CTX_new()) {
    if (!ctx_ || EVP_DigestInit_ex(ctx_.get(), EVP_sha1(), nullptr) != 1) throw std::bad_alloc();
}

Sha1& Sha1::add(ByteView data) {
    EVP_DigestUpdate(ctx_.get(), data.data(), data.size());
    return *this;
}

Sha1& Sha1::add(std::string_view text) {
    EVP_DigestUpdate(ctx_.get(), text.data(), text.size());
    return *this;
}

Sha1& Sha1::addLe32(std::uint32_t value) {
    std::uint8_t bytes[4];
    storeLe32(bytes, value);
    return add(bytes);
}

Digest Sha1::finish() {
    Digest digest{};
    EVP_DigestFinal_ex(ctx_.get(), digest.data(), nullptr);
    return digest;
}

bool sameDigest(const Digest& x, const Digest& y) {
    return CRYPTO_memcmp(x.data(), y.data(), x.size()) == 0;
}

} // namespace logon
