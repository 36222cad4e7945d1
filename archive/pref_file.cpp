// Opening, closing and the operations; pref_file_edit.cpp moves the bytes.
#include "archive/pref_file.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "archive/pref_scanner.h"
#include "foundation/files/file_type.h"

namespace kivstore {
namespace {

constexpr int32_t kWritingRoom = 0x1000;
constexpr int32_t kEmptyRoom = 16;

}  // namespace

// A chain's own file opens here without its links: hence the qualified calls.
class SPrefFile::Opening {
 public:
  Opening(SPrefFile& file, int32_t mode)
      : file(file), opened(!file.isOpen && file.SPrefFile::Open(mode)) {}
  ~Opening() {
    if (opened) {
      file.SPrefFile::Close();
    }
  }
  Opening(const Opening&) = delete;
  Opening& operator=(const Opening&) = delete;

 private:
  SPrefFile& file;
  bool opened;
};

SPrefFile::SPrefFile(MemoryHandle handle, int32_t size, bool owns)
    : handle(handle), length(size), capacity(size), ownsHandle(owns) {
  if (size < 0 || !Load()) {
    Abandon();
  }
}

void SPrefFile::SetFile(const SFileSpec& newSpec) {
  if (!isOpen) {
    spec = newSpec;
  }
}

bool SPrefFile::Open(int32_t newAccessMode) {
  if (isOpen || !spec.IsValid()) {
    return false;
  }
  accessMode = newAccessMode;
  changedMark = false;
  if (OpenFile() && Load()) {
    return true;
  }
  Abandon();
  return false;
}

bool SPrefFile::OpenFile() {
  const bool writing = accessMode == kWrite;
  if (writing && !spec.Exists() && !spec.CreateFile(FindFileType(kFileTypePref), 0, 0, 0)) {
    return false;
  }
  file = new (std::nothrow) SFile;
  if (file == nullptr || !file->Open(writing ? SFile::kWrite : SFile::kRead, spec)) {
    return false;
  }
  length = file->Size();
  if (length < 0 || length > kLongestText) {
    return false;
  }
  capacity = writing ? length + kWritingRoom : length == 0 ? kEmptyRoom : length;
  handle = AllocateBlock(capacity);
  ownsHandle = true;
  return true;
}

bool SPrefFile::Load() {
  text = static_cast<char*>(LockBlock(handle));
  if (text == nullptr || (file != nullptr && !Fill())) {
    return false;
  }
  cursor = text;
  end = text + length;
  changed = false;
  isOpen = true;
  return true;
}

bool SPrefFile::Fill() {
  int32_t filled = 0;
  while (filled < length) {
    const int32_t arrived = file->Read(length - filled, text + filled);
    if (arrived <= 0) {
      return false;
    }
    filled += arrived;
  }
  return true;
}

void SPrefFile::Abandon() {
  delete file;
  file = nullptr;
  ReleaseBlock();
}

void SPrefFile::ReleaseBlock() {
  UnlockBlock(handle);
  if (ownsHandle) {
    FreeBlock(handle);
  }
  handle = nullptr;
  text = cursor = end = nullptr;
  length = capacity = 0;
}

void SPrefFile::Close() {
  if (!isOpen) {
    return;
  }
  isOpen = false;
  if (file != nullptr && accessMode == kWrite && changed) {
    Store();
  }
  Abandon();
}

void SPrefFile::Store() {
  if (file->Seek(0, 0) && file->Write(length, text) == length) {
    file->SetSize(length);
  }
  file->Flush();
}

void SPrefFile::SetChanged(bool value) {
  if (IsWritable() && value != changedMark) {
    changedMark = value;
    changed = true;
  }
}

bool SPrefFile::GetValue(const char* section, const char* key, SString& value) {
  const Opening opening(*this, kRead);
  if (!isOpen || !FindKey(section, key)) {
    return false;
  }
  ReadValue(value);
  return true;
}

bool SPrefFile::SetValue(const char* section, const char* key, const SString& value) {
  const Opening opening(*this, kWrite);
  const int32_t before = length;
  if (!IsWritable() || !IsKeyName(key) || !NeedSection(section)) {
    return false;
  }
  const bool sectionIsNew = length > before;
  if (!NeedKey(key) || !WriteValue(value)) {
    TakeBack(sectionIsNew ? text + before : cursor - (length - before), length - before);
    return false;
  }
  changed = true;
  return true;
}

bool SPrefFile::DeleteSection(const char* section) {
  const Opening opening(*this, kWrite);
  if (!IsWritable()) {
    return false;
  }
  SPrefScanner scanner = ScannerAt(text);
  char* const header = scanner.FindSection(section);
  if (header == nullptr) {
    return false;
  }
  cursor = header;
  CutTo(std::find(scanner.cursor, end, '['));
  changed = true;
  return true;
}

bool SPrefFile::DeleteKey(const char* section, const char* key) {
  const Opening opening(*this, kWrite);
  if (!IsWritable() || !FindKey(section, key)) {
    return false;
  }
  const char* behind = ScannerAt(cursor).LineEnd();
  if (end - behind >= 2 && behind[0] == '\r' && behind[1] == '\n') {
    behind += 2;
  } else if (behind < end) {
    ++behind;
  }
  cursor -= std::strlen(key) + 1;
  CutTo(behind);
  changed = true;
  return true;
}

}  // namespace kivstore
