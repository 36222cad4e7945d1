// Texts of a store are bytes of an 8-bit character set; a host shows and takes UTF-8.
#pragma once

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace kivhost {

class Charset {
 public:
  // Null if the system does not know the name.
  static std::unique_ptr<Charset> Open(const std::string& name);
  virtual ~Charset() = default;

  // What is no character of the set becomes U+FFFD, and the text is one of GetUnshown.
  std::string ToUtf8(std::string_view text) const;
  // Nothing if a character has no place in the set, or the text is no UTF-8.
  virtual std::optional<std::string> FromUtf8(std::string_view text) const = 0;
  // The first of those characters.
  std::string FirstWithoutPlace(std::string_view utf8) const;

  // The texts that had bytes without a place in the set, as they were shown; each once.
  const std::set<std::string>& GetUnshown() const { return unshown; }

 protected:
  // What is no character becomes U+FFFD; false if anything was none.
  virtual bool Convert(std::string_view text, std::string& utf8) const = 0;

 private:
  mutable std::set<std::string> unshown;
};

// The program's line on standard error about GetUnshown; nothing if all was shown.
void TellUnshown(const char* program, const Charset& charset);

// Throws HostError if the system does not know the name, which came by --charset, or if the set
// does not have ASCII in its place.
std::unique_ptr<Charset> NeedCharset(const std::string& name);

// Characters of a UTF-8 text, for lining up columns.
size_t CountCharacters(std::string_view utf8);

// Letter case ignored for A to Z, as the store does it.
bool EqualNoCase(std::string_view a, std::string_view b);

}  // namespace kivhost
