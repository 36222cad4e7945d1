#include "platform/inert_makers.h"

namespace kivstore {

bool SInertMakers::MakeFile(const char*, SystemError& error) {
  error = SystemError::kAccessDenied;
  return false;
}

bool SInertMakers::MakeFolder(const char*, uint32_t, SystemError& error) {
  error = SystemError::kAccessDenied;
  return false;
}

bool SInertMakers::CopyFileTo(const char*, const char*, SystemError& error) {
  error = SystemError::kNone;
  return true;
}

}  // namespace kivstore
