#include "logon/PasswordHash.h"

#include "logon/BrokenSha1.h"

#include <algorithm>

namespace logon {

Digest passwordHash(std::string_view password) {
    return brokenSha1({reinterpret_cast<const std::uint8_t*>(password.data()), password.size()});
}

Digest doublePasswordHash(const Digest& singleHash, std::uint32_t clientToken,
                          std::uint32_t serverToken) {
    std::array<std::uint8_t, 28> input{};
    storeLe32(&input[0], clientToken);
    storeLe32(&input[4], serverToken);
    std::copy(singleHash.begin(), singleHash.end(), input.begin() + 8);
    return brokenSha1(input);
}

Digest doublePasswordHash(std::string_view password, std::uint32_t clientToken,
                          std::uint32_t serverToken) {
    return doublePasswordHash(passwordHash(password), clientToken, serverToken);
}

} // namespace logon
