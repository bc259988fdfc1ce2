#include "plugins/ProcessMemory.h"

#include <atomic>
#include <fcntl.h>
#include <malloc.h>
#include <unistd.h>

namespace {

// Opened once and read from the start each time: one system call a reading.
int statmFile() {
    static std::atomic<int> fd{-1};
    int known = fd.load(std::memory_order_acquire);
    if (known >= 0) return known;
    const int opened = ::open("/proc/self/statm", O_RDONLY | O_CLOEXEC);
    if (opened < 0) return -1;
    if (!fd.compare_exchange_strong(known, opened)) {
        ::close(opened);
        return known;
    }
    return opened;
}

} // namespace

namespace ProcessMemory {

qint64 ResidentBytes() {
    const int fd = statmFile();
    if (fd < 0) return 0;
    char text[128];
    const ssize_t length = ::pread(fd, text, sizeof text - 1, 0);
    if (length <= 0) return 0;
    // "size resident shared ...", in pages: the second number.
    ssize_t i = 0;
    while (i < length && text[i] != ' ')
        ++i;
    qint64 pages = 0;
    for (++i; i < length && text[i] >= '0' && text[i] <= '9'; ++i)
        pages = pages * 10 + (text[i] - '0');
    static const qint64 pageSize = ::sysconf(_SC_PAGESIZE);
    return pages * pageSize;
}

void ReturnFreedMemory() {
    ::malloc_trim(0);
}

} // namespace ProcessMemory
