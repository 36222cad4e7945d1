#include "store/maintenance.h"

#include "foundation/file_finder.h"
#include "store/cached_text.h"
#include "store/layout.h"

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

void DeleteStoreFiles() {
  SFileSpec spec;
  SString path;
  ClassesFolder(spec, path, false);
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
