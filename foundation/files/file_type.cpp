#include "foundation/files/file_type.h"

#include <memory>
#include <new>
#include <string_view>

#include "foundation/containers/map.h"

namespace kivstore {
namespace {

constexpr int kFields = 5;

// False unless the text has as many fields as a type needs.
bool SplitFields(std::string_view text, std::string_view (&fields)[kFields]) {
  for (int i = 0; i < kFields - 1; ++i) {
    const size_t separator = text.find('|');
    if (separator == std::string_view::npos) {
      return false;
    }
    fields[i] = text.substr(0, separator);
    text.remove_prefix(separator + 1);
  }
  fields[kFields - 1] = text;
  return true;
}

uint32_t ReadCode(std::string_view text) {
  char code[5] = "";
  text.copy(code, 4);
  return FourCharCode(code);
}

struct NumberedType {
  uint32_t key;
  int resourceId;
};

struct WordedType {
  uint32_t key;
  const char* description;
};

constexpr NumberedType kNumberedTypes[] = {
    {FourCharCode("TEXT"), 4000}, {kFileTypePref, 4001},        {FourCharCode("QQBS"), 4002},
    {FourCharCode("PICT"), 4003}, {FourCharCode("BMP "), 4004}, {FourCharCode("EXEC"), 4005},
};

constexpr WordedType kWordedTypes[] = {
    {FourCharCode("QQBC"), "QBun Script File|QBun Script Files|qbc|Qqbc|1"},
    {FourCharCode("QQBM"), "QBun Make File|QBun Make Files|qbm|Qqbm|1"},
    {kFileTypeStore, "Kiv File|Kiv Files|kiv|KivF|1"},
    {FourCharCode("DAT "), "DAT File|DAT Files|dat|TEXT|1"},
    {FourCharCode("JRNL"), "Journal File|Journal Files|jnl|JDOC|0"},
    {kFileTypeLock, "Lock File|Lock Files|lok|Lock|1"},
};

class FileTypeRegistry {
 public:
  FileTypeRegistry();
  ~FileTypeRegistry();
  FileTypeRegistry(const FileTypeRegistry&) = delete;
  FileTypeRegistry& operator=(const FileTypeRegistry&) = delete;

  void Add(uint32_t key, const char* description);
  const SFileType* Find(uint32_t key);

 private:
  SMapUInt32ToPtr rows{10};  // owned SFileType objects
};

FileTypeRegistry::FileTypeRegistry() {
  for (const NumberedType& type : kNumberedTypes) {
    Add(type.key, SString::FromResource(type.resourceId).GetText());
  }
  for (const WordedType& type : kWordedTypes) {
    Add(type.key, type.description);
  }
}

FileTypeRegistry::~FileTypeRegistry() {
  SMapPosition position = rows.GetStartPosition();
  while (position != 0) {
    uint32_t key = 0;
    void* row = nullptr;
    rows.GetNextAssoc(position, key, row);
    delete static_cast<SFileType*>(row);
  }
}

void FileTypeRegistry::Add(uint32_t key, const char* description) {
  if (Find(key) != nullptr) {
    return;
  }
  std::unique_ptr<SFileType> row(new (std::nothrow) SFileType(description));
  if (row != nullptr) {
    rows.SetAt(key, row.get());
    if (Find(key) == row.get()) {
      row.release();
    }
  }
}

const SFileType* FileTypeRegistry::Find(uint32_t key) {
  void* row = nullptr;
  return rows.Lookup(key, row) ? static_cast<const SFileType*>(row) : nullptr;
}

FileTypeRegistry& Registry() {
  static FileTypeRegistry registry;
  return registry;
}

}  // namespace

SFileType::SFileType(const SString& description) {
  std::string_view fields[kFields];
  if (!SplitFields(description.View(), fields) || fields[0].empty() || fields[1].empty() ||
      fields[2].empty()) {
    return;
  }
  name = SString(fields[0]);
  plural = SString(fields[1]);
  extension = SString(fields[2]);
  code = ReadCode(fields[3]);
  flag = fields[4] == "1";
  valid = true;
}

bool SFileType::operator==(const SFileType& other) const {
  return valid == other.valid && code == other.code && flag == other.flag && name == other.name &&
         plural == other.plural && extension == other.extension;
}

void RegisterFileType(uint32_t key, const char* description) {
  Registry().Add(key, description);
}

void RegisterFileType(uint32_t key, int resourceId) {
  Registry().Add(key, SString::FromResource(resourceId).GetText());
}

const SFileType& FindFileType(uint32_t key) {
  static const SFileType kUnknown;
  const SFileType* const row = Registry().Find(key);
  return row != nullptr ? *row : kUnknown;
}

}  // namespace kivstore
