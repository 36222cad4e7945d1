// Texts from outside on their way into a document.
#pragma once

#include <string>
#include <string_view>

namespace kivreport {

// What is no UTF-8, and a character that a document may not hold (a control, a half of a pair),
// becomes U+FFFD; a line break or a tab becomes a blank.
std::string Presentable(std::string_view text);

// Presentable, and no more than text in HTML: between tags and within an attribute's quotes.
std::string Escaped(std::string_view text);

}  // namespace kivreport
