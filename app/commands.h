// The commands of the block. Each reads its fields of the block, writes its outputs, and answers
// the block's `result`; outputs that a failing command does not reach stay as they were. They run
// between the set-up and the tear-down of one call (general_call.h).
//
// Indices in the block begin at 1, `classIndex` at 0. One outside the list, below its first number
// too, is an entry that is not there.
#pragma once

#include <cstdint>

#include "app/general_call.h"
#include "foundation/text/string.h"
#include "kivstore/general_proc.h"
#include "store/list/entries.h"

namespace kivstore::commands {

using Command = bool (*)(SGeneralCall& call, SGeneralParams& params);

struct KnownCommand {
  int32_t number;
  Command command;
  bool usesFiles;  // the others answer from the caches, or from nothing
};

// Null for a number that is no command.
const KnownCommand* FindCommand(int32_t number);

// The plain chain reads every list anew.
bool CountTeachers(SGeneralCall& call, SGeneralParams& params);
bool TeacherName(SGeneralCall& call, SGeneralParams& params);
bool CountClasses(SGeneralCall& call, SGeneralParams& params);
bool ClassName(SGeneralCall& call, SGeneralParams& params);
bool CountStudents(SGeneralCall& call, SGeneralParams& params);
bool StudentProgress(SGeneralCall& call, SGeneralParams& params);
bool AnyEntries(SGeneralCall& call, SGeneralParams& params);

// The cached chain reads each list once (library_state.h).
bool CacheTeachers(SGeneralCall& call, SGeneralParams& params);
bool CachedTeacherName(SGeneralCall& call, SGeneralParams& params);
bool CacheClasses(SGeneralCall& call, SGeneralParams& params);
bool CachedClassName(SGeneralCall& call, SGeneralParams& params);
bool CacheStudents(SGeneralCall& call, SGeneralParams& params);
bool CachedStudentName(SGeneralCall& call, SGeneralParams& params);

bool ProductId(SGeneralCall& call, SGeneralParams& params);

// What they share.

inline bool IsNetworked(const SGeneralParams& params) {
  return params.mode != 0;
}

// The entry at an index from 0; null outside the list.
inline const SLoginNameObj* EntryAt(const SLoginList& list, int32_t index) {
  return index >= 0 && index < list.GetSize() ? list.At(index) : nullptr;
}
// The entry at an index from 1.
inline const SLoginNameObj* EntryNumber(const SLoginList& list, int32_t number) {
  return number >= 1 ? EntryAt(list, number - 1) : nullptr;
}

// The lists, after what the system's rules add to a store on its first use.
void ListTeachers(SGeneralCall& call, SLoginList& list);
void ListClasses(SGeneralCall& call, SLoginList& list);
void ListStudents(SGeneralCall& call, SLoginList& list, const SLoginNameObj& classEntry);

// Selects the teacher of `teacherIndex` in a networked store; elsewhere there is none to select.
// False if there is no such teacher.
bool SelectTeacherByIndex(SGeneralCall& call, const SGeneralParams& params);

// Writes a text into a field of the block: exactly `size` bytes, the text cut to size - 1
// characters and padded with NUL; nothing for a size below 1. The size is the host's to know: a
// larger one runs into the fields behind, but never beyond the block.
void ReturnText(SGeneralParams& params, char* field, int32_t size, const SString& text);
void ReturnName(SGeneralParams& params, char* field, int32_t size, const SLoginNameObj& entry);

}  // namespace kivstore::commands
