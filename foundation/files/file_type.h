// File types: what a kind of file is called, its extension and its four-character code.
//
// A type is described by one text of five fields: "name|plural|extension|code|flag". All strings
// must be there and all four separators present, otherwise the type is invalid. The code is the
// four characters read as a big-endian number; the flag is true only for the single character 1.
#pragma once

#include <cstdint>

#include "foundation/text/string.h"

namespace kivstore {

// Four characters as a big-endian number.
constexpr uint32_t FourCharCode(const char (&text)[5]) {
  return static_cast<uint32_t>(static_cast<unsigned char>(text[0])) << 24 |
         static_cast<uint32_t>(static_cast<unsigned char>(text[1])) << 16 |
         static_cast<uint32_t>(static_cast<unsigned char>(text[2])) << 8 |
         static_cast<uint32_t>(static_cast<unsigned char>(text[3]));
}

// Keys of the registry. A key need not equal the code in the type's text.
inline constexpr uint32_t kFileTypeStore = FourCharCode("KIVA");
inline constexpr uint32_t kFileTypeLock = FourCharCode("LOCK");
inline constexpr uint32_t kFileTypePref = FourCharCode("PREF");
inline constexpr uint32_t kFileTypeGame = FourCharCode("game");

class SFileType {
 public:
  SFileType() = default;
  explicit SFileType(const SString& description);

  const SString& GetName() const { return name; }
  const SString& GetPlural() const { return plural; }
  const SString& GetExtension() const { return extension; }
  uint32_t GetCode() const { return code; }
  bool IsValid() const { return valid; }
  bool operator==(const SFileType& other) const;

 private:
  SString name, plural, extension;
  uint32_t code = 0;
  bool flag = false;
  bool valid = false;
};

// Adds a row if the key is new; a key that is there keeps its row. Rows last as long as the
// process.
void RegisterFileType(uint32_t key, const char* description);
void RegisterFileType(uint32_t key, int resourceId);

// An invalid type for an unknown key; never null. The standard types are registered at first use.
const SFileType& FindFileType(uint32_t key);

}  // namespace kivstore
