#pragma once

#include "logon/Bytes.h"

#include <optional>
#include <string_view>

namespace logon {

// A decoded product key: the three values that 0x51 carries, and the hash that proves the
// key's owner holds it without sending it.
class ProductKey {
public:
    enum class Family {
        StarCraft, // 13 digits
        Diablo2,   // 16 characters, also WarCraft II
        WarCraft3, // 26 characters
    };

    // Refuses keys of a wrong length, a foreign character or a failed check digit.
    static std::optional<ProductKey> decode(std::string_view key);

    ProductKey(Family family, std::uint32_t product, std::uint32_t val1, ByteView val2);

    Family family() const { return family_; }
    std::uint32_t product() const { return product_; }
    std::uint32_t val1() const { return val1_; }
    // Little-endian 32-bit value for the short families, 10 bytes for WarCraft III.
    ByteView val2() const { return {val2_.data(), val2Size_}; }

    Digest hash(std::uint32_t clientToken, std::uint32_t serverToken) const;

private:
    Family family_;
    std::uint32_t product_;
    std::uint32_t val1_;
    std::array<std::uint8_t, 10> val2_{};
    std::size_t val2Size_;
};

// One decoder per key family; each refuses what its own family can't be.
std::optional<ProductKey> decodeStarCraftKey(std::string_view key);
std::optional<ProductKey> decodeDiablo2Key(std::string_view key);
std::optional<ProductKey> decodeWarCraft3Key(std::string_view key);

} // namespace logon
