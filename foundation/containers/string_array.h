// The array of strings. It does what every array does; its elements lie in a heap array, and what
// is dropped from it is emptied.
//
// The default order is by bytes; CompareStrings ignores the letter case.
#pragma once

#include "foundation/containers/array.h"
#include "foundation/text/string.h"

namespace kivstore {

using SStringArray = SArray<SString>;

extern template class SArray<SString>;

int CompareStrings(const SString* a, const SString* b);

}  // namespace kivstore
