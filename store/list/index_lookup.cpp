#include "store/list/index_lookup.h"

#include <memory>
#include <optional>
#include <utility>

#include "store/place/placing.h"
#include "store/place/store_names.h"

namespace kivstore {
namespace {

SFileSpec FolderOf(const SFileSpec& spec) {
  SFileSpec folder(spec);
  if (!folder.IsExistingFolder()) {
    folder.Up();
  }
  return folder;
}

// Of the first file of the extension in the index of the spec's folder whose `field` is `wanted`,
// byte for byte, what stands in `answer`.
std::optional<SString> SearchFile(const SFileSpec& spec, const SString& extension,
                                  SString SOurFileObj::*field, const SString& wanted,
                                  SString SOurFileObj::*answer) {
  SFileSpec file = FolderOf(spec);
  SIndexObj index;
  index.NeedFiles();
  if (file.DownAssumed(CachedText<kTextIndexFile>().GetText())) {
    ReadIndex(file, index);
  }
  for (const SOurFileObj& entry : *index.files) {
    if ((extension.IsEmpty() || HasExtension(entry, extension)) && entry.*field == wanted) {
      return entry.*answer;
    }
  }
  return std::nullopt;
}

}  // namespace

bool FindEntryByLongName(const SFileSpec& spec, const SString& longName, const SString& extension) {
  return SearchFile(spec, extension, &SOurFileObj::longName, longName, &SOurFileObj::fileName)
      .has_value();
}

SString FindFileOfLongName(const SFileSpec& spec, const SString& longName,
                           const SString& extension) {
  return SearchFile(spec, extension, &SOurFileObj::longName, longName, &SOurFileObj::fileName)
      .value_or(SString());
}

SString FindLongNameOfFile(const SFileSpec& spec, const SString& extension) {
  return SearchFile(spec, extension, &SOurFileObj::fileName, spec.GetFileName(),
                    &SOurFileObj::longName)
      .value_or(SString());
}

bool EnsureEntry(const SFileSpec& spec, const SString& folderName, const SString& first,
                 const SString& last, int16_t limit) {
  SIndexObj index;
  ReadWholeIndex(spec, index);
  if (limit >= 0 && index.logins->GetSize() >= limit) {
    return false;
  }
  std::unique_ptr<SLoginNameObj> entry(new (std::nothrow) SLoginNameObj(first, last, folderName));
  if (entry == nullptr) {
    return false;
  }
  if (FindLogin(*index.logins, *entry) < 0) {
    index.logins->Add(std::move(entry));
    WriteIndex(spec, index);
  }
  return true;
}

bool AddEntry(const SFileSpec& spec, const SString& longName, const SString& fileName,
              const SString& extension) {
  const SFileSpec folder = FolderOf(spec);
  SIndexObj index;
  ReadWholeIndex(folder, index);
  std::unique_ptr<SOurFileObj> entry(new (std::nothrow) SOurFileObj(fileName, longName, extension));
  return index.files->Add(std::move(entry)) && WriteIndex(folder, index);
}

bool AddEntryFor(const SSite& site, const SLoginNameObj* classEntry, const SLoginNameObj* student,
                 const SString& longName, const SString& fileName, const SString& extension) {
  SFileSpec spec;
  EntryFolder(site, spec, classEntry, student);
  if (classEntry != nullptr && student == nullptr) {
    spec.Down(CachedText<kTextStudents>());
  }
  return AddEntry(spec, longName, fileName, extension);
}

}  // namespace kivstore
