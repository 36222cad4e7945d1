#include "store/change/default_entries.h"

#include "foundation/site_mode.h"
#include "platform/text_numbers.h"
#include "store/change/adding.h"
#include "store/list/index_file.h"
#include "store/list/name_derivation.h"
#include "store/lock/lock_file.h"
#include "store/place/cached_text.h"
#include "store/place/layout.h"

namespace kivstore {
namespace {

// A list that is locked by someone is taken to have entries.
int32_t CountClassesIn(SFileSpec& spec) {
  if (gSiteMode == kSiteLocal) {
    return ReadIndexCount(spec);
  }
  if (!IsSharedSite()) {
    return 0;
  }
  SLockFile lock(spec, CachedText<kTextIndexFile>());
  if (!SLockFile::IsHeldHere(lock)) {
    SetLockMessages(lock, LockKind::kClasses, false);
    if (!lock.Lock()) {
      return 1;
    }
  }
  return ReadIndexCount(spec);
}

}  // namespace

void AddDefaultTeacher(SFileSpec& spec) {
  SLoginNameObj teacher;
  MakeTeacherDefaultEntry(teacher);
  AddTeacher(teacher);
  SelectTeacher(&teacher);
  DownToEntry(spec, teacher);
}

bool FillEmptyClassList(SFileSpec& spec) {
  if (CountClassesIn(spec) >= 1) {
    return true;
  }
  const SString& name = CachedText<kTextDefault>();
  if (!spec.Down(name)) {
    return false;
  }
  const bool isThere = spec.Exists();
  spec.Up();
  SString folder;
  return isThere || AddClassAt(spec, name, folder);
}

void RestoreClassFolder(SFileSpec& spec, const SLoginNameObj& classEntry) {
  spec.Up();
  SString folder;
  AddClassAt(spec, DisplayName(classEntry), folder);
  if (!folder.IsEmpty()) {
    spec.Down(folder);
  }
}

}  // namespace kivstore
