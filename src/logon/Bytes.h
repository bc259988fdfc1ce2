#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace logon {

// Every integer of the logon travels little-endian, whatever the host does.
inline std::uint32_t loadLe32(const std::uint8_t* p) {
    return std::uint32_t(p[0]) | std::uint32_t(p[1]) << 8 | std::uint32_t(p[2]) << 16 |
           std::uint32_t(p[3]) << 24;
}

inline void storeLe32(std::uint8_t* p, std::uint32_t v) {
    p[0] = std::uint8_t(v);
    p[1] = std::uint8_t(v >> 8);
    p[2] = std::uint8_t(v >> 16);
    p[3] = std::uint8_t(v >> 24);
}

inline std::uint16_t loadLe16(const std::uint8_t* p) {
    return std::uint16_t(p[0] | p[1] << 8);
}

using Digest = std::array<std::uint8_t, 20>;
using ByteView = std::span<const std::uint8_t>;

} // namespace logon
