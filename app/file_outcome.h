// How the reading of a file came out whose opening is the only look at it.
#pragma once

#include "foundation/files/file_failure.h"

namespace kivstore {

enum class Outcome { kRead, kNothingThere, kRefused, kDamaged };

inline bool IsNothingThere(SystemError error) {
  return error == SystemError::kFileNotFound || error == SystemError::kPathNotFound;
}

// What failed is the system's word (LastFileFailure), or the content's if the system had none.
template <class ReadFile>
Outcome TryToRead(ReadFile read) {
  const uint32_t before = LastFileFailure().number;
  if (read()) {
    return Outcome::kRead;
  }
  if (LastFileFailure().number == before) {
    return Outcome::kDamaged;
  }
  return IsNothingThere(LastFileFailure().error) ? Outcome::kNothingThere : Outcome::kRefused;
}

}  // namespace kivstore
