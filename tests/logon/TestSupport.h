#pragma once

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace logon::test {

inline const std::filesystem::path kVectors =
    std::filesystem::path(CORVANTIDE_SHARED_DIR) / "vectors";

// One row of a reference file, by column name.
class Row {
public:
    Row(const std::vector<std::string>& header, std::vector<std::string> cells)
        : header_(&header), cells_(std::move(cells)) {
        cells_.resize(header.size());
    }
    const std::string& operator[](const std::string& column) const {
        for (std::size_t i = 0; i < header_->size(); ++i) {
            if ((*header_)[i] == column) return cells_[i];
        }
        throw std::out_of_range("no column " + column);
    }
    std::uint32_t number(const std::string& column) const {
        return std::uint32_t(std::stoul((*this)[column]));
    }

private:
    const std::vector<std::string>* header_;
    std::vector<std::string> cells_;
};

// A tab-separated reference file: a header line, then one case per line.
class VectorFile {
public:
    explicit VectorFile(const std::string& name) {
        std::ifstream in(kVectors / name);
        std::string line;
        std::getline(in, line);
        header_ = split(line);
        while (std::getline(in, line)) {
            if (!line.empty()) rows_.emplace_back(header_, split(line));
        }
    }
    VectorFile(const VectorFile&) = delete;
    const std::vector<Row>& rows() const { return rows_; }

private:
    static std::vector<std::string> split(const std::string& line) {
        std::vector<std::string> cells;
        std::string cell;
        std::istringstream in(line);
        while (std::getline(in, cell, '\t'))
            cells.push_back(cell);
        return cells;
    }
    std::vector<std::string> header_;
    std::vector<Row> rows_;
};

inline std::vector<std::uint8_t> unhex(const std::string& hex) {
    std::vector<std::uint8_t> bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2)
        bytes.push_back(std::uint8_t(std::stoul(hex.substr(i, 2), nullptr, 16)));
    return bytes;
}

template <typename Bytes> std::string hex(const Bytes& bytes) {
    static const char digits[] = "0123456789abcdef";
    std::string text;
    for (std::uint8_t b : bytes) {
        text += digits[b >> 4];
        text += digits[b & 0xF];
    }
    return text;
}

inline std::string hex(const std::uint8_t* bytes, std::size_t size) {
    return hex(std::vector<std::uint8_t>(bytes, bytes + size));
}

// A scratch folder, removed with everything in it.
class TempDir {
public:
    TempDir() {
        std::string pattern = (std::filesystem::temp_directory_path() / "logon-XXXXXX").string();
        path_ = ::mkdtemp(pattern.data()) ? pattern : throw std::runtime_error("mkdtemp");
    }
    ~TempDir() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

} // namespace logon::test
