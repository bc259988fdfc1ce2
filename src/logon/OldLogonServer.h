#pragma once

#include "logon/Bytes.h"

namespace logon {

// The server side of the old logon system, for the local test server: it stores the single
// password hash and checks the double hash a logon or password change sends against it.
bool checkOldLogonProof(const Digest& storedHash, std::uint32_t clientToken,
                        std::uint32_t serverToken, const Digest& proof);

} // namespace logon
