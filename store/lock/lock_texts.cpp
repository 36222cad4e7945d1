// The texts that a lock carries for a user interface. They are set on every lock, and most locks
// are on the same few files: what can be kept is kept.
#include "platform/text_numbers.h"
#include "store/lock/lock_file.h"
#include "store/place/cached_text.h"

namespace kivstore {
namespace {

struct KindTexts {
  SString fail;
  SString wait;
  SString locked;
};

template <int fail, int wait, int second>
const KindTexts& TextsOf() {
  static const KindTexts texts{SString::FromResource(fail), SString::FromResource(wait),
                               SString::FromResource(fail) + SString::FromResource(second)};
  return texts;
}

const KindTexts* FindTexts(LockKind kind) {
  switch (kind) {
    case LockKind::kClasses:
      return &TextsOf<kTextNoClassLists, kTextWaitForClassList, kTextRetryClassList>();
    case LockKind::kStudents:
      return &TextsOf<kTextNoStudentList, kTextWaitForStudentList, kTextRetryStudentList>();
    case LockKind::kFiles:
      return &TextsOf<kTextNoSharedFiles, kTextWaitForFiles, kTextRetryFiles>();
    case LockKind::kTeachers:
      return &TextsOf<kTextNoTeacherLists, kTextWaitForTeacherList, kTextRetryTeacherList>();
  }
  return nullptr;
}

const SString& LockedText(const SString& fileName) {
  static SString lastName;
  static SString lastText;
  if (lastText.IsEmpty() || lastName != fileName) {
    lastName = fileName;
    lastText.FormatResource(kTextFileLocked, fileName.GetText());
  }
  return lastText;
}

}  // namespace

SLockFile::SLockFile()
    : waitText(CachedText<kTextWait>()), failText(CachedText<kTextNotCompleted>()) {}

void SLockFile::ComposeTexts(const SString& folderPath, const SString& fileName) {
  accessText.Substitute(CachedText<kTextNoAccess>(), folderPath);
  lockedText = LockedText(fileName);
}

void SetLockMessages(SLockFile& lock, LockKind kind, bool quiet) {
  const KindTexts* const texts = FindTexts(kind);
  if (texts == nullptr) {
    lock.lockedText.Empty();
    return;
  }
  lock.failText = quiet ? SString() : texts->fail;
  lock.waitText = texts->wait;
  lock.lockedText = texts->locked;
}

}  // namespace kivstore
