// Pieces of drawings in SVG.
#pragma once

#include <string>

namespace kivreport {

// A length or a place, to a tenth.
std::string Drawn(double number);

// `text` is escaped.
std::string DrawnText(double x, double y, const std::string& text);

}  // namespace kivreport
