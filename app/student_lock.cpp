#include <new>

#include "foundation/application.h"
#include "platform/text_numbers.h"
#include "store/list/name_derivation.h"
#include "store/lock/lock_file.h"
#include "store/place/failure_report.h"
#include "store/place/layout.h"

namespace kivstore {
namespace {

constexpr int16_t kPollSeconds = 6;

void ReportStudentInUse(const SLoginNameObj& student) {
  SString message;
  message.FormatResource(kTextStudentInUse, DisplayName(student).GetText());
  DropMessage(message);
}

}  // namespace

bool SKivApp::CheckStudentFree(const SLoginNameObj* studentEntry) {
  if (studentEntry == nullptr) {
    return false;
  }
  if (studentLock == nullptr) {
    studentLock = new (std::nothrow) SLockFile;
  } else {
    studentLock->Unlock();
  }
  if (studentLock == nullptr) {
    return false;
  }
  SFileSpec spec;
  EntryFolder(spec, &currentUser.classEntry, studentEntry, false, false);
  studentLock->Retarget(spec, SString::FromResource(kTextIndexFile));
  studentLock->timeoutSeconds = kPollSeconds;
  const bool taken = studentLock->Lock(false);
  SetLockMessages(*studentLock, LockKind::kStudents, false);
  if (!taken) {
    ReportStudentInUse(*studentEntry);
  }
  return taken;
}

}  // namespace kivstore
