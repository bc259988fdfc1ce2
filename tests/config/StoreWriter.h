#pragma once

// The child of the crash test: writes to the store at `file` for ever,
// starting at write number `first`, and prints each number on standard output
// once the write has returned.
inline constexpr char kStoreWriterFlag[] = "--store-writer";
int runStoreWriter(const char* file, int first);
