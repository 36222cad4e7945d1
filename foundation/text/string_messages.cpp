// Texts from the string table, and texts with arguments.
#include <cstdarg>
#include <cstdio>
#include <string_view>
#include <utility>

#include "foundation/text/string.h"
#include "platform/platform.h"

namespace kivstore {
namespace {

constexpr int kFormatBuffer = 512;
constexpr int kResourceBuffer = 1023;

// Text that grows in a buffer, as far as there is room.
class Joined {
 public:
  bool Add(std::string_view piece) {
    if (piece.size() > sizeof text - static_cast<size_t>(length)) {
      return false;
    }
    length += static_cast<int>(piece.copy(text + length, piece.size()));
    return true;
  }
  const char* Text() const { return text; }
  int Length() const { return length; }

 private:
  int length = 0;
  char text[kFormatBuffer];
};

// In one pass. False where it might differ from one argument after the other: an argument with a
// "%" in it, or one in the pattern that is no mark; and for a long text.
bool JoinAtOnce(std::string_view pattern, const SString* const* arguments, int count,
                Joined& joined) {
  for (size_t mark; (mark = pattern.find('%')) != pattern.npos; pattern.remove_prefix(mark + 2)) {
    const int number = mark + 1 < pattern.size() ? pattern[mark + 1] - '1' : count;
    if (number < 0 || number >= count) {
      return false;
    }
    const std::string_view argument = ViewOf(arguments[number]->GetText());
    if (argument.find('%') != argument.npos || !joined.Add(pattern.substr(0, mark)) ||
        !joined.Add(argument)) {
      return false;
    }
  }
  return joined.Add(pattern);
}

}  // namespace

void SString::Format(const char* pattern, ...) {
  char buffer[kFormatBuffer] = {};
  if (pattern != nullptr) {
    va_list arguments;
    va_start(arguments, pattern);
    std::vsnprintf(buffer, sizeof buffer, pattern, arguments);
    va_end(arguments);
  }
  Assign(buffer);
}

void SString::FormatResource(int id, ...) {
  SString pattern;
  if (!pattern.LoadResource(id)) {
    Empty();
    return;
  }
  char buffer[kFormatBuffer] = {};
  va_list arguments;
  va_start(arguments, id);
  std::vsnprintf(buffer, sizeof buffer, pattern.text, arguments);
  va_end(arguments);
  Assign(buffer);
}

bool SString::LoadResource(int id) {
  char buffer[kResourceBuffer];
  const int length = Platform().resources->LoadText(gModuleHandle, id, buffer, kResourceBuffer);
  if (length <= 0) {
    return false;
  }
  Assign(length, buffer);
  return true;
}

SString SString::FromResource(int id) {
  SString loaded;
  loaded.LoadResource(id);
  return loaded;
}

void SString::SubstituteAll(const SString& pattern, const SString* const* arguments, int count) {
  Joined joined;
  if (JoinAtOnce(pattern.View(), arguments, count, joined)) {
    Assign(joined.Length(), joined.Text());
    return;
  }
  SString result(pattern);
  char mark[] = "%1";
  for (int i = 0; i < count; ++i, ++mark[1]) {
    result.Replace(mark, arguments[i]->text);
  }
  *this = std::move(result);
}

void SString::Substitute(const SString& pattern, const SString& a1) {
  const SString* const arguments[] = {&a1};
  SubstituteAll(pattern, arguments, 1);
}

void SString::Substitute(const SString& pattern, const SString& a1, const SString& a2) {
  const SString* const arguments[] = {&a1, &a2};
  SubstituteAll(pattern, arguments, 2);
}

void SString::Substitute(const SString& pattern, const SString& a1, const SString& a2,
                         const SString& a3) {
  const SString* const arguments[] = {&a1, &a2, &a3};
  SubstituteAll(pattern, arguments, 3);
}

void SString::Substitute(const SString& pattern, const SString& a1, const SString& a2,
                         const SString& a3, const SString& a4) {
  const SString* const arguments[] = {&a1, &a2, &a3, &a4};
  SubstituteAll(pattern, arguments, 4);
}

void SString::Substitute(const SString& pattern, const SString& a1, const SString& a2,
                         const SString& a3, const SString& a4, const SString& a5) {
  const SString* const arguments[] = {&a1, &a2, &a3, &a4, &a5};
  SubstituteAll(pattern, arguments, 5);
}

}  // namespace kivstore
