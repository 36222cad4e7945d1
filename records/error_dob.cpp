#include "records/error_dob.h"

namespace kivstore {
namespace {

bool TypesWith(int finger, int keyFinger) {
  if (finger == kLeftHand) {
    return keyFinger <= kLeftThumb;
  }
  if (finger == kRightHand) {
    return keyFinger >= kRightThumb;
  }
  return finger == keyFinger;
}

// Wraps like 32-bit additions.
int32_t SumByFinger(const SHandleArray<int32_t>& counts, int finger) {
  uint32_t sum = 0;
  for (int key = 0; key < kKeyCount; ++key) {
    if (TypesWith(finger, kFingerOfKey[key])) {
      sum += static_cast<uint32_t>(counts.At(key));
    }
  }
  return static_cast<int32_t>(sum);
}

}  // namespace

SDErrorDob::SDErrorDob() {
  ResetFields();
  SetDirty(false);
}

int32_t SDErrorDob::GetWrongByFinger(int finger) const {
  return SumByFinger(keyTypedWrong, finger);
}

int32_t SDErrorDob::GetTotalByFinger(int finger) const {
  return SumByFinger(keyTypedTotal, finger);
}

}  // namespace kivstore
