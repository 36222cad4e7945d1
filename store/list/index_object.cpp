#include <new>

#include "platform/base/bytes.h"
#include "store/list/index_file.h"

namespace kivstore {
namespace {

SPtrArray* CopyOf(const SPtrArray* list) {
  SPtrArray* const copy = list != nullptr ? new (std::nothrow) SPtrArray : nullptr;
  if (copy != nullptr) {
    copy->Append(*list);
  }
  return copy;
}

// Empties the half, or makes it.
void Need(SPtrArray*& half, bool owns, void (*deleteEntries)(SPtrArray&)) {
  if (half == nullptr) {
    half = new (std::nothrow) SPtrArray;
  } else if (owns) {
    deleteEntries(*half);
  } else {
    half->RemoveAll();
  }
}

void MoveTo(const SPtrArray* half, SPtrArray* list, bool owns, void (*deleteEntries)(SPtrArray&)) {
  if (half == nullptr || list == nullptr) {
    return;
  }
  if (owns) {
    deleteEntries(*list);
  }
  list->RemoveAll();
  list->Append(*half);
}

void Drop(SPtrArray* half, bool owns, void (*deleteEntries)(SPtrArray&)) {
  if (half != nullptr && owns) {
    deleteEntries(*half);
  }
  delete half;
}

bool HasExtension(const SOurFileObj& file, const SString& extension) {
  return EqualBytesNoCase(file.extension.View(), extension.View());
}

// Deletes the entries that `isUnwanted` picks and closes up.
template <class Pick>
void DeleteFilesIf(SPtrArray& files, Pick isUnwanted) {
  int32_t kept = 0;
  for (int32_t i = 0; i < files.GetSize(); ++i) {
    SOurFileObj* const file = FileIn(files, i);
    if (isUnwanted(*file)) {
      delete file;
    } else {
      files[kept++] = file;
    }
  }
  files.SetSize(kept);
}

}  // namespace

SIndexObj::SIndexObj(const SPtrArray* loginList, const SPtrArray* fileList)
    : logins(CopyOf(loginList)), files(CopyOf(fileList)) {}

SIndexObj::~SIndexObj() {
  Drop(logins, ownsLogins, DeleteLogins);
  Drop(files, ownsFiles, DeleteFiles);
}

void SIndexObj::NeedLogins() {
  Need(logins, ownsLogins, DeleteLogins);
}

void SIndexObj::NeedFiles() {
  Need(files, ownsFiles, DeleteFiles);
}

void SIndexObj::MoveLoginsTo(SPtrArray* list) {
  MoveTo(logins, list, ownsLogins, DeleteLogins);
}

void SIndexObj::MoveFilesTo(SPtrArray* list) {
  MoveTo(files, list, ownsFiles, DeleteFiles);
}

int32_t SIndexObj::CountFilesOf(const SString& extension) const {
  int32_t count = 0;
  for (int32_t i = 0; files != nullptr && i < files->GetSize(); ++i) {
    count += HasExtension(*FileAt(i), extension) ? 1 : 0;
  }
  return count;
}

void SIndexObj::CopyFilesOf(SPtrArray* list, const SString& extension) const {
  if (files == nullptr || list == nullptr) {
    return;
  }
  for (int32_t i = 0; i < files->GetSize(); ++i) {
    if (extension.IsEmpty() || HasExtension(*FileAt(i), extension)) {
      list->Add(FileAt(i));
    }
  }
}

void SIndexObj::MoveFilesOf(SPtrArray* list, const SString& extension) {
  if (files == nullptr || list == nullptr) {
    return;
  }
  if (!extension.IsEmpty()) {
    DeleteFilesIf(*files, [&](const SOurFileObj& file) { return !HasExtension(file, extension); });
  }
  list->Append(*files);
}

void SIndexObj::RemoveFilesOf(const SString& extension) {
  if (files == nullptr || extension.IsEmpty()) {
    return;
  }
  DeleteFilesIf(*files, [&](const SOurFileObj& file) { return HasExtension(file, extension); });
}

}  // namespace kivstore
