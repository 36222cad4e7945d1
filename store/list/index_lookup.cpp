#include "store/list/index_lookup.h"

#include <memory>
#include <optional>
#include <utility>

#include "foundation/files/file_finder.h"
#include "platform/base/bytes.h"
#include "platform/platform.h"
#include "store/list/long_name.h"
#include "store/place/display_name.h"
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

bool WriteIndexNoted(SSite& site, const SFileSpec& spec, SIndexObj& index, ListKind list) {
  const uint32_t before = LastFileFailure().number;
  const bool written = WriteIndex(spec, index);
  // An index that could not be read to its end is not written over.
  if (index.incomplete || LastFileFailure().number != before) {
    site.NoteShortfall(list);
  }
  return written;
}

bool EnsureEntry(SSite& site, const SFileSpec& spec, const SString& folderName,
                 const SString& first, const SString& last, int16_t limit, ListKind list) {
  SIndexObj index;
  ReadWholeIndex(spec, index);
  SLoginList& logins = *index.logins;
  if (limit >= 0 && logins.GetSize() >= limit) {
    return false;
  }
  std::unique_ptr<SLoginNameObj> entry(new (std::nothrow) SLoginNameObj(first, last, folderName));
  if (entry == nullptr) {
    return false;
  }
  const int32_t others = logins.RemoveIf([&](const SLoginNameObj& other) {
    return IsInFolder(other, folderName) && CompareDisplayNames(other, *entry) != 0;
  });
  const bool isThere = FindLogin(logins, *entry) >= 0;
  if (!isThere) {
    logins.Add(std::move(entry));
  }
  if (!isThere || others > 0) {
    WriteIndexNoted(site, spec, index, list);
  }
  return true;
}

void RemoveLine(SSite& site, const SFileSpec& spec, const SString& folderName, ListKind list) {
  SIndexObj index;
  ReadWholeIndex(spec, index);
  const int32_t removed = index.logins->RemoveIf(
      [&](const SLoginNameObj& other) { return IsInFolder(other, folderName); });
  if (removed > 0) {
    WriteIndexNoted(site, spec, index, list);
  }
}

bool IsSeenInList(const SFileSpec& list, const SString& folderName) {
  if (!Platform().files->IsShared()) {
    return true;
  }
  constexpr uint16_t kAnyFolder = SFileFinder::kVisibleFolders | SFileFinder::kHidden;
  SFileFinder finder(list, kAnyFolder);
  FolderEntry found;
  while (finder.NextEntry(found)) {
    const std::string_view name(found.name, static_cast<size_t>(found.nameLength));
    if (EqualBytesNoCase(name, folderName.View())) {
      return true;
    }
  }
  return false;
}

bool IsEntryOf(const SFileSpec& list, const SLoginNameObj& entry) {
  if (!IsSeenInList(list, entry.folderName)) {
    return false;
  }
  SIndexObj index;
  ReadWholeIndex(list, index);
  for (const SLoginNameObj& line : *index.logins) {
    if (!index.torn && IsInFolder(line, entry.folderName)) {
      return CompareDisplayNames(line, entry) == 0;
    }
  }
  SLoginNameObj owner;
  SFileSpec file = ListedFolder(list, entry.folderName);
  const bool isNamed = file.DownAssumed(CachedText<kTextLongNameFile>().GetText()) &&
                       ReadLongName(file, owner.firstName, owner.lastName) &&
                       !owner.firstName.IsEmpty();
  return !isNamed || CompareDisplayNames(owner, entry) == 0;
}

bool IsListedThere(const SFileSpec& list, SLoginNameObj& entry) {
  SIndexObj index;
  ReadWholeIndex(list, index);
  for (const SLoginNameObj& line : *index.logins) {
    SFileSpec folder(list);
    if (CompareDisplayNames(line, entry) == 0 && DownToEntry(folder, line) &&
        folder.IsExistingFolder()) {
      entry.folderName = line.folderName;
      return true;
    }
  }
  return false;
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
