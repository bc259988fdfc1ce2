#pragma once

#include "logon/Bytes.h"

#include <optional>

namespace logon {

// The product version in a PE image's version resource, packed into one byte per part
// (major, minor, build, revision) the way the version check reports it. Nothing when the
// image is not PE or carries no well-formed version resource.
std::optional<std::uint32_t> peProductVersion(ByteView image);

} // namespace logon
