#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace logon {

// The version-check archive's number: the digit in "ver-IX86-N.mpq" or "IX86verN.mpq" (any
// case), N from 0 to 7. -1 for any other name, such as an archive of another check method.
int archiveNumber(std::string_view archiveName);

// The checksum the server's formula gives over the three game files, or nothing when the
// formula or the archive number is not understood or a file can't be read.
std::optional<std::uint32_t> checkRevision(std::string_view formula, int archiveNumber,
                                           const std::array<std::string, 3>& files);

} // namespace logon
