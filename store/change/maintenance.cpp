#include "store/change/maintenance.h"

#include "foundation/files/file_finder.h"
#include "store/change/default_entries.h"
#include "store/place/placing.h"
#include "store/place/store_names.h"

namespace kivstore {
namespace {

void DeleteOptionsIn(const SFileSpec& folder) {
  SFileSpec spec(folder);
  if (spec.Down(CachedText<kTextOptionsFile>()) && spec.IsExistingFile()) {
    spec.Delete(false);
  }
}

void DeleteOptionsOfStudents(SFileSpec folder) {
  folder.Down(CachedText<kTextStudents>());
  SFileFinder finder(folder, SFileFinder::kVisibleFolders);
  SFileSpec student;
  while (finder.Next(student)) {
    DeleteOptionsIn(student);
  }
}

}  // namespace

void MakeTopScoreFile(SSite& site, SFileSpec& spec, const SLoginNameObj* classEntry,
                      const SLoginNameObj* student) {
  PrepareClassList(site);
  TopScoreFile(site, spec, classEntry, student);
  if (spec.IsValid() && !spec.Exists()) {
    spec.CreateFile(FindFileType(kFileTypeStore), 0, 0, 0);
  }
}

void DeleteStoreFiles(SSite& site) {
  PrepareClassList(site);
  SFileSpec spec;
  ClassesFolder(site, spec);
  if (!spec.IsExistingFolder()) {
    return;
  }
  DeleteOptionsIn(spec);
  SFileFinder finder(spec, SFileFinder::kVisibleFolders);
  SFileSpec classFolder;
  while (finder.Next(classFolder)) {
    DeleteOptionsIn(classFolder);
    DeleteOptionsOfStudents(classFolder);
  }
}

}  // namespace kivstore
