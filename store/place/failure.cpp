#include "store/place/failure.h"

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
    default:
      return FailureKind::kOther;
  }
}

}  // namespace kivstore
