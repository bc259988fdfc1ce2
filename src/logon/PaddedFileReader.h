#pragma once

#include "logon/Bytes.h"

#include <functional>
#include <memory>
#include <string>

namespace logon {

// Hands a file to the version check in chunks of whole 1024-byte blocks; a last partial block
// is filled with 0xFF, 0xFE, 0xFD, ... the way the game client pads it. One buffer serves every
// file, so a check costs one pass over each file and no large allocations.
class PaddedFileReader {
public:
    static constexpr std::size_t kBlock = 1024;

    explicit PaddedFileReader(std::size_t chunkBlocks = 1024);

    // False when the file can't be opened as a regular file or a read fails; `consume` may
    // have seen part of the file by then.
    bool read(const std::string& path, const std::function<void(ByteView)>& consume);

private:
    std::size_t chunkSize_;
    std::unique_ptr<std::uint8_t[]> buffer_;
};

} // namespace logon
