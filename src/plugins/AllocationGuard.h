#pragma once

#include <QtGlobal>
#include <atomic>

class QJSEngine;

// Refuses, on the thread that runs scripts, an allocation that would take the
// process past a script's memory cap: the allocator answers null (so the
// engine raises a RangeError, or C++ code throws std::bad_alloc) before the
// memory is touched, the script is marked as over its cap and its engine is
// interrupted. Allocations on other threads, and all of them while no script
// runs, pass untouched. Smaller allocations are left to the watchdog, which
// samples the resident size while a script runs.
//
// It works by standing in for malloc, calloc and realloc of the C library,
// which every library of the process (Qt's script engine, a C plug-in)
// allocates through; under a sanitizer, which stands in for them itself, it
// does nothing.
namespace AllocationGuard {

// From now on, on this thread: an allocation that would take the resident
// size past `residentLimit` bytes is refused.
void Arm(qint64 residentLimit, std::atomic<bool>* over, QJSEngine* engine);
void Disarm();
// False in a build where the allocator cannot be stood in for.
bool Active();

} // namespace AllocationGuard
