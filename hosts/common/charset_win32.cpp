#include <algorithm>
#include <array>
#include <charconv>
#include <map>

#include "hosts/common/charset.h"
#include "hosts/common/wide_text.h"

namespace kivhost {
namespace {

constexpr const char* kReplacement = "\xEF\xBF\xBD";

// The number behind a prefix; 0 if the name is none of these.
UINT NumberAfter(const std::string& name, const char* prefix) {
  const std::string_view start(prefix);
  UINT number = 0;
  if (name.size() <= start.size() ||
      !EqualNoCase(std::string_view(name).substr(0, start.size()), start)) {
    return 0;
  }
  const char* const end = name.data() + name.size();
  const auto [stop, error] = std::from_chars(name.data() + start.size(), end, number);
  return error == std::errc() && stop == end ? number : 0;
}

// The code page that a character set's usual names mean; 0 for an unknown one.
UINT CodePageOf(const std::string& name) {
  constexpr UINT kBeforeIso8859 = 28590;
  static const std::map<std::string, UINT> kOthers = {
      {"utf-8", CP_UTF8}, {"utf8", CP_UTF8}, {"us-ascii", 20127}, {"ascii", 20127},
      {"latin1", 28591},  {"koi8-r", 20866}, {"koi8-u", 21866},   {"macintosh", 10000}};
  for (const auto& [other, page] : kOthers) {
    if (EqualNoCase(name, other)) {
      return page;
    }
  }
  for (const char* prefix : {"windows-", "cp", "ibm"}) {
    if (const UINT page = NumberAfter(name, prefix)) {
      return page;
    }
  }
  const UINT part = NumberAfter(name, "iso-8859-");
  return part >= 1 && part <= 16 ? kBeforeIso8859 + part : 0;
}

// The page's own control characters stand for bytes that it does not define.
bool IsUndefined(UINT page, int byte, wchar_t character) {
  return page >= 1250 && page <= 1258 && byte >= 0x80 && character == byte;
}

class CodePage final : public Charset {
 public:
  explicit CodePage(UINT page) {
    for (int byte = 0; byte < 256; ++byte) {
      const char text = static_cast<char>(byte);
      wchar_t character = 0;
      const bool known = MultiByteToWideChar(page, MB_ERR_INVALID_CHARS, &text, 1, &character, 1);
      const bool defined = known && !(byte < 0xA0 && IsUndefined(page, byte, character));
      characters[static_cast<size_t>(byte)] =
          defined ? FromWide(CP_UTF8, std::wstring_view(&character, 1)) : kReplacement;
      if (defined) {
        bytes.emplace(character, text);
      }
    }
  }

  std::optional<std::string> FromUtf8(std::string_view text) const override {
    const std::wstring wide = ToWide(CP_UTF8, text);
    std::string out;
    for (const wchar_t character : wide) {
      const auto found = bytes.find(character);
      if (found == bytes.end()) {
        return std::nullopt;
      }
      out += found->second;
    }
    return out;
  }

 protected:
  bool Convert(std::string_view text, std::string& utf8) const override {
    bool isWhole = true;
    for (const char c : text) {
      const std::string& character = characters[static_cast<unsigned char>(c)];
      isWhole = isWhole && character != kReplacement;
      utf8 += character;
    }
    return isWhole;
  }

 private:
  std::array<std::string, 256> characters;  // by byte
  std::map<wchar_t, char> bytes;
};

// A store whose texts are UTF-8 already.
class Utf8 final : public Charset {
 public:
  std::optional<std::string> FromUtf8(std::string_view text) const override {
    return IsUtf8(text) ? std::optional<std::string>(text) : std::nullopt;
  }

 protected:
  bool Convert(std::string_view text, std::string& utf8) const override {
    utf8 = FromWide(CP_UTF8, ToWide(CP_UTF8, text));
    return IsUtf8(text);
  }

 private:
  static bool IsUtf8(std::string_view text) {
    const int size = static_cast<int>(text.size());
    return text.empty() ||
           MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), size, nullptr, 0) > 0;
  }
};

}  // namespace

std::unique_ptr<Charset> Charset::Open(const std::string& name) {
  const UINT page = CodePageOf(name);
  CPINFO info;
  if (page == CP_UTF8) {
    return std::make_unique<Utf8>();
  }
  // The sets of the store have one byte a character.
  if (page == 0 || !GetCPInfo(page, &info) || info.MaxCharSize != 1) {
    return nullptr;
  }
  return std::make_unique<CodePage>(page);
}

}  // namespace kivhost
