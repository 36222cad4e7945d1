// What a call may do to the files of a store, whatever stood in them.
#pragma once

#include "tests/fuzz/memory_files.h"

namespace kivtest {

// Nothing is made; nothing goes but an options file of another kind or version; nothing is written
// but indexes and long names.
void CheckFiles(const MemoryFiles::Tree& before, const MemoryFiles::Tree& after);

// An index that was whole keeps every login whose folder is there, and its file half. Where no
// operation failed.
void CheckIndexes(const MemoryFiles::Tree& before, const MemoryFiles::Tree& after);

void CheckSame(const MemoryFiles::Tree& before, const MemoryFiles::Tree& after);

}  // namespace kivtest
