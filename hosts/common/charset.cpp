#include "hosts/common/charset.h"

#include <algorithm>
#include <iostream>

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

std::string Charset::ToUtf8(std::string_view text) const {
  std::string utf8;
  if (!Convert(text, utf8)) {
    unshown.insert(utf8);
  }
  return utf8;
}

std::string Charset::FirstWithoutPlace(std::string_view utf8) const {
  const auto isInside = [&](size_t at) {
    return at < utf8.size() && (static_cast<unsigned char>(utf8[at]) & 0xC0) == 0x80;
  };
  for (size_t at = 0; at < utf8.size();) {
    const size_t from = at++;
    while (isInside(at)) {
      ++at;
    }
    if (!FromUtf8(utf8.substr(from, at - from))) {
      return std::string(utf8.substr(from, at - from));
    }
  }
  return {};
}

void TellUnshown(const char* program, const Charset& charset) {
  const auto& texts = charset.GetUnshown();
  if (texts.empty()) {
    return;
  }
  const size_t more = texts.size() - 1;
  std::cout << std::flush;
  std::cerr << program << ": \"" << *texts.begin() << '"'
            << (more > 1    ? " and " + std::to_string(more) + " more texts have"
                : more == 1 ? " and one more text have"
                            : " has")
            << " bytes that are no characters of the set, shown as \xEF\xBF\xBD: --charset names "
               "another\n";
}

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
