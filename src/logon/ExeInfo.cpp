#include "logon/ExeInfo.h"

#include "logon/PeVersion.h"

#include <ctime>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <vector>

namespace logon {

namespace {

// Game executables are a few megabytes; anything far beyond is not one.
constexpr std::uintmax_t kLargestExecutable = 256u << 20;

std::optional<std::vector<std::uint8_t>> readWhole(const std::string& path, std::size_t size) {
    std::ifstream in(path, std::ios::binary);
    std::vector<std::uint8_t> bytes(size);
    if (!in.read(reinterpret_cast<char*>(bytes.data()), std::streamsize(size))) return std::nullopt;
    return bytes;
}

} // namespace

std::optional<ExeInfo> ExeInfo::read(const std::string& path) {
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0 || !S_ISREG(info.st_mode) ||
        std::uintmax_t(info.st_size) > kLargestExecutable)
        return std::nullopt;
    const auto bytes = readWhole(path, std::size_t(info.st_size));
    if (!bytes) return std::nullopt;
    const auto version = peProductVersion(*bytes);
    if (!version) return std::nullopt;

    std::tm utc{};
    const std::time_t modified = info.st_mtime;
    if (!::gmtime_r(&modified, &utc)) return std::nullopt;
    char stamp[32];
    std::strftime(stamp, sizeof stamp, "%m/%d/%y %H:%M:%S", &utc);
    return ExeInfo{std::filesystem::path(path).filename().string() + " " + stamp + " " +
                       std::to_string(info.st_size),
                   *version};
}

} // namespace logon
