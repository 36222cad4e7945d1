#include "store/change/maintenance.h"

#include "foundation/files/file_finder.h"
#include "platform/text_numbers.h"
#include "store/place/cached_text.h"
#include "store/place/layout.h"

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
