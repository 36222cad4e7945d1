// What stands in a cell of a roster: names, and the headings above them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kivadmin {

// Composed (NFC), without blanks around it.
std::string CellText(std::string_view cell);

// What is said, behind what it is, of a name with a hidden character.
inline constexpr const char* kHidden =
    ": a control character, or one that turns the direction of writing, in the name";

// For comparing headings: letter case, accents, blanks and punctuation do not count.
std::string HeadingKey(std::string_view heading);

struct FullName {
  std::string first;
  std::string last;
};

// "Lee, Ann" and "Ann Lee". The last word is the last name, with the words in small letters ahead
// of it ("Jan van den Berg"); or the first word, if a heading says that it stands first ("Lee
// Ann").
FullName SplitName(std::string_view name, bool lastStandsFirst);

// Signs that no name has, but that letters of other character sets become in windows-1252.
bool LooksMisread(std::string_view name);

// A text of a file as messages show it: without line breaks and other controls, and what is longer
// than a name cut.
std::string OneLine(std::string text);
std::string Shown(const std::string& text);
std::string InQuotes(const std::string& text);
// "a, b, c and 4 more", shown.
std::string Listed(const std::vector<std::string>& texts);

}  // namespace kivadmin
