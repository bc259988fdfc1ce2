#include "logon/PeVersion.h"

#include <string_view>
#include <vector>

namespace logon {

namespace {

constexpr std::uint32_t kVersionResource = 16;
constexpr std::uint32_t kFixedInfoSignature = 0xFEEF04BD;
constexpr std::uint32_t kSubdirectory = 0x80000000;

// Bounds-checked little-endian reads; every offset in a PE file comes from the file itself.
class Image {
public:
    explicit Image(ByteView bytes) : bytes_(bytes) {}

    bool has(std::uint64_t offset, std::uint64_t size) const {
        return offset <= bytes_.size() && size <= bytes_.size() - offset;
    }
    std::optional<std::uint32_t> u32(std::uint64_t offset) const {
        if (!has(offset, 4)) return std::nullopt;
        return loadLe32(&bytes_[offset]);
    }
    std::optional<std::uint16_t> u16(std::uint64_t offset) const {
        if (!has(offset, 2)) return std::nullopt;
        return loadLe16(&bytes_[offset]);
    }

private:
    ByteView bytes_;
};

struct Section {
    std::uint32_t address, rawSize, rawOffset;
};

class PeFile {
public:
    explicit PeFile(ByteView bytes) : image_(bytes) {}

    std::optional<std::uint32_t> productVersion() {
        if (!readHeaders()) return std::nullopt;
        const auto data = versionData();
        if (!data) return std::nullopt;
        return fixedInfoVersion(data->first, data->second);
    }

private:
    bool readHeaders() {
        if (image_.u16(0) != 0x5A4D) // "MZ"
            return false;
        const auto peOffset = image_.u32(0x3C);
        if (!peOffset) return false;
        const std::uint64_t pe = *peOffset;
        if (image_.u32(pe) != 0x00004550) // "PE\0\0"
            return false;
        const auto sections = image_.u16(pe + 6);
        const auto optionalSize = image_.u16(pe + 20);
        if (!sections || !optionalSize) return false;
        const std::uint64_t optional = pe + 24;
        const auto magic = image_.u16(optional);
        std::uint64_t directories;
        if (magic == 0x10B)
            directories = optional + 96;
        else if (magic == 0x20B)
            directories = optional + 112;
        else
            return false;
        const auto directoryCount = image_.u32(directories - 4);
        const std::uint64_t resourceEntry = directories + 2 * 8;
        if (!directoryCount || *directoryCount < 3 || resourceEntry + 8 > optional + *optionalSize)
            return false;
        const auto resourceAddress = image_.u32(resourceEntry);
        if (!resourceAddress || *resourceAddress == 0) return false;

        const std::uint64_t table = optional + *optionalSize;
        for (std::uint32_t i = 0; i < *sections; ++i) {
            const std::uint64_t at = table + 40ull * i;
            const auto address = image_.u32(at + 12), rawSize = image_.u32(at + 16),
                       rawOffset = image_.u32(at + 20);
            if (!address || !rawSize || !rawOffset) return false;
            sections_.push_back({*address, *rawSize, *rawOffset});
        }
        const auto root = fileOffset(*resourceAddress);
        if (!root) return false;
        resourceRoot_ = *root;
        return true;
    }

    std::optional<std::uint64_t> fileOffset(std::uint32_t address) const {
        for (const Section& s : sections_) {
            if (address >= s.address && address - s.address < s.rawSize)
                return std::uint64_t(s.rawOffset) + (address - s.address);
        }
        return std::nullopt;
    }

    // Entry of a resource directory: with `id` set, the entry of that numeric id, else the
    // first entry. Returns the entry's target offset word.
    std::optional<std::uint32_t> directoryEntry(std::uint64_t directory,
                                                std::optional<std::uint32_t> id) const {
        const auto named = image_.u16(directory + 12);
        const auto numbered = image_.u16(directory + 14);
        if (!named || !numbered) return std::nullopt;
        const std::uint32_t first = id ? *named : 0;
        const std::uint32_t count = std::uint32_t(*named) + *numbered;
        for (std::uint32_t i = first; i < count; ++i) {
            const std::uint64_t entry = directory + 16 + 8ull * i;
            const auto name = image_.u32(entry);
            if (!name) return std::nullopt;
            if (!id || *name == *id) return image_.u32(entry + 4);
        }
        return std::nullopt;
    }

    // The version resource is three levels down: type 16, then its first name, then its first
    // language, which points at the data.
    std::optional<std::pair<std::uint64_t, std::uint32_t>> versionData() const {
        const auto byType = directoryEntry(resourceRoot_, kVersionResource);
        if (!byType || !(*byType & kSubdirectory)) return std::nullopt;
        const auto byName = directoryEntry(resourceRoot_ + (*byType & ~kSubdirectory), {});
        if (!byName || !(*byName & kSubdirectory)) return std::nullopt;
        const auto byLanguage = directoryEntry(resourceRoot_ + (*byName & ~kSubdirectory), {});
        if (!byLanguage || (*byLanguage & kSubdirectory)) return std::nullopt;
        const auto address = image_.u32(resourceRoot_ + *byLanguage);
        const auto size = image_.u32(resourceRoot_ + *byLanguage + 4);
        if (!address || !size) return std::nullopt;
        const auto offset = fileOffset(*address);
        if (!offset || !image_.has(*offset, *size)) return std::nullopt;
        return std::pair{*offset, *size};
    }

    // VS_VERSIONINFO: three words, the UTF-16 key "VS_VERSION_INFO", padding to a 32-bit
    // boundary, then the fixed file info.
    std::optional<std::uint32_t> fixedInfoVersion(std::uint64_t offset, std::uint32_t size) const {
        constexpr std::string_view key = "VS_VERSION_INFO";
        for (std::size_t i = 0; i <= key.size(); ++i) {
            const auto unit = image_.u16(offset + 6 + 2 * i);
            if (!unit || *unit != (i < key.size() ? std::uint16_t(key[i]) : 0)) return std::nullopt;
        }
        const std::uint64_t fixed = offset + ((6 + 2 * (key.size() + 1) + 3) & ~std::size_t{3});
        if (fixed + 24 > offset + size || image_.u32(fixed) != kFixedInfoSignature)
            return std::nullopt;
        const std::uint32_t ms = *image_.u32(fixed + 16);
        const std::uint32_t ls = *image_.u32(fixed + 20);
        return (ms >> 16 & 0xFF) << 24 | (ms & 0xFF) << 16 | (ls >> 16 & 0xFF) << 8 | (ls & 0xFF);
    }

    Image image_;
    std::vector<Section> sections_;
    std::uint64_t resourceRoot_ = 0;
};

} // namespace

std::optional<std::uint32_t> peProductVersion(ByteView image) {
    return PeFile(image).productVersion();
}

} // namespace logon
