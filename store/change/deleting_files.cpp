#include "store/change/deleting_files.h"

#include "foundation/files/file_finder.h"
#include "platform/base/bytes.h"
#include "store/change/default_entries.h"
#include "store/change/transaction.h"
#include "store/place/failure_report.h"
#include "store/place/placing.h"
#include "store/place/store_names.h"

namespace kivstore {
namespace {

bool EndsInOneOf(std::string_view name, const SStringArray& suffixes) {
  for (int32_t i = 0; i < suffixes.GetSize(); ++i) {
    const std::string_view suffix = suffixes[i].View();
    if (name.size() > suffix.size() &&
        EqualBytesNoCase(name.substr(name.size() - suffix.size()), suffix)) {
      return true;
    }
  }
  return false;
}

// Chosen first and deleted then: a walk does not bear changes of its folder.
void ChooseFiles(const SFileSpec& folder, const SStringArray& suffixes, SStringArray& chosen) {
  SFileFinder finder(folder, SFileFinder::kVisibleFiles);
  FolderEntry entry;
  while (finder.NextEntry(entry)) {
    const std::string_view name(entry.name, static_cast<size_t>(entry.nameLength));
    if (EndsInOneOf(name, suffixes)) {
      chosen.Add(SString(name));
    }
  }
}

bool DeleteFiles(SSite& site, const SFileSpec& folder, const SStringArray& names) {
  for (int32_t i = 0; i < names.GetSize(); ++i) {
    SFileSpec file(folder);
    file.Down(names[i]);
    if (!file.Delete(false)) {
      site.NoteFileFailure(ListKind::kFiles);
      SString text;
      text.Substitute(SString::FromResource(kTextFileNotDeleted), file.GetPath());
      site.TellFailure(text);
      return false;
    }
  }
  return true;
}

void ForgetFilesOf(const SFileSpec& folder, const SStringArray& extensions) {
  SIndexObj index;
  ReadWholeIndex(folder, index);
  for (int32_t i = 0; i < extensions.GetSize(); ++i) {
    index.RemoveFilesOf(extensions[i]);
  }
  WriteIndex(folder, index);
}

void ForgetFile(const SFileSpec& folder, const SString& fileName) {
  SIndexObj index;
  ReadWholeIndex(folder, index);
  bool isFirst = true;
  index.files->RemoveIf([&](const SOurFileObj& file) {
    const bool goes = isFirst && EqualBytesNoCase(file.fileName.View(), fileName.View());
    isFirst = isFirst && !goes;
    return goes;
  });
  WriteIndex(folder, index);
}

// Whether nothing is there any more.
bool RemoveFile(SSite& site, SFileSpec& spec) {
  if (spec.IsExistingFolder()) {
    site.NoteFailure(FailureKind::kOther, spec.GetPath(), ListKind::kFiles);
    return false;
  }
  if (spec.Exists() && !spec.Delete(false)) {
    site.NoteFileFailure(ListKind::kFiles);
    return false;
  }
  return true;
}

bool FailToDelete(SSite& site) {
  ReportFileFailure(site, kFailDelete);
  return false;
}

}  // namespace

void DeleteFilesBySuffix(SSite& site, const SLoginNameObj* classEntry, const SLoginNameObj* student,
                         const SStringArray& suffixes, const SString& subfolder) {
  if (suffixes.GetSize() == 0) {
    return;
  }
  PrepareClassList(site);
  SFileSpec folder;
  EntryFolder(site, folder, classEntry, student);
  SLockFile lock(site);
  const ListKind kind = student != nullptr ? ListKind::kStudents : ListKind::kClasses;
  if (!IsFolderThere(site, folder) || !LockIndex(lock, folder, kind, false)) {
    return;
  }
  SFileSpec place(folder);
  if (!subfolder.IsEmpty()) {
    place.Down(subfolder);
  }
  SStringArray chosen;
  ChooseFiles(place, suffixes, chosen);
  if (DeleteFiles(site, place, chosen)) {
    ForgetFilesOf(folder, suffixes);
  }
}

bool DeleteUserFile(SSite& site, SFileSpec& spec, bool lockIt) {
  SFileSpec folder(spec);
  if (!folder.IsExistingFolder()) {
    folder.Up();
  }
  SLockFile lock(site);
  if (!folder.IsExistingFolder() || (lockIt && !LockIndex(lock, folder, ListKind::kFiles, false))) {
    site.NoteFailure(FailureKind::kMissing, folder.GetPath(), ListKind::kFiles);
    return FailToDelete(site);
  }
  const SString name = spec.GetFileName();
  if (site.IsShared()) {
    spec.Refresh();
  }
  if (!RemoveFile(site, spec)) {
    lock.Unlock();
    return FailToDelete(site);
  }
  ForgetFile(folder, name);
  return true;
}

}  // namespace kivstore
