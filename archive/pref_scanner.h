// Walking through the text of a preference file.
//
//   [Student]
//   Notebook=2
//   Name=Ann Lee
//
// A line ends at CR, LF or both, and any run of them is one end. Spaces and tabs in front of a line
// are passed over. A section begins with "[", its name, "]"; what else stands on that line does not
// count. A key is its name directly followed by "="; the value is everything from there to the end
// of the line, spaces too, with no quoting and no escapes. Names compare without regard to case, A
// to Z. Lines of any other form are passed over. The first section that matches is used, and keys
// in front of the first header cannot be reached.
#pragma once

#include <string_view>

namespace kivstore {

struct SPrefScanner {
  char* cursor;
  char* end;

  void SkipBlanks();
  // The next CR or LF, or the end.
  char* LineEnd() const;
  // To the next line's first character.
  void SkipLine();
  // Passes over what is equal; true if that is the whole name.
  bool Match(const char* name);

  // From the cursor on. The header's "[", with the cursor on the line behind the header; or null.
  char* FindSection(const char* name);
  // From the cursor to the next header; true with the cursor on the value.
  bool FindKey(const char* name);
};

inline bool IsBlank(char c) {
  return c == ' ' || c == '\t';
}

inline bool IsLineBreak(char c) {
  return c == '\r' || c == '\n';
}

// No line can hold another name: an empty one or one with a line break; nor a key that would read
// as a header, or whose first blank would be passed over.
bool IsSectionName(const char* name);
bool IsKeyName(const char* name);
// Nor a value with a line break.
bool IsValue(std::string_view value);

}  // namespace kivstore
