#include "store/place/failure.h"

#include "foundation/files/file_failure.h"

namespace kivstore {

FailureKind FailureKindOf(SystemError error) {
  switch (error) {
    case SystemError::kSharingViolation:
      return FailureKind::kInUse;
    case SystemError::kAccessDenied:
    case SystemError::kWriteProtected:
      return FailureKind::kNoPermission;
    case SystemError::kFileNotFound:
    case SystemError::kPathNotFound:
      return FailureKind::kMissing;
    case SystemError::kDiskFull:
      return FailureKind::kDiskFull;
    case SystemError::kForeignLink:
      return FailureKind::kForeignLink;
    default:
      return FailureKind::kOther;
  }
}

SFailure FailureOfLastFile(ListKind list) {
  const SFileFailure& last = LastFileFailure();
  return {FailureKindOf(last.error), list, last.error, last.path, last.linkOwner, SString()};
}

}  // namespace kivstore
