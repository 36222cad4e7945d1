#include "hosts/kivadmin/roster_files/cell_text.h"

#include <algorithm>
#include <array>

#include "hosts/common/unicode.h"

namespace kivadmin {
namespace {

constexpr std::string_view kHardBlank = "\xC2\xA0";
constexpr std::string_view kBlanks = " \t\r\n";

std::string_view Trimmed(std::string_view text) {
  while (!text.empty()) {
    if (kBlanks.find(text.front()) != std::string_view::npos) {
      text.remove_prefix(1);
    } else if (kBlanks.find(text.back()) != std::string_view::npos) {
      text.remove_suffix(1);
    } else if (text.starts_with(kHardBlank)) {
      text.remove_prefix(kHardBlank.size());
    } else if (text.ends_with(kHardBlank)) {
      text.remove_suffix(kHardBlank.size());
    } else {
      break;
    }
  }
  return text;
}

bool IsPunctuation(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte < 0x80 &&
         (byte < '0' || (byte > '9' && byte < 'A') || (byte > 'Z' && byte < 'a') || byte > 'z');
}

bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

bool IsSmallLetter(char c) {
  return c >= 'a' && c <= 'z';
}

// Where the last name begins: at the last word, or at the first of the small ones ahead of it.
size_t StartOfLast(std::string_view name) {
  size_t start = name.rfind(' ');
  while (start != std::string_view::npos && start > 0) {
    const size_t before = name.rfind(' ', start - 1);
    if (before == std::string_view::npos || !IsSmallLetter(name[before + 1])) {
      break;
    }
    start = before;
  }
  return start;
}

FullName Split(std::string_view name, size_t at, bool lastStandsFirst) {
  const std::string front(Trimmed(name.substr(0, at)));
  const std::string back(Trimmed(name.substr(at + 1)));
  return lastStandsFirst ? FullName{back, front} : FullName{front, back};
}

}  // namespace

std::string CellText(std::string_view cell) {
  const std::string_view text = Trimmed(cell);
  return IsAscii(text) ? std::string(text) : kivhost::Composed(text);
}

std::string HeadingKey(std::string_view heading) {
  std::string key = kivhost::FoldAccents(Trimmed(heading));
  for (size_t at; (at = key.find(kHardBlank)) != std::string::npos;) {
    key.erase(at, kHardBlank.size());
  }
  std::erase_if(key, IsPunctuation);
  return key;
}

FullName SplitName(std::string_view name, bool lastStandsFirst) {
  const size_t comma = name.find(',');
  if (comma != std::string_view::npos) {
    return Split(name, comma, true);
  }
  const size_t at = lastStandsFirst ? name.find(' ') : StartOfLast(name);
  if (at == std::string_view::npos) {
    return {std::string(name), ""};
  }
  return Split(name, at, lastStandsFirst);
}

bool LooksMisread(std::string_view name) {
  constexpr std::array<std::string_view, 38> kSigns = {
      "‚", "ƒ", "„", "…", "†", "‡", "ˆ", "‰", "‹", "›", "•", "™", "¡",
      "¢", "£", "¤", "¥", "¦", "§", "¨", "©", "«", "¬", "®", "¯", "°",
      "±", "²", "³", "µ", "¶", "¸", "¹", "»", "¼", "½", "¾", "¿"};
  return std::any_of(kSigns.begin(), kSigns.end(), [&](std::string_view sign) {
    return name.find(sign) != std::string_view::npos;
  });
}

std::string OneLine(std::string text) {
  std::replace_if(
      text.begin(), text.end(),
      [](char c) { return static_cast<unsigned char>(c) < ' ' || c == 0x7F; }, ' ');
  return text;
}

std::string Shown(const std::string& text) {
  constexpr size_t kLongest = 100;
  size_t end = std::min(text.size(), kLongest);
  while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) {
    --end;
  }
  return OneLine(text.substr(0, end)) + (end < text.size() ? "..." : "");
}

std::string InQuotes(const std::string& text) {
  return '"' + Shown(text) + '"';
}

std::string Listed(const std::vector<std::string>& texts) {
  constexpr size_t kMost = 5;
  std::string list;
  for (size_t i = 0; i < std::min(texts.size(), kMost); ++i) {
    list += (i == 0 ? "" : ", ") + Shown(texts[i]);
  }
  const size_t more = texts.size() - std::min(texts.size(), kMost);
  return more == 0 ? list : list + " and " + std::to_string(more) + " more";
}

}  // namespace kivadmin
