#include "plugins/AllocationGuard.h"

#include "plugins/ProcessMemory.h"

#include <QJSEngine>
#include <cerrno>
#include <cstddef>

#if defined(__SANITIZE_ADDRESS__)
#define CORVANTIDE_NO_ALLOCATION_GUARD
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(memory_sanitizer)
#define CORVANTIDE_NO_ALLOCATION_GUARD
#endif
#endif

namespace {

// Smaller requests are not worth a look at the resident size each.
constexpr size_t kLookFrom = 64 * 1024;

struct Armed {
    bool on;
    qint64 residentLimit;
    std::atomic<bool>* over;
    QJSEngine* engine;
};

// Plain data with a constant start, so reading it allocates nothing.
thread_local Armed t_armed{false, 0, nullptr, nullptr};

[[maybe_unused]] bool refused(size_t bytes) {
    Armed& armed = t_armed;
    if (!armed.on || bytes < kLookFrom) return false;
    if (ProcessMemory::ResidentBytes() + qint64(bytes) <= armed.residentLimit) return false;
    armed.over->store(true);
    if (armed.engine) armed.engine->setInterrupted(true);
    errno = ENOMEM;
    return true;
}

} // namespace

namespace AllocationGuard {

void Arm(qint64 residentLimit, std::atomic<bool>* over, QJSEngine* engine) {
    t_armed = {true, residentLimit, over, engine};
}

void Disarm() {
    t_armed.on = false;
}

bool Active() {
#ifdef CORVANTIDE_NO_ALLOCATION_GUARD
    return false;
#else
    return true;
#endif
}

} // namespace AllocationGuard

#ifndef CORVANTIDE_NO_ALLOCATION_GUARD

extern "C" {
void* __libc_malloc(size_t bytes);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t bytes);

void* malloc(size_t bytes) noexcept {
    return refused(bytes) ? nullptr : __libc_malloc(bytes);
}

void* calloc(size_t count, size_t size) noexcept {
    size_t bytes = 0;
    if (!__builtin_mul_overflow(count, size, &bytes) && refused(bytes)) return nullptr;
    return __libc_calloc(count, size);
}

void* realloc(void* block, size_t bytes) noexcept {
    return refused(bytes) ? nullptr : __libc_realloc(block, bytes);
}
}

#endif
