#pragma once

#include "logon/Bytes.h"

namespace logon {

// The old logon system's hash: one SHA-1 compression of at most 64 bytes, zero-filled, no
// length padding, and a message schedule whose rotation has its operands swapped. Words are
// read and written little-endian.
Digest brokenSha1(ByteView data);

} // namespace logon
