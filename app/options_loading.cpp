// The teacher options in force: up to three files, the deeper laid over the upper ones.
#include "foundation/application.h"
#include "foundation/site_mode.h"
#include "platform/text_numbers.h"
#include "records/teacher_options_dob.h"
#include "store/list/name_derivation.h"
#include "store/lock/lock_file.h"
#include "store/place/layout.h"

namespace kivstore {
namespace {

// What OptionsReadFailed decides.
constexpr int16_t kGoOn = 0;
constexpr int16_t kGiveUp = 1;
constexpr int16_t kTryAgain = 2;

constexpr int16_t kLastStep = 32;

bool TakeOptionsLock(SLockFile& lock, const SFileSpec& spec, const SString& waitText) {
  lock.Retarget(spec, SString());
  lock.waitText = waitText;
  lock.lockedText.LoadResource(kTextOptionsLocked);
  lock.failText.Empty();
  return lock.Lock();
}

SString RootWaitText() {
  return SString::FromResource(IsMultiUserSite() ? kTextWaitForAllClasses : kTextWaitForOptions);
}

SString WaitTextFor(int id, const SString& name) {
  SString text;
  text.FormatResource(id, name.GetText());
  return text;
}

bool Read(SKivTeacherOptionsDob& record, const SFileSpec& spec, bool merge) {
  return merge ? record.MergeFromFile(spec) : record.LoadFromFile(spec);
}

}  // namespace

bool SKivApp::LoadTeacherOptions(const SLoginNameObj* classEntry, const SLoginNameObj* studentEntry,
                                 bool useCurrent, SKivTeacherOptionsDob* record,
                                 SLockFile* rootLock, SLockFile* classLock,
                                 SLockFile* studentLockToTake) {
  SKivTeacherOptionsDob* const target = record != nullptr ? record : options;
  if (target == nullptr) {
    return false;
  }
  const bool takeCurrent = useCurrent && currentUser.valid;
  if (takeCurrent && classEntry == nullptr) {
    classEntry = &currentUser.classEntry;
  }
  if (takeCurrent && studentEntry == nullptr) {
    studentEntry = &currentUser.studentEntry;
  }
  return LoadStoreOptions(*target, rootLock) && MergeClassOptions(*target, classEntry, classLock) &&
         MergeStudentOptions(*target, classEntry, studentEntry, studentLockToTake);
}

bool SKivApp::LoadStoreOptions(SKivTeacherOptionsDob& record, SLockFile* lock) {
  record.Clear();
  SFileSpec spec;
  OptionsFile(spec, nullptr, nullptr);
  if (lock != nullptr && !TakeOptionsLock(*lock, spec, RootWaitText())) {
    return false;
  }
  if (!spec.Exists()) {
    record.SaveToFile(spec);
  }
  return ReadWithRetry(record, &spec, false);
}

bool SKivApp::MergeClassOptions(SKivTeacherOptionsDob& record, const SLoginNameObj* classEntry,
                                SLockFile* lock) {
  if (!IsMultiUserSite() || classEntry == nullptr) {
    return true;
  }
  SFileSpec spec;
  OptionsFile(spec, classEntry, nullptr);
  if (lock != nullptr &&
      !TakeOptionsLock(*lock, spec, WaitTextFor(kTextWaitForClassOptions, classEntry->firstName))) {
    return false;
  }
  return ReadWithRetry(record, &spec, true);
}

bool SKivApp::MergeStudentOptions(SKivTeacherOptionsDob& record, const SLoginNameObj* classEntry,
                                  const SLoginNameObj* studentEntry, SLockFile* lock) {
  if (studentEntry == nullptr) {
    return true;
  }
  SFileSpec spec;
  OptionsFile(spec, classEntry, studentEntry);
  if (lock != nullptr &&
      !TakeOptionsLock(*lock, spec,
                       WaitTextFor(kTextWaitForStudentOptions, DisplayName(*studentEntry)))) {
    return false;
  }
  return ReadWithRetry(record, &spec, true);
}

// A level without a file is no failure. Only a shared file is worth waiting for: seven tries, six
// waits.
bool SKivApp::ReadWithRetry(SKivTeacherOptionsDob& record, SFileSpec* spec, bool merge) {
  if (spec == nullptr || !spec->IsExistingFile()) {
    return true;
  }
  if (Read(record, *spec, merge)) {
    return true;
  }
  const int16_t decision = OptionsReadFailed(record, *spec);
  if (decision == kGoOn || decision == kGiveUp) {
    return decision == kGoOn;
  }
  if (!IsSharedSite()) {
    return true;
  }
  for (int16_t step = 1; step <= kLastStep;) {
    BackoffWait(step);
    if (Read(record, *spec, merge)) {
      return true;
    }
  }
  return false;
}

int16_t SKivApp::OptionsReadFailed(SDob& /*record*/, SFileSpec& spec) {
  int32_t status = SDob::kCannotOpen;
  SDob::CheckFileVersion(status, spec, gFileVersion);
  if (status == SDob::kVersionEqual || status == SDob::kCannotOpen) {
    return kTryAgain;
  }
  spec.Delete(false);
  return kGoOn;
}

bool SKivApp::ReloadCurrentOptions() {
  if (!LoadTeacherOptions(nullptr, nullptr, true, nullptr, nullptr, nullptr, nullptr)) {
    return false;
  }
  OptionsChanged();
  return true;
}

}  // namespace kivstore
