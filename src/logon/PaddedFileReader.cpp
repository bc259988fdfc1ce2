#include "logon/PaddedFileReader.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace logon {

namespace {

// Opened without blocking, so a named pipe in place of a game file can't stall the logon; it
// is refused as not regular right after.
class FileDescriptor {
public:
    explicit FileDescriptor(const std::string& path)
        : fd_(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {}
    ~FileDescriptor() {
        if (fd_ >= 0) ::close(fd_);
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    int get() const { return fd_; }

private:
    int fd_;
};

// Fills as much of the buffer as the file still holds; -1 on a read error.
long readFully(int fd, std::uint8_t* buffer, std::size_t size) {
    std::size_t done = 0;
    while (done < size) {
        const ssize_t got = ::read(fd, buffer + done, size - done);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return -1;
        if (got == 0) break;
        done += std::size_t(got);
    }
    return long(done);
}

} // namespace

PaddedFileReader::PaddedFileReader(std::size_t chunkBlocks)
    : chunkSize_((chunkBlocks ? chunkBlocks : 1) * kBlock),
      buffer_(std::make_unique_for_overwrite<std::uint8_t[]>(chunkSize_)) {}

bool PaddedFileReader::read(const std::string& path, const std::function<void(ByteView)>& consume) {
    const FileDescriptor file(path);
    struct stat info {};
    if (file.get() < 0 || ::fstat(file.get(), &info) != 0 || !S_ISREG(info.st_mode)) return false;
    for (;;) {
        const long got = readFully(file.get(), buffer_.get(), chunkSize_);
        if (got < 0) return false;
        std::size_t size = std::size_t(got);
        if (size % kBlock != 0) {
            std::uint8_t pad = 0xFF;
            while (size % kBlock != 0)
                buffer_[size++] = pad--;
        }
        if (size > 0) consume({buffer_.get(), size});
        if (std::size_t(got) < chunkSize_) return true;
    }
}

} // namespace logon
