#include "hosts/kivadmin/roster_files/file_text.h"

#include <utf8proc.h>

#include <algorithm>
#include <string_view>

#include "hosts/common/charset.h"
#include "hosts/common/host_error.h"
#include "hosts/common/unicode.h"

namespace kivadmin {
namespace {

using kivhost::EqualNoCase;
using kivhost::HostError;
using kivhost::kWrongUsage;

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kLittleMark = "\xFF\xFE";
constexpr std::string_view kBigMark = "\xFE\xFF";

HostError Misfit(const std::string& name, size_t line, const std::string& what) {
  return {kWrongUsage, name + ':' + std::to_string(line) + ": " + what};
}

// Calls take(line, number) for each, until it answers false.
template <class Take>
void ForEachLine(std::string_view bytes, Take take) {
  size_t number = 1;
  while (!bytes.empty()) {
    const size_t length = std::min(bytes.find('\n'), bytes.size() - 1) + 1;
    if (!take(bytes.substr(0, length), number++)) {
      return;
    }
    bytes.remove_prefix(length);
  }
}

// The first lines of each kind; 0 where there is none.
struct Utf8Look {
  size_t beyondAscii = 0;
  size_t noUtf8 = 0;
};

Utf8Look LookAtUtf8(std::string_view bytes) {
  const auto isAscii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
  Utf8Look look;
  ForEachLine(bytes, [&](std::string_view line, size_t number) {
    if (std::all_of(line.begin(), line.end(), isAscii)) {
      return true;
    }
    size_t& first = kivhost::IsUtf8(line) ? look.beyondAscii : look.noUtf8;
    first = first == 0 ? number : first;
    return look.beyondAscii == 0 || look.noUtf8 == 0;
  });
  return look;
}

bool IsHigh(int32_t unit) {
  return unit >= 0xD800 && unit < 0xDC00;
}

bool IsLow(int32_t unit) {
  return unit >= 0xDC00 && unit < 0xE000;
}

// UTF-16 taken apart: the same on every system, whose own names for it differ.
class Utf16 {
 public:
  Utf16(std::string_view bytes, bool isBigEndian) : bytes(bytes), isBigEndian(isBigEndian) {}

  bool AtEnd() const { return bytes.empty(); }
  // Negative where only half of one is left.
  int32_t TakeCharacter();

 private:
  // Nothing but a half is negative.
  int32_t TakeUnit();

  std::string_view bytes;
  bool isBigEndian;
};

int32_t Utf16::TakeUnit() {
  if (bytes.size() < 2) {
    bytes = {};
    return -1;
  }
  const auto first = static_cast<unsigned char>(bytes[0]);
  const auto second = static_cast<unsigned char>(bytes[1]);
  bytes.remove_prefix(2);
  return isBigEndian ? first << 8 | second : second << 8 | first;
}

int32_t Utf16::TakeCharacter() {
  const int32_t unit = TakeUnit();
  if (!IsHigh(unit)) {
    return IsLow(unit) ? -1 : unit;
  }
  const int32_t low = TakeUnit();
  return IsLow(low) ? 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00) : -1;
}

std::string FromUtf16(std::string_view bytes, bool isBigEndian, const std::string& name) {
  std::string text;
  size_t line = 1;
  for (Utf16 rest(bytes, isBigEndian); !rest.AtEnd();) {
    const int32_t character = rest.TakeCharacter();
    if (character < 0) {
      throw Misfit(name, line, "half a character: the file is no UTF-16, or torn");
    }
    utf8proc_uint8_t encoded[4];
    const auto length = static_cast<size_t>(utf8proc_encode_char(character, encoded));
    text.append(reinterpret_cast<const char*>(encoded), length);
    line += character == '\n';
  }
  return text;
}

std::string FromSet(const kivhost::Charset& set, std::string_view bytes, const std::string& name,
                    const std::string& misfit) {
  std::string text;
  ForEachLine(bytes, [&](std::string_view line, size_t number) {
    text += set.ToUtf8(line);
    if (!set.GetUnshown().empty()) {
      throw Misfit(name, number, misfit);
    }
    return true;
  });
  return text;
}

// "UTF-16LE" is one of UTF-16, whether with or without the dash.
bool IsOfFamily(const std::string& charset, std::string_view family) {
  std::string letters = charset;
  std::erase(letters, '-');
  return EqualNoCase(std::string_view(letters).substr(0, family.size()), family);
}

std::string FromTold(std::string_view bytes, const std::string& name, const std::string& charset) {
  if (IsOfFamily(charset, "utf16")) {
    return FromUtf16(bytes, EqualNoCase(charset, "utf-16be"), name);
  }
  const auto set = kivhost::Charset::Open(charset);
  if (set == nullptr) {
    throw HostError(kWrongUsage, "--file-charset " + charset + ": no such character set");
  }
  return FromSet(*set, bytes, name,
                 "bytes that are no " + charset + "; --file-charset tells what the file is");
}

FileText Guess(std::string bytes, const std::string& name) {
  constexpr const char* kGuess = "windows-1252";
  const Utf8Look look = LookAtUtf8(bytes);
  if (look.noUtf8 == 0) {
    return {std::move(bytes), "utf-8"};
  }
  if (look.beyondAscii != 0) {
    throw Misfit(name, look.noUtf8,
                 "no UTF-8, and line " + std::to_string(look.beyondAscii) +
                     " is: the file is torn, or two in one; --file-charset tells which it is");
  }
  return {FromSet(*kivhost::NeedCharset(kGuess), bytes, name,
                  "neither UTF-8 nor windows-1252; --file-charset tells what the file is"),
          kGuess, true};
}

void NeedFamily(const std::string& charset, std::string_view family, const std::string& name) {
  if (!charset.empty() && !IsOfFamily(charset, family)) {
    throw HostError(kWrongUsage, name + ": begins with the mark of " +
                                     (family == "utf8" ? "UTF-8" : "UTF-16") +
                                     ", and --file-charset says " + charset);
  }
}

FileText DecodeMarked(std::string_view bytes, const std::string& name, const std::string& charset) {
  if (bytes.starts_with(kUtf8Mark)) {
    NeedFamily(charset, "utf8", name);
    return {FromTold(bytes.substr(kUtf8Mark.size()), name, "utf-8"), "utf-8"};
  }
  NeedFamily(charset, "utf16", name);
  return {FromUtf16(bytes.substr(kBigMark.size()), bytes.starts_with(kBigMark), name), "utf-16"};
}

FileText Decode(std::string bytes, const std::string& name, const std::string& charset) {
  for (const std::string_view mark : {kUtf8Mark, kLittleMark, kBigMark}) {
    if (bytes.starts_with(mark)) {
      return DecodeMarked(bytes, name, charset);
    }
  }
  return charset.empty() ? Guess(std::move(bytes), name)
                         : FileText{FromTold(bytes, name, charset), charset};
}

}  // namespace

FileText DecodeFile(std::string bytes, const std::string& name, const std::string& charset) {
  FileText file = Decode(std::move(bytes), name, charset);
  ForEachLine(file.text, [&](std::string_view line, size_t number) {
    if (line.find('\0') != std::string_view::npos) {
      throw Misfit(
          name, number,
          "a zero byte: no text, but for UTF-16 without its mark (--file-charset utf-16le)");
    }
    return true;
  });
  return file;
}

}  // namespace kivadmin
