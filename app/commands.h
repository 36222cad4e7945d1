// The commands of the block. Each reads its fields of the block, writes its outputs, and answers
// the block's `result`; outputs that a failing command does not reach stay as they were. They run
// between the set-up and the tear-down of one call (general_call.h).
//
// Indices in the block begin at 1, `classIndex` at 0. One outside the list, below its first number
// too, is an entry that is not there.
#pragma once

#include <cstdint>

#include "foundation/containers/array.h"
#include "foundation/text/string.h"
#include "kivstore/general_proc.h"
#include "store/list/entries.h"

namespace kivstore::commands {

using Command = bool (*)(SGeneralParams& params);

// Null for a number that is no command.
Command FindCommand(int32_t number);

// The plain chain reads every list anew.
bool CountTeachers(SGeneralParams& params);
bool TeacherName(SGeneralParams& params);
bool CountClasses(SGeneralParams& params);
bool ClassName(SGeneralParams& params);
bool CountStudents(SGeneralParams& params);
bool StudentProgress(SGeneralParams& params);
bool AnyEntries(SGeneralParams& params);

// The cached chain reads each list once (roster_caches.h).
bool CacheTeachers(SGeneralParams& params);
bool CachedTeacherName(SGeneralParams& params);
bool CacheClasses(SGeneralParams& params);
bool CachedClassName(SGeneralParams& params);
bool CacheStudents(SGeneralParams& params);
bool CachedStudentName(SGeneralParams& params);

bool ProductId(SGeneralParams& params);

// What they share.

inline bool IsNetworked(const SGeneralParams& params) {
  return params.mode != 0;
}

// The entry at an index from 0; null outside the list.
inline SLoginNameObj* EntryAt(const SLoginList& list, int32_t index) {
  return index >= 0 && index < list.GetSize() ? list.At(index) : nullptr;
}
// The entry at an index from 1.
inline SLoginNameObj* EntryNumber(const SLoginList& list, int32_t number) {
  return number >= 1 ? EntryAt(list, number - 1) : nullptr;
}

// Selects the teacher of `teacherIndex` in a networked store; elsewhere there is none to select.
// False if there is no such teacher.
bool SelectTeacherByIndex(const SGeneralParams& params);

// Writes a text into a field of the block: exactly `size` bytes, the text cut to size - 1
// characters and padded with NUL; nothing for a size below 1. The size is the host's to know: a
// larger one runs into the fields behind, but never beyond the block.
void ReturnText(SGeneralParams& params, char* field, int32_t size, const SString& text);
void ReturnName(SGeneralParams& params, char* field, int32_t size, const SLoginNameObj& entry);

}  // namespace kivstore::commands
