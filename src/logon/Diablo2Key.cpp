#include "logon/KeyMask.h"
#include "logon/ProductKey.h"

#include <array>
#include <utility>

namespace logon {

namespace {

constexpr std::string_view kAlphabet = "246789BCDEFGHJKMNPRTVWXZ";
constexpr std::string_view kHexDigits = "0123456789ABCDEF";

int alphabetValue(char c) {
    if (c >= 'a' && c <= 'z') c = char(c - 'a' + 'A');
    const auto at = kAlphabet.find(c);
    return at == std::string_view::npos ? -1 : int(at);
}

std::uint32_t hexValue(const char* digits, int count) {
    std::uint32_t value = 0;
    for (int i = 0; i < count; ++i)
        value = value << 4 | std::uint32_t(kHexDigits.find(digits[i]));
    return value;
}

} // namespace

std::optional<ProductKey> decodeDiablo2Key(std::string_view key) {
    if (key.size() != 16) return std::nullopt;

    // Each pair of key characters packs one byte, written back as two hex digits; the
    // overflow bit of each pair builds the check byte.
    std::array<char, 16> k{};
    std::uint32_t checksum = 0;
    for (int pair = 0; pair < 8; ++pair) {
        const int high = alphabetValue(key[2 * pair]);
        const int low = alphabetValue(key[2 * pair + 1]);
        if (high < 0 || low < 0) return std::nullopt;
        int n = 24 * high + low;
        if (n >= 256) {
            n -= 256;
            checksum |= 1u << pair;
        }
        n &= 0xFF; // a pair worth 512 or more keeps its low byte only
        k[2 * pair] = kHexDigits[n >> 4];
        k[2 * pair + 1] = kHexDigits[n & 0xF];
    }

    std::uint32_t v = 3;
    for (char c : k)
        v += std::uint32_t(kHexDigits.find(c)) ^ (v * 2);
    if ((v & 0xFF) != checksum) return std::nullopt;

    for (int j = 15; j >= 0; --j) {
        const int n = (j > 8 ? j - 9 : 15 - (8 - j)) & 0xF;
        std::swap(k[j], k[n]);
    }
    unmaskKeyDigits(k);

    std::array<std::uint8_t, 4> val2{};
    storeLe32(val2.data(), hexValue(&k[8], 8));
    return ProductKey(ProductKey::Family::Diablo2, hexValue(&k[0], 2), hexValue(&k[2], 6), val2);
}

} // namespace logon
