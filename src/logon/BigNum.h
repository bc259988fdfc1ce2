#pragma once

#include "logon/Bytes.h"

#include <memory>

struct bignum_st;
struct bignum_ctx;

namespace logon {

// An owned OpenSSL big number. The logon moves them as fixed-width little-endian byte
// strings; the test vectors write private values big-endian.
class BigNum {
public:
    BigNum();
    static BigNum fromLittleEndian(ByteView bytes);
    static BigNum fromBigEndian(ByteView bytes);
    static BigNum fromWord(std::uint32_t word);

    BigNum(BigNum&&) noexcept = default;
    BigNum& operator=(BigNum&&) noexcept = default;

    // Values wider than 32 bytes don't occur: everything is reduced modulo the 256-bit N.
    std::array<std::uint8_t, 32> toLittleEndian32() const;
    bool isZero() const;

    bignum_st* get() const { return value_.get(); }

private:
    struct Free {
        void operator()(bignum_st* value) const;
    };
    std::unique_ptr<bignum_st, Free> value_;
};

// Scratch space for a sequence of big-number operations.
class BigNumContext {
public:
    BigNumContext();
    bignum_ctx* get() const { return ctx_.get(); }

private:
    struct Free {
        void operator()(bignum_ctx* ctx) const;
    };
    std::unique_ptr<bignum_ctx, Free> ctx_;
};

} // namespace logon
