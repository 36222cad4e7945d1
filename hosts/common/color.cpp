#include "hosts/common/color.h"

#include <cstdlib>

#include "hosts/common/console.h"

namespace kivhost {

void AddColorOption(const Command& command, ColorWish& wish) {
  command.AddChoice<ColorWish>(
      "--color", wish, "Colour; auto is on a terminal, unless NO_COLOR is set",
      {{"auto", ColorWish::kAuto}, {"always", ColorWish::kAlways}, {"never", ColorWish::kNever}},
      "auto");
}

bool HasColor(ColorWish wish) {
  if (wish != ColorWish::kAuto) {
    return wish == ColorWish::kAlways;
  }
  const char* const off = std::getenv("NO_COLOR");
  return (off == nullptr || *off == '\0') && OutputIsTerminal();
}

std::string Colored(const std::string& text, Color color) {
  constexpr const char* kCodes[] = {"0", "31", "32", "33"};
  return color == Color::kPlain
             ? text
             : std::string("\x1B[") + kCodes[static_cast<int>(color)] + 'm' + text + "\x1B[0m";
}

}  // namespace kivhost
