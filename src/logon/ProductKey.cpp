#include "logon/ProductKey.h"

#include "logon/BrokenSha1.h"
#include "logon/Sha1.h"

#include <algorithm>

namespace logon {

std::optional<ProductKey> ProductKey::decode(std::string_view key) {
    switch (key.size()) {
    case 13:
        return decodeStarCraftKey(key);
    case 16:
        return decodeDiablo2Key(key);
    case 26:
        return decodeWarCraft3Key(key);
    default:
        return std::nullopt;
    }
}

ProductKey::ProductKey(Family family, std::uint32_t product, std::uint32_t val1, ByteView val2)
    : family_(family), product_(product), val1_(val1),
      val2Size_(std::min(val2.size(), val2_.size())) {
    std::copy_n(val2.begin(), val2Size_, val2_.begin());
}

Digest ProductKey::hash(std::uint32_t clientToken, std::uint32_t serverToken) const {
    if (family_ == Family::WarCraft3) {
        return Sha1()
            .addLe32(clientToken)
            .addLe32(serverToken)
            .addLe32(product_)
            .addLe32(val1_)
            .add(val2())
            .finish();
    }
    // The short families go through the old system's hash, with a zero word before val2.
    std::array<std::uint8_t, 24> input{};
    storeLe32(&input[0], clientToken);
    storeLe32(&input[4], serverToken);
    storeLe32(&input[8], product_);
    storeLe32(&input[12], val1_);
    std::copy_n(val2_.begin(), 4, input.begin() + 20);
    return brokenSha1(input);
}

} // namespace logon
