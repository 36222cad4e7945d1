// One option or progress field that takes part in merging: value, time of its last change, and the
// mark that it differs from another record's. Every stamped field of every record is one of these.
//
// The merge rule is Merge; the setter rule is Set. Values may be plain or arrays with Assign and
// operator== (SHandleArray).
#pragma once

#include "archive/dob_archive.h"
#include "foundation/time/date_time.h"

namespace kivstore {

template <class T>
struct SStamped {
  T value{};
  SDateTime stamp = SDateTime::None();
  bool differs = false;

  // The newest stamp wins and a tie goes to `other`. So a fresh mark beats every stored stamp, and
  // one in `other` beats even a fresh mark here.
  void Merge(const SStamped& other) {
    if (stamp > other.stamp) {
      return;
    }
    value = other.value;
    stamp = other.stamp;
  }

  void MarkDifference(const SStamped& other) {
    if (!(value == other.value)) {
      differs = true;
    }
  }

  void MarkFresh() {
    stamp = SDateTime::Fresh();
    differs = false;
  }

  // True if the record is dirty now: a new value, or an equal one that closes a noted difference.
  bool Set(const T& newValue) {
    const bool equal = value == newValue;
    if (equal && !differs) {
      return false;
    }
    if (!equal) {
      value = newValue;
    }
    MarkFresh();
    return true;
  }

  void ClearStamp() {
    if (!stamp.IsFresh()) {
      stamp = SDateTime::None();
    }
  }
};

}  // namespace kivstore
