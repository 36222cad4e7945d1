#include "store/place/site.h"

namespace kivstore {

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

void SSite::NoteFailure(FailureKind kind, const SString& path, ListKind list, SystemError system) {
  constexpr int16_t kOtherError = 1;
  if (failure) {
    return;
  }
  if (kind == FailureKind::kMissing && SFileSpec::GetLastError() == kOtherError) {
    const SFileFailure& last = SFileSpec::LastFailure();
    failure = {FailureKindOf(last.error), list, last.error, last.path, SString()};
  } else {
    failure = {kind, list, system, path, SString()};
  }
}

// Of the file operation that has just failed.
void SSite::NoteShortfall(ListKind list) {
  if (!shortfall) {
    const SFileFailure& last = SFileSpec::LastFailure();
    shortfall = {FailureKindOf(last.error), list, last.error, last.path, SString()};
  }
}

void SSite::NoteFileFailure(ListKind list) {
  const SFileFailure& last = SFileSpec::LastFailure();
  NoteFailure(FailureKindOf(last.error), last.path, list, last.error);
}

}  // namespace kivstore
