#include "logon/KeyMask.h"
#include "logon/ProductKey.h"

#include <array>
#include <utility>

namespace logon {

namespace {

std::uint32_t decimal(const char* digits, int count) {
    std::uint32_t value = 0;
    for (int i = 0; i < count; ++i)
        value = value * 10 + std::uint32_t(digits[i] - '0');
    return value;
}

} // namespace

std::optional<ProductKey> decodeStarCraftKey(std::string_view key) {
    if (key.size() != 13) return std::nullopt;
    std::array<char, 13> k{};
    for (std::size_t i = 0; i < k.size(); ++i) {
        if (key[i] < '0' || key[i] > '9') return std::nullopt;
        k[i] = key[i];
    }

    std::uint32_t check = 3;
    for (int i = 0; i < 12; ++i)
        check += std::uint32_t(k[i] - '0') ^ (check * 2);
    if (check % 10 != std::uint32_t(k[12] - '0')) return std::nullopt;

    int pos = 11;
    for (int i = 194; i >= 7; i -= 17)
        std::swap(k[pos--], k[i % 12]);
    unmaskKeyDigits(std::span(k.data(), 12));

    std::array<std::uint8_t, 4> val2{};
    storeLe32(val2.data(), decimal(&k[9], 3));
    return ProductKey(ProductKey::Family::StarCraft, decimal(&k[0], 2), decimal(&k[2], 7), val2);
}

} // namespace logon
