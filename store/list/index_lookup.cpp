// What a folder's index says of one file, and new lines for it.
#include <new>

#include "platform/base/bytes.h"
#include "platform/text_numbers.h"
#include "store/list/index_file.h"
#include "store/place/cached_text.h"
#include "store/place/layout.h"

namespace kivstore {
namespace {

SFileSpec FolderOf(const SFileSpec& spec) {
  SFileSpec folder(spec);
  if (!folder.IsExistingFolder()) {
    folder.Up();
  }
  return folder;
}

// The halves that `index` has, of the folder's index.
void ReadIndexOf(const SFileSpec& folder, SIndexObj& index) {
  SFileSpec file(folder);
  if (file.DownAssumed(CachedText<kTextIndexFile>().GetText())) {
    ReadIndex(file, &index);
  }
}

void ReadWholeIndexOf(const SFileSpec& folder, SIndexObj& index) {
  index.NeedLogins();
  index.NeedFiles();
  ReadIndexOf(folder, index);
}

// The index of the spec's folder, searched for one file.
class FileSearch {
 public:
  FileSearch(const SFileSpec& spec, const SString& extension) : extension(extension) {
    index.NeedFiles();
    ReadIndexOf(FolderOf(spec), index);
  }

  // The first file of the extension whose `field` is `wanted`, byte for byte, or null.
  const SOurFileObj* Find(SString SOurFileObj::*field, const SString& wanted) const {
    for (int32_t i = 0; index.files != nullptr && i < index.files->GetSize(); ++i) {
      const SOurFileObj& file = *index.FileAt(i);
      if (HasWantedExtension(file) && file.*field == wanted) {
        return &file;
      }
    }
    return nullptr;
  }

 private:
  bool HasWantedExtension(const SOurFileObj& file) const {
    return extension.IsEmpty() || EqualBytesNoCase(file.extension.View(), extension.View());
  }

  SIndexObj index;
  const SString& extension;
};

}  // namespace

bool FindEntryByLongName(const SFileSpec& spec, const SString& longName, const SString& extension) {
  return FileSearch(spec, extension).Find(&SOurFileObj::longName, longName) != nullptr;
}

SString FindFileOfLongName(const SFileSpec& spec, const SString& longName,
                           const SString& extension) {
  const FileSearch search(spec, extension);
  const SOurFileObj* const file = search.Find(&SOurFileObj::longName, longName);
  return file != nullptr ? file->fileName : SString();
}

SString FindLongNameOfFile(const SFileSpec& spec, const SString& extension) {
  const FileSearch search(spec, extension);
  const SOurFileObj* const file = search.Find(&SOurFileObj::fileName, spec.GetFileName());
  return file != nullptr ? file->longName : SString();
}

bool EnsureEntry(const SFileSpec& spec, const SString& folderName, const SString& first,
                 const SString& last, int16_t limit) {
  SIndexObj index;
  ReadWholeIndexOf(spec, index);
  if (index.logins == nullptr || (limit >= 0 && index.logins->GetSize() >= limit)) {
    return false;
  }
  auto* const entry = new (std::nothrow) SLoginNameObj(first, last, folderName);
  if (entry == nullptr) {
    return false;
  }
  if (FindLogin(*index.logins, *entry) >= 0) {
    delete entry;
    return true;
  }
  index.logins->Add(entry);
  WriteIndex(spec, index);
  return true;
}

bool AddEntry(const SFileSpec& spec, const SString& longName, const SString& fileName,
              const SString& extension) {
  const SFileSpec folder = FolderOf(spec);
  SIndexObj index;
  ReadWholeIndexOf(folder, index);
  SOurFileObj* const entry = new (std::nothrow) SOurFileObj(fileName, longName, extension);
  if (index.files == nullptr || entry == nullptr) {
    delete entry;
    return false;
  }
  index.files->Add(entry);
  return WriteIndex(folder, index);
}

bool AddEntryFor(const SLoginNameObj* classEntry, const SLoginNameObj* student,
                 const SString& longName, const SString& fileName, const SString& extension,
                 bool removable) {
  SFileSpec spec;
  EntryFolder(spec, classEntry, student, removable, true);
  if (classEntry != nullptr && student == nullptr) {
    spec.Down(CachedText<kTextStudents>());
  }
  return AddEntry(spec, longName, fileName, extension);
}

}  // namespace kivstore
