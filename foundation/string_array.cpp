#include "foundation/string_array.h"

#include "foundation/array_inl.h"
#include "foundation/bytes.h"

namespace kivstore {

template class SArray<SString>;

int CompareStrings(const SString* a, const SString* b) {
  return CompareBytesNoCase(a->View(), b->View());
}

}  // namespace kivstore
