#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace logon {

// What 0x51 reports about the game's main executable: its product version, and the text
// "<file name> MM/DD/YY hh:mm:ss <size>" with the modification time in UTC.
struct ExeInfo {
    std::string text;
    std::uint32_t version = 0;

    // Nothing for a missing file, one that isn't PE, or one without a version resource.
    static std::optional<ExeInfo> read(const std::string& path);
};

} // namespace logon
