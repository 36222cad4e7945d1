#include "hosts/common/charset.h"

#include <algorithm>

#include "hosts/common/host_error.h"

namespace kivhost {

namespace {

// Separators, digits and what ends a text are ASCII in every file of a store.
bool HasAscii(const Charset& charset) {
  for (char c = ' '; c < 0x7F; ++c) {
    const std::string text(1, c);
    if (charset.ToUtf8(text) != text || charset.FromUtf8(text) != text) {
      return false;
    }
  }
  return true;
}

}  // namespace

std::unique_ptr<Charset> NeedCharset(const std::string& name) {
  auto charset = Charset::Open(name);
  if (charset == nullptr) {
    throw HostError(kWrongUsage, "--charset " + name + ": no such character set");
  }
  if (!HasAscii(*charset)) {
    throw HostError(kWrongUsage, "--charset " + name + ": a store needs one that has ASCII in it");
  }
  return charset;
}

size_t CountCharacters(std::string_view utf8) {
  return static_cast<size_t>(std::count_if(utf8.begin(), utf8.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  }));
}

bool EqualNoCase(std::string_view a, std::string_view b) {
  const auto fold = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [&](char x, char y) { return fold(x) == fold(y); });
}

}  // namespace kivhost
