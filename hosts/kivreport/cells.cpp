#include "hosts/kivreport/cells.h"

#include <algorithm>

#include "hosts/common/color.h"
#include "hosts/common/unicode.h"

namespace kivreport {
namespace {

std::string Repeated(const char* text, int count) {
  std::string all;
  for (int i = 0; i < count; ++i) {
    all += text;
  }
  return all;
}

std::string Blanks(const std::string& text, size_t cells) {
  return std::string(cells - std::min(cells, kivhost::CountCells(text)), ' ');
}

}  // namespace

// What is no UTF-8 is shown as it is, but for the controls.
std::string Printable(const std::string& text) {
  if (kivhost::IsUtf8(text)) {
    return kivhost::WithoutHidden(text);
  }
  std::string shown = text;
  std::replace_if(
      shown.begin(), shown.end(),
      [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }, '?');
  return shown;
}

std::string PadRight(const std::string& text, size_t cells) {
  return text + Blanks(text, cells);
}

std::string PadLeft(const std::string& text, size_t cells) {
  return Blanks(text, cells) + text;
}

std::string CutTo(const std::string& text, size_t cells, bool unicode) {
  if (kivhost::CountCells(text) <= cells || cells == 0) {
    return text;
  }
  return std::string(kivhost::FirstCells(text, cells - 1)) + (unicode ? "…" : "~");
}

std::string ColoredNote(const std::string& text, bool hasColor) {
  return hasColor ? kivhost::Colored(text, kivhost::Color::kRed) : text;
}

std::string ColoredCell(const std::string& cell, const std::string& column, bool hasColor) {
  const std::string text = cell.substr(0, cell.find_last_not_of(' ') + 1);
  const bool isIdle = text == "idle";
  if (!hasColor || column != "standing" || !(isIdle || text == "not begun")) {
    return cell;
  }
  return kivhost::Colored(text, isIdle ? kivhost::Color::kYellow : kivhost::Color::kRed) +
         cell.substr(text.size());
}

std::string Bar(int done, int all) {
  const int filled = std::clamp(done, 0, all);
  const int cells = (all + 1) / 2;
  const int half = filled % 2;
  return Repeated("█", filled / 2) + Repeated("▌", half) + Repeated("░", cells - filled / 2 - half);
}

}  // namespace kivreport
