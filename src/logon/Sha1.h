#pragma once

#include "logon/Bytes.h"

#include <memory>
#include <string_view>

struct evp_md_ctx_st;

namespace logon {

// Standard SHA-1, fed piece by piece; the new logon system and the 26-character key hash
// chain several fields into one digest.
class Sha1 {
public:
    Sha1();

    Sha1& add(ByteView data);
    Sha1& add(std::string_view text);
    Sha1& addLe32(std::uint32_t value);
    Digest finish();

    static Digest of(ByteView data) { return Sha1().add(data).finish(); }

private:
    struct Free {
        void operator()(evp_md_ctx_st* ctx) const;
    };
    std::unique_ptr<evp_md_ctx_st, Free> ctx_;
};

// Compares proofs in constant time, so a forger learns nothing from how long a check takes.
bool sameDigest(const Digest& x, const Digest& y);

} // namespace logon
