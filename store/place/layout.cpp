#include "store/place/layout.h"

#include <initializer_list>

#include "foundation/application.h"
#include "foundation/site_mode.h"
#include "platform/text_numbers.h"
#include "store/change/default_entries.h"
#include "store/list/entries.h"
#include "store/list/listing.h"
#include "store/place/cached_text.h"
#include "store/place/failure_report.h"

namespace kivstore {
namespace {

SString DataRoot() {
  return gApp != nullptr ? gApp->GetProperty("Data") : SString();
}

bool IsSeparator(char c) {
  return c == '\\' || c == '/';
}

// The names below a root that has not been looked at, with one look at the deepest. False, with the
// spec as it was, unless all but the last are there: then the steps have to be taken one by one.
bool PlaceBelow(SFileSpec& spec, const SString& root, std::initializer_list<const SString*> names) {
  const int length = root.GetLength();
  if (length == 0) {
    return false;
  }
  SString path = root;
  if (!IsSeparator(root.GetAt(length - 1))) {
    path += '\\';
  } else if (IsSeparator(root.GetAt(length - 2))) {
    return false;
  }
  const char* between = "";
  for (const SString* const name : names) {
    if (!IsSafeName(*name)) {
      return false;
    }
    path += between;
    path += *name;
    between = "\\";
  }
  const SFileSpec placed(path);
  if (!placed.IsValid()) {
    return false;
  }
  spec = placed;
  return true;
}

// DownThrough from a folder that is there; otherwise the spec stays as it was.
bool DownAtOnce(SFileSpec& spec, std::initializer_list<const SString*> names) {
  SFileSpec placed(spec);
  if (!placed.DownThrough(names)) {
    return false;
  }
  spec = placed;
  return true;
}

bool MakeIfMissing(SFileSpec& spec) {
  return !spec.IsValid() || spec.Exists() || spec.CreateFolder(0);
}

void TeacherFolderOf(SFileSpec& spec, const SLoginNameObj& teacher) {
  const SString teachers = ClassesName(kTextTeacherClasses);
  if (gTeacherTier == 0 || !PlaceBelow(spec, DataRoot(), {&teachers, &teacher.folderName})) {
    TeachersFolder(spec);
    DownToEntry(spec, teacher);
  }
  MakeIfMissing(spec);
}

// A count without a list (the folders have gone since, or the list is locked) leaves nowhere to go.
void FirstTeacherFolder(SFileSpec& spec) {
  TeachersFolder(spec);
  if (CountTeachers() < 1) {
    AddDefaultTeacher(spec);
    return;
  }
  SLoginList teachers;
  LoadTeacherList(teachers.Array());
  if (teachers.GetSize() == 0) {
    spec.Reset();
    return;
  }
  SelectTeacher(teachers.At(0));
  DownToEntry(spec, *teachers.At(0));
}

bool ReachClassesOfTeacher(SFileSpec& spec, SString& pathOut, const SString& classes) {
  const SString teachers = ClassesName(kTextTeacherClasses);
  if (gCurrentTeacher != nullptr &&
      PlaceBelow(spec, DataRoot(), {&teachers, &gCurrentTeacher->folderName, &classes})) {
    SFileSpec teacher(spec);
    teacher.Up();
    pathOut = teacher.GetPath();
    return true;
  }
  TeacherFolder(spec, gCurrentTeacher);
  pathOut = spec.GetPath();
  return spec.Down(classes);
}

bool ReachClassesFolder(SFileSpec& spec, SString& pathOut, bool removable) {
  const SString classes = ClassesName();
  if (gTeacherTier != 0) {
    return ReachClassesOfTeacher(spec, pathOut, classes);
  }
  pathOut = removable && !gDataPathOverride.IsEmpty() ? gDataPathOverride : DataRoot();
  if (PlaceBelow(spec, pathOut, {&classes})) {
    return true;
  }
  spec.Set(pathOut);
  return spec.Down(classes);
}

// From the classes folder to a folder inside a class's own.
bool ReachClassSubfolder(SFileSpec& spec, const SLoginNameObj& classEntry, const SString& name) {
  if (IsSafeName(classEntry.folderName) && DownAtOnce(spec, {&classEntry.folderName, &name})) {
    return MakeIfMissing(spec);
  }
  if (!DownToEntry(spec, classEntry)) {
    return false;
  }
  if (!spec.Exists()) {
    RestoreClassFolder(spec, classEntry);
  }
  return spec.IsExistingFolder() && spec.Down(name) && MakeIfMissing(spec);
}

// `spec` stands where ClassesFolder has left it, and `path` is what it has told.
void GoToClassSubfolder(SFileSpec& spec, SString& path, const SLoginNameObj& classEntry,
                        const SString& name, bool removable) {
  while (!removable || spec.IsExistingFolder()) {
    if (ReachClassSubfolder(spec, classEntry, name) || !ReportStoreFailure(path, removable)) {
      return;
    }
    ClassesFolder(spec, path, removable);
  }
}

// As GoToClassSubfolder; the way is only looked at in one piece if all of it is told by safe names.
void GoToEntry(SFileSpec& spec, SString& path, const SLoginNameObj& classEntry,
               const SLoginNameObj* student, bool removable) {
  if (student == nullptr) {
    DownToEntry(spec, classEntry);
    return;
  }
  const SString& students = CachedText<kTextStudents>();
  if (IsSafeName(classEntry.folderName) && IsSafeName(student->folderName) &&
      DownAtOnce(spec, {&classEntry.folderName, &students, &student->folderName})) {
    return;
  }
  GoToClassSubfolder(spec, path, classEntry, students, removable);
  DownToEntry(spec, *student);
}

bool ReachEntryFile(SFileSpec& spec, const SLoginNameObj& classEntry, const SLoginNameObj* student,
                    const SString& fileName) {
  if (!IsSafeName(classEntry.folderName) || !IsSafeName(fileName)) {
    return false;
  }
  if (student == nullptr) {
    return DownAtOnce(spec, {&classEntry.folderName, &fileName});
  }
  return IsSafeName(student->folderName) &&
         DownAtOnce(spec, {&classEntry.folderName, &CachedText<kTextStudents>(),
                           &student->folderName, &fileName});
}

SString DriveOf(const SString& path) {
  return path.GetAt(1) == ':' ? path.Left(2) : SString();
}

bool ReportDiskFailure(const SString& path) {
  SString message;
  message.Substitute(SString::FromResource(kTextCheckDrive), DriveOf(path));
  if (gApp != nullptr) {
    gApp->PrepareMessage();
  }
  DropMessage(message);
  DropMessage(SString::FromResource(kTextRetry));
  return false;
}

}  // namespace

// A game type that is registered later must show, so that what was formed holds for its extension.
SString ClassesName(int stem) {
  struct FormedName {
    SString extension;
    SString name;
  };
  static FormedName formedNames[2];
  const bool ofTeachers = stem == kTextTeacherClasses;
  FormedName& formed = formedNames[ofTeachers ? 1 : 0];
  const SString& extension = FindFileType(kFileTypeGame).GetExtension();
  if (formed.name.IsEmpty() || formed.extension != extension) {
    formed.extension = extension;
    formed.name = ofTeachers ? CachedText<kTextTeacherClasses>() : CachedText<kTextClasses>();
    if (!extension.IsEmpty()) {
      formed.name += '.';
      formed.name += extension;
    }
  }
  return formed.name;
}

bool IsSafeName(const SString& name) {
  const std::string_view view = name.View();
  bool speaks = false;  // something but dots and blanks
  for (const char c : view) {
    if (c == '\\' || c == '/') {
      return false;
    }
    speaks = speaks || (c != '.' && c != ' ');
  }
  return speaks;
}

bool DownToEntry(SFileSpec& spec, const SLoginNameObj& entry) {
  if (IsSafeName(entry.folderName)) {
    return spec.Down(entry.folderName);
  }
  spec.Reset();
  return false;
}

void TeachersFolder(SFileSpec& spec) {
  SString root;
  if (gTeacherTier == 0) {
    ClassesFolder(spec, root, false);
    return;
  }
  const SString teachers = ClassesName(kTextTeacherClasses);
  do {
    root = DataRoot();
    if (!PlaceBelow(spec, root, {&teachers})) {
      spec.Set(root);
      if (!spec.Down(teachers)) {
        return;
      }
    }
  } while (!MakeIfMissing(spec) && ReportStoreFailure(root, false));
}

void TeacherFolder(SFileSpec& spec, const SLoginNameObj* teacher) {
  if (teacher != nullptr) {
    TeacherFolderOf(spec, *teacher);
  } else {
    FirstTeacherFolder(spec);
  }
}

void ClassesFolder(SFileSpec& spec, SString& pathOut, bool removable) {
  bool reached;
  do {
    reached = ReachClassesFolder(spec, pathOut, removable) && MakeIfMissing(spec) &&
              FillEmptyClassList(spec);
  } while (!reached && ReportStoreFailure(pathOut, removable));
}

void StudentsFolder(SFileSpec& spec, const SLoginNameObj& classEntry, bool removable) {
  SString path;
  ClassesFolder(spec, path, removable);
  GoToClassSubfolder(spec, path, classEntry, CachedText<kTextStudents>(), removable);
}

void SharedFolder(SFileSpec& spec, const SLoginNameObj& classEntry) {
  SString path;
  ClassesFolder(spec, path, false);
  GoToClassSubfolder(spec, path, classEntry, CachedText<kTextShared>(), false);
}

void EntryFolder(SFileSpec& spec, const SLoginNameObj* classEntry, const SLoginNameObj* student,
                 bool removable, bool mustExist) {
  SString path;
  ClassesFolder(spec, path, removable);
  if (classEntry == nullptr) {
    return;
  }
  GoToEntry(spec, path, *classEntry, student, removable);
  if (mustExist) {
    MakeIfMissing(spec);
  }
}

void EntryFile(SFileSpec& spec, const SLoginNameObj* classEntry, const SLoginNameObj* student,
               const SString& fileName) {
  SString path;
  ClassesFolder(spec, path, false);
  if (classEntry != nullptr) {
    if (ReachEntryFile(spec, *classEntry, student, fileName)) {
      return;
    }
    GoToEntry(spec, path, *classEntry, student, false);
    MakeIfMissing(spec);
  }
  spec.Down(fileName);
}

void OptionsFile(SFileSpec& spec, const SLoginNameObj* classEntry, const SLoginNameObj* student) {
  EntryFile(spec, classEntry, student, CachedText<kTextOptionsFile>());
}

void TopScoreFile(SFileSpec& spec, const SLoginNameObj* classEntry, const SLoginNameObj* student) {
  EntryFile(spec, classEntry, student, CachedText<kTextTopScoreFile>());
  if (spec.IsValid() && !spec.Exists()) {
    spec.CreateFile(FindFileType(kFileTypeStore), 0, 0, 0);
  }
}

bool ReportStoreFailure(const SString& path, bool removable) {
  if (removable) {
    return ReportDiskFailure(path);
  }
  if (gStoreFailed) {
    return false;
  }
  gStoreFailed = true;
  SString message;
  message.FormatResource(kTextNoDataFiles, DataRoot().GetText());
  DropMessage(message);
  DropMessage(SString::FromResource(kTextQuit));
  DropMessage(SString::FromResource(kTextRetry));
  return false;
}

}  // namespace kivstore
