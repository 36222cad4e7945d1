#include "archive/pref_scanner.h"

#include <algorithm>
#include <cstring>

#include "platform/base/bytes.h"

namespace kivstore {
namespace {

bool EqualNoCase(char a, char b) {
  return FoldUpper(static_cast<unsigned char>(a)) == FoldUpper(static_cast<unsigned char>(b));
}

}  // namespace

void SPrefScanner::SkipBlanks() {
  cursor = std::find_if_not(cursor, end, IsBlank);
}

char* SPrefScanner::LineEnd() const {
  return std::find_if(cursor, end, IsLineBreak);
}

void SPrefScanner::SkipLine() {
  cursor = std::find_if_not(LineEnd(), end, IsLineBreak);
  SkipBlanks();
}

bool SPrefScanner::Match(const char* name) {
  while (*name != '\0' && cursor < end && EqualNoCase(*cursor, *name)) {
    ++cursor;
    ++name;
  }
  return *name == '\0';
}

char* SPrefScanner::FindSection(const char* name) {
  if (!IsSectionName(name)) {
    return nullptr;
  }
  for (SkipBlanks(); cursor < end; SkipLine()) {
    if (*cursor != '[') {
      continue;
    }
    char* const header = cursor++;
    if (Match(name) && cursor < end && *cursor == ']') {
      SkipLine();
      return header;
    }
  }
  return nullptr;
}

bool SPrefScanner::FindKey(const char* name) {
  if (!IsKeyName(name)) {
    return false;
  }
  for (; cursor < end && *cursor != '['; SkipLine()) {
    if (Match(name) && cursor < end && *cursor == '=') {
      ++cursor;
      return true;
    }
  }
  return false;
}

bool IsSectionName(const char* name) {
  return name != nullptr && *name != '\0' && std::strpbrk(name, "\r\n") == nullptr;
}

bool IsKeyName(const char* name) {
  return IsSectionName(name) && *name != '[' && !IsBlank(*name);
}

bool IsValue(std::string_view value) {
  return std::none_of(value.begin(), value.end(), IsLineBreak);
}

}  // namespace kivstore
