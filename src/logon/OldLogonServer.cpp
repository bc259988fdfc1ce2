#include "logon/OldLogonServer.h"

#include "logon/PasswordHash.h"
#include "logon/Sha1.h"

namespace logon {

bool checkOldLogonProof(const Digest& storedHash, std::uint32_t clientToken,
                        std::uint32_t serverToken, const Digest& proof) {
    return sameDigest(doublePasswordHash(storedHash, clientToken, serverToken), proof);
}

} // namespace logon
