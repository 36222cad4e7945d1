// The text of a file whose character set nobody may have told.
#pragma once

#include <cstddef>
#include <string>

namespace kivadmin {

// No file of a roster is longer, and so no more of one is ever held.
inline constexpr size_t kLongestRosterFile = 64 << 20;

struct FileText {
  std::string text;     // UTF-8 without byte order mark
  std::string charset;  // of the file: "utf-8", "utf-16", "windows-1252"
  bool isGuessed = false;
};

// Takes the set that is told; else UTF-16 if a mark says so, UTF-8 if it is that, else
// windows-1252. Throws wrong usage, with `name` and the first line that does not fit, where bytes
// have no place in the set, where one line is UTF-8 and another is not, and where it is no text at
// all.
FileText DecodeFile(std::string bytes, const std::string& name, const std::string& charset);

}  // namespace kivadmin
