#pragma once

#include "logon/Bytes.h"

#include <string_view>

namespace logon {

// Old logon system password hashes. The password is hashed byte for byte: lower-casing it
// is the caller's business.

// The single hash that account creation and password change send, and the server stores.
Digest passwordHash(std::string_view password);

// What a logon sends: the single hash keyed by both tokens, so a replay of it is useless.
Digest doublePasswordHash(std::string_view password, std::uint32_t clientToken,
                          std::uint32_t serverToken);
Digest doublePasswordHash(const Digest& singleHash, std::uint32_t clientToken,
                          std::uint32_t serverToken);

} // namespace logon
