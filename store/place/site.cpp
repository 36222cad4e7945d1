#include "store/place/site.h"

namespace kivstore {
namespace {

bool IsInTheWay(SystemError error) {
  return error == SystemError::kForeignLink || error == SystemError::kNoPlainFile;
}

// What a look or a reading that was stopped makes of it.
bool IsByAbsence(FailureKind kind) {
  return kind == FailureKind::kMissing || kind == FailureKind::kNoEntry ||
         kind == FailureKind::kDamaged;
}

}  // namespace

void SSite::SetSiteMode(int32_t mode) {
  siteMode = mode;
  if (mode == kSiteSharedTeachers) {
    teacherTier = 1;
  }
}

void SSite::EndCall() {
  SelectTeacher(nullptr);
  owner = nullptr;
}

void SSite::SelectTeacher(const SLoginNameObj* entry) {
  ForgetCountedClasses();
  if (entry == nullptr) {
    currentTeacher.reset();
    return;
  }
  if (currentTeacher == nullptr) {
    currentTeacher.reset(new (std::nothrow) SLoginNameObj);
  }
  if (currentTeacher != nullptr) {
    *currentTeacher = *entry;
  }
}

SString SSite::GetDataRoot(bool removable) const {
  if (removable && !dataPathOverride.IsEmpty()) {
    return dataPathOverride;
  }
  return owner != nullptr ? owner->GetDataPath() : SString();
}

const SKivTeacherOptionsDob* SSite::GetOptionsInForce() const {
  return owner != nullptr ? owner->GetOptionsInForce() : nullptr;
}

void SSite::ClearFailure() {
  failure = shortfall = {};
  failuresBefore = SFileSpec::LastFailure().number;
}

void SSite::NoteFailure(FailureKind kind, const SString& path, ListKind list, SystemError system) {
  if (failure) {
    return;
  }
  constexpr int16_t kOtherError = 1;
  const SFileFailure& last = SFileSpec::LastFailure();
  const bool isInTheWay = last.number != failuresBefore && IsInTheWay(last.error);
  const bool isStopped =
      (kind == FailureKind::kMissing && SFileSpec::GetLastError() == kOtherError) ||
      (IsByAbsence(kind) && isInTheWay);
  failure = isStopped ? FailureOfLastFile(list) : SFailure{kind, list, system, path, 0, SString()};
}

void SSite::NoteShortfall(ListKind list) {
  if (!shortfall) {
    shortfall = FailureOfLastFile(list);
  }
}

void SSite::NoteFileFailure(ListKind list) {
  if (!failure) {
    failure = FailureOfLastFile(list);
  }
}

}  // namespace kivstore
