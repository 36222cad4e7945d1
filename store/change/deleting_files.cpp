#include "store/change/deleting_files.h"

#include "foundation/files/file_finder.h"
#include "foundation/site_mode.h"
#include "platform/base/bytes.h"
#include "platform/text_numbers.h"
#include "store/change/transaction.h"
#include "store/place/failure_report.h"
#include "store/place/layout.h"

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

bool DeleteFiles(const SFileSpec& folder, const SStringArray& names) {
  for (int32_t i = 0; i < names.GetSize(); ++i) {
    SFileSpec file(folder);
    file.Down(names[i]);
    if (!file.Delete(false)) {
      SString message;
      message.Substitute(SString::FromResource(kTextFileNotDeleted), file.GetPath());
      DropMessage(message);
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
  for (int32_t i = 0; index.files != nullptr && i < index.files->GetSize(); ++i) {
    if (EqualBytesNoCase(index.FileAt(i)->fileName.View(), fileName.View())) {
      delete index.FileAt(i);
      index.files->RemoveAt(i);
      break;
    }
  }
  WriteIndex(folder, index);
}

bool FailToDelete() {
  ReportFileFailure(kFailDelete);
  return false;
}

}  // namespace

void DeleteFilesBySuffix(const SLoginNameObj* classEntry, const SLoginNameObj* student,
                         const SStringArray& suffixes, const SString& subfolder) {
  if (suffixes.GetSize() == 0) {
    return;
  }
  SFileSpec folder;
  EntryFolder(folder, classEntry, student, false, false);
  SLockFile lock;
  const LockKind kind = student != nullptr ? LockKind::kStudents : LockKind::kClasses;
  if (!IsFolderThere(folder) || !LockIndex(lock, folder, kind, false)) {
    return;
  }
  SFileSpec place(folder);
  if (!subfolder.IsEmpty()) {
    place.Down(subfolder);
  }
  SStringArray chosen;
  ChooseFiles(place, suffixes, chosen);
  if (DeleteFiles(place, chosen)) {
    ForgetFilesOf(folder, suffixes);
  }
}

bool DeleteUserFile(SFileSpec& spec, bool lockIt) {
  SFileSpec folder(spec);
  if (!folder.IsExistingFolder()) {
    folder.Up();
  }
  SLockFile lock;
  if (!folder.IsExistingFolder() || (lockIt && !LockIndex(lock, folder, LockKind::kFiles, false))) {
    return FailToDelete();
  }
  const SString name = spec.GetFileName();
  if (IsSharedSite()) {
    spec.Refresh();
  }
  if (spec.IsExistingFolder() || (spec.Exists() && !spec.Delete(false))) {
    lock.Unlock();
    return FailToDelete();
  }
  ForgetFile(folder, name);
  return true;
}

}  // namespace kivstore
