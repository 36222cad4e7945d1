// Texts of the string table that the store needs again and again: loaded at first use and kept, so
// that a use costs no more than sharing a string.
#pragma once

#include "foundation/text/string.h"

namespace kivstore {

template <int id>
const SString& CachedText() {
  static const SString text = SString::FromResource(id);
  return text;
}

}  // namespace kivstore
