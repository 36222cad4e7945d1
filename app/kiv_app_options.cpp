// The teacher options in force: up to three files, the deeper laid over the upper ones.
#include "app/kiv_app.h"
#include "archive/file_version.h"
#include "records/teacher_options_dob.h"
#include "store/change/default_entries.h"
#include "store/list/entry_lock.h"
#include "store/place/display_name.h"
#include "store/place/placing.h"
#include "store/place/store_names.h"

namespace kivstore {
namespace {

constexpr int16_t kLastStep = 32;

bool TakeOptionsLock(SLockFile& lock, const SFileSpec& spec, const SString& waitText) {
  lock.Retarget(spec, SString());
  lock.waitText = waitText;
  lock.lockedText.LoadResource(kTextOptionsLocked);
  lock.failText.Empty();
  return lock.Lock();
}

SString RootWaitText(const SSite& site) {
  return SString::FromResource(site.IsMultiUser() ? kTextWaitForAllClasses : kTextWaitForOptions);
}

SString WaitTextFor(int id, const SString& name) {
  SString text;
  text.FormatResource(id, name.GetText());
  return text;
}

bool IsDone(Outcome outcome) {
  return outcome == Outcome::kRead || outcome == Outcome::kNothingThere;
}

}  // namespace

bool SKivApp::LoadTeacherOptions(const SOptionsRequest& request) {
  const bool isNew = request.record == nullptr && options == nullptr;
  SKivTeacherOptionsDob* const target = request.record != nullptr ? request.record : OwnOptions();
  if (target == nullptr) {
    return false;
  }
  if (!isNew && !request.goesOn) {
    target->Clear();
  }
  const bool takeCurrent = request.useCurrent && currentUser.valid;
  const SLoginNameObj* const classEntry =
      request.classEntry == nullptr && takeCurrent ? &currentUser.classEntry : request.classEntry;
  const SLoginNameObj* const student = request.studentEntry == nullptr && takeCurrent
                                           ? &currentUser.studentEntry
                                           : request.studentEntry;
  return (request.goesOn || LoadStoreOptions(*target, request.rootLock)) &&
         MergeClassOptions(*target, classEntry, request.classLock) &&
         MergeStudentOptions(*target, classEntry, student, request.studentLock);
}

void SKivApp::PlaceOptions(SFileSpec& spec, const SLoginNameObj* classEntry,
                           const SLoginNameObj* studentEntry) {
  PrepareClassList(site);
  EntryFileToOpen(site, spec, classEntry, studentEntry, CachedText<kTextOptionsFile>());
}

bool SKivApp::LoadStoreOptions(SKivTeacherOptionsDob& record, SLockFile* lock) {
  SFileSpec spec;
  PlaceOptions(spec, nullptr, nullptr);
  if (lock != nullptr && !TakeOptionsLock(*lock, spec, RootWaitText(site))) {
    return false;
  }
  const Outcome first = spec.IsExistingFile() ? Read(record, spec, false) : Outcome::kNothingThere;
  if (first != Outcome::kNothingThere) {
    return first == Outcome::kRead || Retry(record, spec, false);
  }
  if (!spec.Refresh()) {
    record.SaveToFile(spec);
  }
  return ReadWithRetry(record, spec, false);
}

bool SKivApp::MergeClassOptions(SKivTeacherOptionsDob& record, const SLoginNameObj* classEntry,
                                SLockFile* lock) {
  if (!site.IsMultiUser() || classEntry == nullptr) {
    return true;
  }
  SFileSpec spec;
  PlaceOptions(spec, classEntry, nullptr);
  if (lock != nullptr &&
      !TakeOptionsLock(*lock, spec, WaitTextFor(kTextWaitForClassOptions, classEntry->firstName))) {
    return false;
  }
  return ReadWithRetry(record, spec, true);
}

bool SKivApp::MergeStudentOptions(SKivTeacherOptionsDob& record, const SLoginNameObj* classEntry,
                                  const SLoginNameObj* studentEntry, SLockFile* lock) {
  if (studentEntry == nullptr) {
    return true;
  }
  SFileSpec spec;
  PlaceOptions(spec, classEntry, studentEntry);
  if (lock != nullptr &&
      !TakeOptionsLock(*lock, spec,
                       WaitTextFor(kTextWaitForStudentOptions, DisplayName(*studentEntry)))) {
    return false;
  }
  if (lock != nullptr) {
    SFileSpec folder(spec);
    folder.Up();
    if (!HoldsEntry(site, *lock, folder, *studentEntry, ListKind::kStudents)) {
      return false;
    }
  }
  return ReadWithRetry(record, spec, true);
}

// A level without a file is no failure.
bool SKivApp::ReadWithRetry(SKivTeacherOptionsDob& record, SFileSpec& spec, bool merge) {
  return !spec.IsExistingFile() || IsDone(Read(record, spec, merge)) || Retry(record, spec, merge);
}

Outcome SKivApp::Read(SKivTeacherOptionsDob& record, const SFileSpec& spec, bool merge) {
  return TryToRead([&] { return merge ? Merge(record, spec) : record.LoadFromFile(spec); });
}

// The class's file and the student's are read into one record.
bool SKivApp::Merge(SKivTeacherOptionsDob& record, const SFileSpec& spec) {
  if (levelRecord == nullptr || levelRecord->GetClassId() != record.GetClassId()) {
    levelRecord.reset(record.CreateNew());
  }
  return levelRecord != nullptr && record.MergeFromFile(spec, *levelRecord);
}

// After a first try that failed. Only a shared file is worth waiting for: seven tries with it, six
// waits.
bool SKivApp::Retry(SKivTeacherOptionsDob& record, SFileSpec& spec, bool merge) {
  const int16_t decision = OptionsReadFailed(record, spec);
  if (decision == kGoOn || decision == kGiveUp) {
    return decision == kGoOn;
  }
  if (!site.IsShared()) {
    return true;
  }
  for (int16_t step = 1; step <= kLastStep;) {
    BackoffWait(step);
    if (IsDone(Read(record, spec, merge))) {
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
  SOptionsRequest request;
  request.useCurrent = true;
  if (!LoadTeacherOptions(request)) {
    return false;
  }
  OptionsChanged();
  return true;
}

}  // namespace kivstore
