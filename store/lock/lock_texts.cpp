// The texts that a lock carries for a user interface. They are set on every lock, and most locks
// are on the same few files: what can be kept is kept.
#include "store/lock/lock_file.h"
#include "store/place/cached_text.h"

namespace kivstore {
namespace {

constexpr int kTextLocked = 16064;
constexpr int kTextWait = 16065;
constexpr int kTextFailed = 16066;
constexpr int kTextNoAccess = 16086;

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
      return &TextsOf<16067, 16073, 16070>();
    case LockKind::kStudents:
      return &TextsOf<16068, 16074, 16071>();
    case LockKind::kFiles:
      return &TextsOf<16069, 16075, 16072>();
    case LockKind::kTeachers:
      return &TextsOf<16963, 16964, 16965>();
  }
  return nullptr;
}

const SString& LockedText(const SString& fileName) {
  static SString lastName;
  static SString lastText;
  if (lastText.IsEmpty() || lastName != fileName) {
    lastName = fileName;
    lastText.FormatResource(kTextLocked, fileName.GetText());
  }
  return lastText;
}

}  // namespace

SLockFile::SLockFile() : waitText(CachedText<kTextWait>()), failText(CachedText<kTextFailed>()) {}

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
