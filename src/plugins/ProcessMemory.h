#pragma once

#include <QtGlobal>

// The memory of this process as the kernel counts it. Safe to call from any
// thread and from inside an allocation: it allocates nothing.
namespace ProcessMemory {

// Resident bytes now; 0 when the kernel does not say.
qint64 ResidentBytes();
// Hands the allocator's free pages back to the system, so that memory a
// stopped script held shows as gone.
void ReturnFreedMemory();

} // namespace ProcessMemory
