// Colour on standard output, where somebody sees it.
#pragma once

#include <string>

#include "hosts/common/command_line.h"

namespace kivhost {

enum class Color { kPlain, kRed, kGreen, kYellow };
enum class ColorWish { kAuto, kAlways, kNever };

// --color auto|always|never. By itself there is colour on a terminal, unless NO_COLOR is set.
void AddColorOption(const Command& command, ColorWish& wish);
bool HasColor(ColorWish wish);

// The text as a terminal shows it in that colour.
std::string Colored(const std::string& text, Color color);

}  // namespace kivhost
