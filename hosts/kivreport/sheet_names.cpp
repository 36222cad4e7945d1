#include "hosts/kivreport/sheet_names.h"

#include <algorithm>
#include <string_view>

#include "hosts/common/unicode.h"
#include "hosts/kivreport/page/markup.h"

namespace kivreport {
namespace {

constexpr size_t kLongest = 31;

// Of UTF-16, by the first byte of a character: one beyond 16 bits has two.
size_t UnitsOf(char byte) {
  const auto first = static_cast<unsigned char>(byte);
  return first >= 0xF0 ? 2 : (first & 0xC0) == 0x80 ? 0 : 1;
}

std::string Cut(const std::string& text, size_t most) {
  size_t units = 0, end = 0;
  while (end < text.size()) {
    units += UnitsOf(text[end]);
    if (units > most) {
      break;
    }
    ++end;
  }
  return text.substr(0, end);
}

std::string Trimmed(const std::string& text) {
  constexpr const char* kNotAtAnEnd = "' ";
  const size_t first = text.find_first_not_of(kNotAtAnEnd);
  return first == std::string::npos
             ? ""
             : text.substr(first, text.find_last_not_of(kNotAtAnEnd) + 1 - first);
}

std::string Legal(const std::string& text) {
  std::string legal = Presentable(text);
  std::replace_if(
      legal.begin(), legal.end(),
      [](char c) { return std::string_view("[]:*?/\\").find(c) != std::string_view::npos; }, '-');
  legal = Trimmed(Cut(Trimmed(legal), kLongest));
  return legal.empty() ? "-" : legal;
}

}  // namespace

bool SheetNames::Take(const std::string& name) {
  constexpr const char* kReserved = "history";
  const std::string folded = kivhost::FoldCase(name);
  return folded != kReserved && taken.insert(folded).second;
}

std::string SheetNames::NameFor(const std::string& group, const std::string& teacher) {
  for (const std::string& name : {Legal(group), Legal(group + ", " + teacher)}) {
    if (Take(name)) {
      return name;
    }
  }
  return Numbered(group);
}

std::string SheetNames::NameAmongSchools(const std::string& group, const std::string& school) {
  const std::string name = Legal(group + ", " + school);
  return Take(name) ? name : Numbered(name);
}

// A search from 2 on each time would take long for a thousand classes of one name.
std::string SheetNames::Numbered(const std::string& name) {
  for (size_t& number = last.try_emplace(kivhost::FoldCase(name), 1).first->second;;) {
    const std::string end = " (" + std::to_string(++number) + ")";
    const std::string numbered = Cut(Legal(name), kLongest - end.size()) + end;
    if (Take(numbered)) {
      return numbered;
    }
  }
}

}  // namespace kivreport
