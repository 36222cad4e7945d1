// What Unicode says of UTF-8 texts, by utf8proc.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kivhost {

bool IsUtf8(std::string_view text);

// Letters and their accents as one character each, where there is one (NFC). What is no UTF-8 stays
// as it is, here and below.
std::string Composed(std::string_view utf8);
// For comparing: letter case does not count, nor whether an accent is a character of its own.
std::string FoldCase(std::string_view utf8);
bool EqualLetters(std::string_view a, std::string_view b);
// For searching: accents do not count either.
std::string FoldAccents(std::string_view utf8);

// A character that is seen nowhere or turns the direction of what stands beside it: no name has
// one.
bool HasHiddenCharacter(std::string_view utf8);

// How many columns of a terminal it takes: two for a wide character, none for an accent of its own.
size_t CountCells(std::string_view utf8);
// As much of it from the start as these columns hold, in whole characters as a reader sees them.
std::string_view FirstCells(std::string_view utf8, size_t cells);
// With a question mark for each hidden character, and for each byte that is no UTF-8.
std::string WithoutHidden(std::string_view utf8);

}  // namespace kivhost
