#include "archive/pref_file.h"

#include <algorithm>
#include <new>

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
    : handle(handle), ownsHandle(owns) {
  if (size < 0 || !Load(size, size)) {
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
  if (OpenFile()) {
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
  fileLength = file->Size();
  if (fileLength < 0 || fileLength > kLongestText) {
    return false;
  }
  const int32_t room = writing ? kWritingRoom : fileLength == 0 ? kEmptyRoom : 0;
  handle = AllocateBlock(fileLength + room);
  ownsHandle = true;
  return Load(fileLength, fileLength + room);
}

bool SPrefFile::Load(int32_t length, int32_t capacity) {
  if (!text.Hold(handle, length, capacity) || (file != nullptr && !Fill())) {
    return false;
  }
  changed = false;
  isOpen = true;
  return true;
}

bool SPrefFile::Fill() {
  char* const bytes = text.Whole();
  const int32_t length = text.GetLength();
  int32_t filled = 0;
  while (filled < length) {
    const int32_t arrived = file->Read(length - filled, bytes + filled);
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
  text.LetGo();
  if (ownsHandle) {
    FreeBlock(handle);
  }
  handle = nullptr;
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

// The block never gets smaller, so it has room for what the file was.
void SPrefFile::Store() {
  char* const bytes = text.Whole();
  const int32_t length = text.GetLength();
  const int32_t padded = std::max(length, fileLength);
  std::fill(bytes + length, bytes + padded, '\n');
  if (file->Seek(0, 0) && file->Write(padded, bytes) == padded) {
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
  return isOpen && text.GetValue(section, key, value);
}

template <class Operation>
bool SPrefFile::Change(Operation operation) {
  const Opening opening(*this, kWrite);
  const bool done = IsWritable() && operation();
  changed = changed || done;
  return done;
}

bool SPrefFile::SetValue(const char* section, const char* key, const SString& value) {
  return SPrefText::CanHold(section, key, value.View()) &&
         Change([&] { return text.SetValue(section, key, value.View()); });
}

bool SPrefFile::DeleteSection(const char* section) {
  return Change([&] { return text.DeleteSection(section); });
}

bool SPrefFile::DeleteKey(const char* section, const char* key) {
  return Change([&] { return text.DeleteKey(section, key); });
}

}  // namespace kivstore
