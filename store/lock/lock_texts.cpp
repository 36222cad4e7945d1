#include "store/lock/lock_texts.h"

#include "store/place/store_names.h"

namespace kivstore {
namespace {

template <TextNumber fail, TextNumber wait, TextNumber second>
const SLockTexts& TextsOf() {
  static const SLockTexts texts{SString::FromResource(fail), SString::FromResource(wait),
                                SString::FromResource(fail) + SString::FromResource(second)};
  return texts;
}

}  // namespace

const SLockTexts& LockTextsOf(ListKind list) {
  switch (list) {
    case ListKind::kClasses:
      return TextsOf<kTextNoClassLists, kTextWaitForClassList, kTextRetryClassList>();
    case ListKind::kStudents:
      return TextsOf<kTextNoStudentList, kTextWaitForStudentList, kTextRetryStudentList>();
    case ListKind::kFiles:
      return TextsOf<kTextNoSharedFiles, kTextWaitForFiles, kTextRetryFiles>();
    case ListKind::kTeachers:
      return TextsOf<kTextNoTeacherLists, kTextWaitForTeacherList, kTextRetryTeacherList>();
  }
  return PlainLockTexts();
}

const SLockTexts& PlainLockTexts() {
  static const SLockTexts texts{CachedText<kTextNotCompleted>(), CachedText<kTextWait>(),
                                SString()};
  return texts;
}

const SString& FileLockedText(const SString& fileName) {
  static SString lastName;
  static SString lastText;
  if (lastText.IsEmpty() || lastName != fileName) {
    lastName = fileName;
    lastText.FormatResource(kTextFileLocked, fileName.GetText());
  }
  return lastText;
}

SString NoAccessText(const SString& folderPath) {
  SString text;
  text.Substitute(CachedText<kTextNoAccess>(), folderPath);
  return text;
}

}  // namespace kivstore
