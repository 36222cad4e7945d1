// Keystroke counts: how often each key was wanted, and how often something else was hit. The
// tutor's playing code writes the tables; here they are stored, copied and summed by finger.
#pragma once

#include "records/field_record.h"
#include "records/key_index.h"

namespace kivstore {

// In a file: 388 bytes for tables of 48.
//
//   2 + 4n   keyTypedWrong: count, counts
//   2 + 4n   keyTypedTotal
//
// Copying and merging replace the tables whole; nothing is added up.
class SDErrorDob : public SFieldRecord<SDErrorDob, SDob> {
 public:
  SDErrorDob();

  // The sum over the keys of a Finger, a hand included; 0 for any other value. A key that a file's
  // shorter table lacks counts 0.
  int32_t GetWrongByFinger(int finger) const;
  int32_t GetTotalByFinger(int finger) const;

  SHandleArray<int32_t> keyTypedWrong;  // by key index: wanted and missed
  SHandleArray<int32_t> keyTypedTotal;  // by key index: wanted

  static constexpr auto Fields() {
    using R = SDErrorDob;
    constexpr ArrayDefault<int32_t> kNone{kKeyCount, 0};
    return std::tuple(PlainField(&R::keyTypedWrong, "KeyTypedWrong", kNone),
                      PlainField(&R::keyTypedTotal, "KeyTypedTotal", kNone));
  }
};

// The same with an identifier in front. The tutor's; nothing here makes one.
class SDBErrorDob : public SFieldRecord<SDBErrorDob, SDob> {
 public:
  uint32_t id = 0;
  SDErrorDob errorDob;

  static constexpr auto Fields() {
    using R = SDBErrorDob;
    return std::tuple(PlainField(&R::id, "ID", 0u), ChildField(&R::errorDob, "ErrorDob"));
  }
};

}  // namespace kivstore
