#include "foundation/files/file_spec.h"

namespace kivstore {
namespace {

constexpr int kDigits = 8;
constexpr int32_t kNames = 100'000'000;

char gCounter[kDigits + 1] = "00000000";

// A carry out of the first digit is lost.
void RaiseCounter() {
  for (int i = kDigits - 1; i >= 0; --i) {
    if (gCounter[i] != '9') {
      ++gCounter[i];
      return;
    }
    gCounter[i] = '0';
  }
}

}  // namespace

bool SFileSpec::MakeUniqueName(SString& name, const SString& extension) const {
  if (!IsExistingFolder()) {
    return false;
  }
  const bool needsDot = !extension.IsEmpty() && extension.GetAt(0) != '.';
  const SString ending = needsDot ? "." + extension : extension;
  for (int32_t tries = 0; tries < kNames; ++tries) {
    const SString candidate = gCounter + ending;
    SFileSpec place(*this);
    if (!place.Down(candidate)) {
      return false;
    }
    if (!place.exists) {
      name = candidate;
      return true;
    }
    RaiseCounter();
  }
  return false;
}

}  // namespace kivstore
