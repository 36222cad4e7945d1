#include "hosts/kivadmin/rosters/layout_maker.h"

#include "foundation/files/file_type.h"
#include "foundation/site_mode.h"
#include "records/tutor_options_dob.h"
#include "store/list/index_file.h"
#include "store/list/listing.h"
#include "store/place/layout.h"

namespace kivadmin {
namespace {

using namespace kivstore;

constexpr const char* kIndexLock = "index.lok";
constexpr const char* kOptionsLock = "options.lok";

// A folder that is there afterwards, or an error.
SFileSpec NeedFolder(const Session& session, SFileSpec spec) {
  if (!spec.IsValid() || (!spec.Exists() && !spec.CreateFolder(0)) || !spec.IsExistingFolder()) {
    throw AdminError{kNoStore, session.Show(spec) + ": the folder could not be made"};
  }
  return spec;
}

SFileSpec Below(SFileSpec folder, const SString& name) {
  folder.Down(name);
  return folder;
}

}  // namespace

void LayoutMaker::CompleteStore() const {
  CompleteTopList();
  if (!session.HasTeachers()) {
    CompleteAllClasses();
    return;
  }
  const auto teachers = session.Teachers();
  for (int32_t i = 0; i < teachers->list.GetSize(); ++i) {
    const SLoginNameObj& teacher = *teachers->list.At(i);
    CompleteEntry(teachers->folder, teacher.folderName, &LayoutMaker::CompleteTeacher);
    SelectTeacher(&teacher);
    CompleteAllClasses();
  }
}

void LayoutMaker::CompleteTopList() const {
  const SFileSpec top = NeedFolder(session, session.TopFolder());
  if (session.HasTeachers()) {
    CompleteList(top, LockKind::kTeachers);
  } else {
    CompleteClassList(top);
  }
}

void LayoutMaker::CompleteTeacher(const SFileSpec& folder) const {
  MakeLock(folder, kIndexLock);
  CompleteClassList(NeedFolder(session, Below(folder, ClassesName())));
}

void LayoutMaker::CompleteClass(const SFileSpec& folder) const {
  MakeLock(folder, kIndexLock);
  MakeLock(folder, kOptionsLock);
  CompleteList(NeedFolder(session, Below(folder, SString::FromResource(kTextStudents))),
               LockKind::kStudents);
}

void LayoutMaker::CompleteStudent(const SFileSpec& folder) const {
  MakeLock(folder, kIndexLock);
  MakeLock(folder, kOptionsLock);
}

void LayoutMaker::CompleteEntry(const SFileSpec& list, const SString& folderName,
                                Complete complete) const {
  const SFileSpec folder = IsSafeName(folderName) ? Below(list, folderName) : SFileSpec();
  if (folder.IsExistingFolder()) {
    (this->*complete)(folder);
  }
}

void LayoutMaker::CompleteDefaultClass() const {
  CompleteEntry(session.ClassesFolder(), SString::FromResource(kTextDefault),
                &LayoutMaker::CompleteClass);
}

void LayoutMaker::CompleteClassList(const SFileSpec& folder) const {
  CompleteList(folder, LockKind::kClasses);
  MakeLock(folder, kOptionsLock);
  MakeDefaultOptions(folder);
}

void LayoutMaker::CompleteAllClasses() const {
  const auto classes = session.Classes();
  for (int32_t i = 0; i < classes->list.GetSize(); ++i) {
    CompleteEntry(classes->folder, classes->list.At(i)->folderName, &LayoutMaker::CompleteClass);
    CompleteAllStudents(*classes->list.At(i));
  }
}

void LayoutMaker::CompleteAllStudents(const SLoginNameObj& classEntry) const {
  const auto students = session.Students(classEntry);
  for (int32_t i = 0; i < students->list.GetSize(); ++i) {
    CompleteEntry(students->folder, students->list.At(i)->folderName,
                  &LayoutMaker::CompleteStudent);
  }
}

// A folder that lost its index has entries all the same: listing writes them into a new one, and
// only a list without any gets an empty index here.
void LayoutMaker::CompleteList(const SFileSpec& folder, LockKind lockKind) const {
  MakeLock(folder, kIndexLock);
  SLockFile lock;
  session.TakeIndexLock(lock, folder, lockKind);
  if (Below(folder, SString::FromResource(kTextIndexFile)).Exists()) {
    return;
  }
  SIndexObj index;
  index.NeedLogins();
  index.NeedFiles();
  ReconcileLogins(folder, &index);
  if (!Below(folder, SString::FromResource(kTextIndexFile)).Exists()) {
    WriteIndex(folder, index);
  }
}

void LayoutMaker::MakeLock(const SFileSpec& folder, const char* name) const {
  if (!session.HasLocks()) {
    return;
  }
  SFileSpec spec = Below(folder, name);
  if (!spec.Exists() && !spec.CreateFile(FindFileType(kFileTypeLock), 0, 0, 0)) {
    throw AdminError{kNoStore, session.Show(spec) + ": could not be made"};
  }
}

void LayoutMaker::MakeDefaultOptions(const SFileSpec& folder) const {
  SFileSpec spec = Below(folder, SString::FromResource(kTextOptionsFile));
  if (!makesOptions || spec.Exists()) {
    return;
  }
  SLockFile lock(spec, SString());
  STeacherOptionsDob options;
  if (!lock.Lock() || !options.SaveToFile(spec)) {
    throw AdminError{kNoStore, session.Show(spec) + ": could not be written"};
  }
}

}  // namespace kivadmin
