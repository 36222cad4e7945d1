// The names of the tree, and which names from a file may be followed into it.
#pragma once

#include "foundation/text/string.h"
#include "platform/text_numbers.h"

namespace kivstore {

// A text of the string table that the store needs again and again: loaded at first use and kept, so
// that a use costs no more than sharing a string.
template <int number>
const SString& CachedText() {
  static const SString text = SString::FromResource(number);
  return text;
}

// The folder that lists classes, or with kTextTeacherClasses teachers: the stem of the string table
// with the game type's extension, "Classes.zep".
SString ClassesName(TextNumber stem = kTextClasses);

// Whether a name from a file of the store names something in a folder: not empty, without
// separators, and not of dots and blanks alone, which would lead elsewhere.
bool IsSafeName(const SString& name);

}  // namespace kivstore
