// Texts from the string table, and texts with arguments.
#include <cstdarg>
#include <cstdio>
#include <utility>

#include "foundation/text/string.h"
#include "platform/platform.h"

namespace kivstore {
namespace {

constexpr int kFormatBuffer = 512;
constexpr int kResourceBuffer = 1023;

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
