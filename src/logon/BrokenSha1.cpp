#include "logon/BrokenSha1.h"

#include <algorithm>
#include <bit>

namespace logon {

Digest brokenSha1(ByteView data) {
    std::array<std::uint8_t, 64> block{};
    std::copy_n(data.begin(), std::min<std::size_t>(data.size(), block.size()), block.begin());

    std::array<std::uint32_t, 80> w{};
    for (int i = 0; i < 16; ++i)
        w[i] = loadLe32(&block[4 * i]);
    for (int i = 16; i < 80; ++i)
        w[i] = std::rotl(std::uint32_t{1}, int((w[i - 16] ^ w[i - 8] ^ w[i - 14] ^ w[i - 3]) % 32));

    const std::array<std::uint32_t, 5> init{0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476,
                                            0xC3D2E1F0};
    std::uint32_t a = init[0], b = init[1], c = init[2], d = init[3], e = init[4];
    for (int i = 0; i < 80; ++i) {
        std::uint32_t f, k;
        if (i < 20) {
            f = (b & c) | (~b & d);
            k = 0x5A827999;
        } else if (i < 40) {
            f = b ^ c ^ d;
            k = 0x6ED9EBA1;
        } else if (i < 60) {
            f = (b & c) | (b & d) | (c & d);
            k = 0x8F1BBCDC;
        } else {
            f = b ^ c ^ d;
            k = 0xCA62C1D6;
        }
        const std::uint32_t t = std::rotl(a, 5) + f + e + k + w[i];
        e = d;
        d = c;
        c = std::rotl(b, 30);
        b = a;
        a = t;
    }

    const std::array<std::uint32_t, 5> out{init[0] + a, init[1] + b, init[2] + c, init[3] + d,
                                           init[4] + e};
    Digest digest{};
    for (int i = 0; i < 5; ++i)
        storeLe32(&digest[4 * i], out[i]);
    return digest;
}

} // namespace logon
