#include "logon/BigNum.h"

#include <new>
#include <openssl/bn.h>

namespace logon {

namespace {

template <typename T> T* checked(T* allocated) {
    if (!allocated) throw std::bad_alloc();
    return allocated;
}

} // namespace

void BigNum::Free::operator()(bignum_st* value) const {
    BN_clear_free(value);
}
void BigNumContext::Free::operator()(bignum_ctx* ctx) const {
    BN_CTX_free(ctx);
}

BigNum::BigNum() : value_(checked(BN_new())) {}

BigNumContext::BigNumContext() : ctx_(checked(BN_CTX_new())) {}

BigNum BigNum::fromLittleEndian(ByteView bytes) {
    BigNum n;
    checked(BN_lebin2bn(bytes.data(), int(bytes.size()), n.get()));
    return n;
}

BigNum BigNum::fromBigEndian(ByteView bytes) {
    BigNum n;
    checked(BN_bin2bn(bytes.data(), int(bytes.size()), n.get()));
    return n;
}

BigNum BigNum::fromWord(std::uint32_t word) {
    BigNum n;
    BN_set_word(n.get(), word);
    return n;
}

std::array<std::uint8_t, 32> BigNum::toLittleEndian32() const {
    std::array<std::uint8_t, 32> bytes{};
    BN_bn2lebinpad(get(), bytes.data(), int(bytes.size()));
    return bytes;
}

bool BigNum::isZero() const {
    return BN_is_zero(get());
}

} // namespace logon
