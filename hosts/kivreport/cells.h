// Texts in the columns of a terminal.
#pragma once

#include <cstddef>
#include <string>

namespace kivreport {

// A name out of a file may hold anything; a terminal is shown no control characters and none that
// turn the direction of what stands beside them.
std::string Printable(const std::string& text);

// With blanks to so many cells.
std::string PadRight(const std::string& text, size_t cells);
std::string PadLeft(const std::string& text, size_t cells);

// Cut behind a character, with a sign that it was: "Alexandra Fairwea…".
std::string CutTo(const std::string& text, size_t cells, bool unicode);

// A note of what could not be read, in red.
std::string ColoredNote(const std::string& text, bool hasColor);
// A cell of that column, blanks around it: idle in yellow, not begun in red, all else plain.
std::string ColoredCell(const std::string& cell, const std::string& column, bool hasColor);

// How far of all; two missions a cell: "███▌░░░".
std::string Bar(int done, int all);

}  // namespace kivreport
