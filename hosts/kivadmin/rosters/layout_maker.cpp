#include "hosts/kivadmin/rosters/layout_maker.h"

#include "foundation/files/file_type.h"
#include "hosts/common/empty_file.h"
#include "hosts/kivadmin/rosters/rosters.h"
#include "platform/text_numbers.h"
#include "records/tutor_options_dob.h"
#include "store/list/index_file.h"
#include "store/list/reconcile.h"
#include "store/place/store_names.h"

namespace kivadmin {
namespace {

using namespace kivstore;

constexpr const char* kIndexLock = "index.lok";
constexpr const char* kOptionsLock = "options.lok";

// A folder that is there afterwards, or an error.
SFileSpec NeedFolder(const Session& session, SFileSpec spec) {
  session.Need("make the folder", spec, [&] { return spec.EnsureFolder(); });
  return spec;
}

SFileSpec Below(SFileSpec folder, const SString& name) {
  folder.Down(name);
  return folder;
}

// A file of no bytes is what a death ahead of the writing has left.
bool IsWritten(const SFileSpec& folder, const SString& name) {
  const SFileSpec file = Below(folder, name);
  return file.Exists() && !kivhost::IsEmptyFile(file);
}

}  // namespace

void LayoutMaker::CompleteStore(const std::function<void()>& classDone) const {
  CompleteTopList();
  if (!session.HasTeachers()) {
    CompleteAllClasses(classDone);
    return;
  }
  const Roster teachers = Teachers(session);
  for (const SLoginNameObj& teacher : teachers.list) {
    CompleteEntry(teachers.folder, teacher.folderName, &LayoutMaker::CompleteTeacher);
    session.Site().SelectTeacher(&teacher);
    CompleteAllClasses(classDone);
  }
}

void LayoutMaker::CompleteTopList() const {
  const SFileSpec top = NeedFolder(session, session.TopFolder());
  if (session.HasTeachers()) {
    CompleteList(top, ListKind::kTeachers);
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
  CompleteList(NeedFolder(session, Below(folder, CachedText<kTextStudents>())),
               ListKind::kStudents);
}

void LayoutMaker::CompleteStudent(const SFileSpec& folder) const {
  MakeLock(folder, kIndexLock);
  MakeLock(folder, kOptionsLock);
}

std::vector<NewFile> LayoutMaker::FilesOfStudent() const {
  return session.HasLocks()
             ? std::vector<NewFile>{{kIndexLock, nullptr, 0}, {kOptionsLock, nullptr, 0}}
             : std::vector<NewFile>{};
}

void LayoutMaker::CompleteEntry(const SFileSpec& list, const SString& folderName,
                                Complete complete) const {
  const SFileSpec folder = IsSafeName(folderName) ? Below(list, folderName) : SFileSpec();
  if (folder.IsExistingFolder()) {
    (this->*complete)(folder);
  }
}

void LayoutMaker::CompleteDefaultClass() const {
  CompleteEntry(ClassesFolder(session), CachedText<kTextDefault>(), &LayoutMaker::CompleteClass);
}

void LayoutMaker::CompleteClassList(const SFileSpec& folder) const {
  CompleteList(folder, ListKind::kClasses);
  MakeLock(folder, kOptionsLock);
  MakeDefaultOptions(folder);
}

void LayoutMaker::CompleteAllClasses(const std::function<void()>& classDone) const {
  const Roster classes = Classes(session);
  for (const SLoginNameObj& group : classes.list) {
    CompleteEntry(classes.folder, group.folderName, &LayoutMaker::CompleteClass);
    CompleteAllStudents(group);
    classDone();
  }
}

void LayoutMaker::CompleteAllStudents(const SLoginNameObj& classEntry) const {
  const Roster students = Students(session, classEntry);
  for (const SLoginNameObj& student : students.list) {
    CompleteEntry(students.folder, student.folderName, &LayoutMaker::CompleteStudent);
  }
}

// A folder that lost its index has entries all the same: listing writes them into a new one, and
// only a list without any gets an empty index here.
void LayoutMaker::CompleteList(const SFileSpec& folder, ListKind kind) const {
  MakeLock(folder, kIndexLock);
  SLockFile lock(session.Site());
  session.TakeIndexLock(lock, folder, kind);
  if (IsWritten(folder, CachedText<kTextIndexFile>())) {
    return;
  }
  SIndexObj index;
  index.NeedLogins();
  index.NeedFiles();
  ReconcileLogins(session.Site(), folder, index);
  if (!IsWritten(folder, CachedText<kTextIndexFile>())) {
    WriteIndex(folder, index);
  }
}

void LayoutMaker::MakeLock(const SFileSpec& folder, const char* name) const {
  if (!session.HasLocks()) {
    return;
  }
  SFileSpec spec = Below(folder, name);
  session.Need("make a lock file", spec, [&] {
    return spec.Exists() || spec.CreateFile(FindFileType(kFileTypeLock), 0, 0, 0);
  });
}

void LayoutMaker::MakeDefaultOptions(const SFileSpec& folder) const {
  SFileSpec spec = Below(folder, CachedText<kTextOptionsFile>());
  if (!makesOptions || IsWritten(folder, CachedText<kTextOptionsFile>())) {
    return;
  }
  SLockFile lock(session.Site(), spec, SString());
  session.TakeLock(lock, "the options");
  STeacherOptionsDob options;
  session.Need("make the options", spec, [&] { return options.SaveToFile(spec); });
}

}  // namespace kivadmin
