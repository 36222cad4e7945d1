#include "hosts/kivreport/page/markup.h"

#include <utf8proc.h>

#include <algorithm>

namespace kivreport {
namespace {

constexpr const char* kReplacement = "\xEF\xBF\xBD";

bool MayStand(utf8proc_int32_t character) {
  const bool isControl = character < 0x20 || (character >= 0x7F && character < 0xA0);
  const bool isNoncharacter =
      (character & 0xFFFE) == 0xFFFE || (character >= 0xFDD0 && character <= 0xFDEF);
  return !isControl && !isNoncharacter;
}

bool IsPlain(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return c >= 0x20 && c < 0x7F; });
}

// Appends the first character and answers its length.
size_t TakeCharacter(std::string& presentable, std::string_view text) {
  const char first = text.front();
  if (first == '\t' || first == '\n' || first == '\r') {
    presentable += ' ';
    return 1;
  }
  utf8proc_int32_t character = 0;
  const utf8proc_ssize_t length =
      utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                       static_cast<utf8proc_ssize_t>(text.size()), &character);
  const size_t taken = length > 0 ? static_cast<size_t>(length) : 1;
  presentable += length > 0 && MayStand(character) ? text.substr(0, taken) : kReplacement;
  return taken;
}

std::string_view EntityOf(char c) {
  switch (c) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case '\'':
      return "&#39;";
    default:
      return {};
  }
}

}  // namespace

std::string Presentable(std::string_view text) {
  if (IsPlain(text)) {
    return std::string(text);
  }
  std::string presentable;
  while (!text.empty()) {
    text.remove_prefix(TakeCharacter(presentable, text));
  }
  return presentable;
}

std::string Escaped(std::string_view text) {
  std::string escaped;
  for (const char c : Presentable(text)) {
    const std::string_view entity = EntityOf(c);
    entity.empty() ? escaped += c : escaped += entity;
  }
  return escaped;
}

}  // namespace kivreport
