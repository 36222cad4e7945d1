#include "hosts/common/unicode.h"

#include <utf8proc.h>

#include <cstdlib>

namespace kivhost {
namespace {

// Calls function(character) for each, until it answers false; false then, and where the text is no
// UTF-8.
template <class Function>
bool ForEachCharacter(std::string_view utf8, Function function) {
  const auto* const bytes = reinterpret_cast<const utf8proc_uint8_t*>(utf8.data());
  const auto size = static_cast<utf8proc_ssize_t>(utf8.size());
  for (utf8proc_ssize_t at = 0; at < size;) {
    utf8proc_int32_t character = 0;
    const utf8proc_ssize_t length = utf8proc_iterate(bytes + at, size - at, &character);
    if (length <= 0 || !function(character)) {
      return false;
    }
    at += length;
  }
  return true;
}

std::string Mapped(std::string_view utf8, int options) {
  utf8proc_uint8_t* mapped = nullptr;
  const utf8proc_ssize_t size =
      utf8proc_map(reinterpret_cast<const utf8proc_uint8_t*>(utf8.data()),
                   static_cast<utf8proc_ssize_t>(utf8.size()), &mapped,
                   static_cast<utf8proc_option_t>(UTF8PROC_STABLE | options));
  if (size < 0) {
    return std::string(utf8);
  }
  std::string text(reinterpret_cast<const char*>(mapped), static_cast<size_t>(size));
  std::free(mapped);
  return text;
}

bool IsHidden(utf8proc_int32_t character) {
  switch (utf8proc_category(character)) {
    case UTF8PROC_CATEGORY_CC:
    case UTF8PROC_CATEGORY_CF:
    case UTF8PROC_CATEGORY_CS:
    case UTF8PROC_CATEGORY_ZL:
    case UTF8PROC_CATEGORY_ZP:
      // A joiner is how some scripts and pictures are written.
      return character != 0x200C && character != 0x200D && character != 0x00AD;
    default:
      return false;
  }
}

}  // namespace

bool IsUtf8(std::string_view text) {
  return ForEachCharacter(text, [](utf8proc_int32_t) { return true; });
}

std::string Composed(std::string_view utf8) {
  return Mapped(utf8, UTF8PROC_COMPOSE);
}

std::string FoldCase(std::string_view utf8) {
  return Mapped(utf8, UTF8PROC_COMPOSE | UTF8PROC_CASEFOLD);
}

bool EqualLetters(std::string_view a, std::string_view b) {
  return FoldCase(a) == FoldCase(b);
}

std::string FoldAccents(std::string_view utf8) {
  return Mapped(utf8, UTF8PROC_DECOMPOSE | UTF8PROC_CASEFOLD | UTF8PROC_STRIPMARK);
}

bool HasHiddenCharacter(std::string_view utf8) {
  bool isHidden = false;
  ForEachCharacter(utf8, [&](utf8proc_int32_t character) {
    isHidden = IsHidden(character);
    return !isHidden;
  });
  return isHidden;
}

size_t CountCells(std::string_view utf8) {
  size_t cells = 0;
  ForEachCharacter(utf8, [&](utf8proc_int32_t character) {
    cells += static_cast<size_t>(utf8proc_charwidth(character));
    return true;
  });
  return cells;
}

std::string_view FirstCells(std::string_view utf8, size_t cells) {
  size_t whole = 0, read = 0, used = 0;
  utf8proc_int32_t last = 0, state = 0;
  ForEachCharacter(utf8, [&](utf8proc_int32_t character) {
    if (read > 0 && utf8proc_grapheme_break_stateful(last, character, &state)) {
      whole = read;
    }
    used += static_cast<size_t>(utf8proc_charwidth(character));
    last = character;
    if (used > cells) {
      return false;
    }
    utf8proc_uint8_t encoded[4];
    read += static_cast<size_t>(utf8proc_encode_char(character, encoded));
    return true;
  });
  return utf8.substr(0, used <= cells ? read : whole);
}

std::string WithoutHidden(std::string_view utf8) {
  std::string text;
  const auto take = [&](utf8proc_int32_t character) {
    utf8proc_uint8_t encoded[4];
    const auto length = static_cast<size_t>(utf8proc_encode_char(character, encoded));
    utf8.remove_prefix(length);
    text += IsHidden(character) ? "?" : std::string(encoded, encoded + length);
    return true;
  };
  while (!ForEachCharacter(utf8, take)) {
    utf8.remove_prefix(1);
    text += '?';
  }
  return text;
}

}  // namespace kivhost
