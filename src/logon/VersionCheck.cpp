#include "logon/VersionCheck.h"

#include "logon/ChecksumFormula.h"
#include "logon/PaddedFileReader.h"

#include <algorithm>
#include <cctype>

namespace logon {

namespace {

// One seed per archive, mixed into A before the first word.
constexpr std::array<std::uint32_t, 8> kArchiveSeeds = {
    0xE7F4CB62, 0xF6A14FFC, 0xAA5504AF, 0x871FCDC2, 0x11BF6A18, 0xC57292E6, 0x7927D27E, 0x2FEC8733};

bool endsWithNoCase(std::string_view text, std::string_view suffix) {
    return text.size() >= suffix.size() &&
           std::equal(suffix.begin(), suffix.end(), text.end() - suffix.size(), [](char a, char b) {
               return std::tolower(static_cast<unsigned char>(a)) ==
                      std::tolower(static_cast<unsigned char>(b));
           });
}

} // namespace

int archiveNumber(std::string_view archiveName) {
    const auto dot = archiveName.find('.');
    if (dot == std::string_view::npos || dot == 0 || !endsWithNoCase(archiveName, ".mpq") ||
        dot != archiveName.size() - 4)
        return -1;
    const std::string_view stem = archiveName.substr(0, dot - 1);
    const char digit = archiveName[dot - 1];
    if (digit < '0' || digit > '7') return -1;
    if (!endsWithNoCase(stem, "ver-IX86-") && !endsWithNoCase(stem, "IX86ver")) return -1;
    return digit - '0';
}

std::optional<std::uint32_t> checkRevision(std::string_view formula, int archiveNumber,
                                           const std::array<std::string, 3>& files) {
    const auto compiled = ChecksumFormula::parse(formula);
    if (!compiled || archiveNumber < 0 || archiveNumber >= int(kArchiveSeeds.size()))
        return std::nullopt;
    ChecksumFormula::State state = compiled->initialState();
    state.a ^= kArchiveSeeds[std::size_t(archiveNumber)];

    PaddedFileReader reader;
    for (const std::string& file : files) {
        if (!reader.read(file, [&](ByteView data) { compiled->run(state, data); }))
            return std::nullopt;
    }
    return state.c;
}

} // namespace logon
