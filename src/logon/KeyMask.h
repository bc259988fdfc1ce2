#pragma once

#include <cstdint>
#include <span>

namespace logon {

// Both short key families hide their digits under the same mask, walked from the last
// character to the first; letters pass through.
inline void unmaskKeyDigits(std::span<char> key) {
    std::uint32_t mask = 0x13AC9741;
    for (std::size_t i = key.size(); i-- > 0;) {
        char& c = key[i];
        if (c >= '0' && c <= '7') {
            c = char(c ^ (mask & 7));
            mask >>= 3;
        } else if (c == '8' || c == '9') {
            c = char(c ^ (i & 1));
        }
    }
}

} // namespace logon
