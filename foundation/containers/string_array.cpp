#include "foundation/containers/string_array.h"

#include "foundation/containers/array_inl.h"
#include "platform/base/bytes.h"

namespace kivstore {

template class SArray<SString>;

int CompareStrings(const SString* a, const SString* b) {
  return CompareBytesNoCase(a->View(), b->View());
}

}  // namespace kivstore
