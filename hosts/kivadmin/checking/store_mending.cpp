#include "hosts/kivadmin/checking/store_mending.h"

#include "foundation/files/file_finder.h"
#include "hosts/common/empty_file.h"
#include "hosts/kivadmin/rosters/rosters.h"
#include "store/list/index_file.h"
#include "store/list/long_name.h"
#include "store/place/display_name.h"
#include "store/place/placing.h"
#include "store/place/store_names.h"

namespace kivadmin {
namespace {

using namespace kivstore;
using kivhost::IsEmptyFile;

SFileSpec FileIn(SFileSpec folder, const SString& name) {
  folder.Down(name);
  return folder;
}

// Whether the line changed. A folder's own name is written before its line in every change, so it
// is the newer of the two; where it is missing the line has it.
bool MendName(const Session& session, const SFileSpec& list, SLoginNameObj& line) {
  const SFileSpec folder = ListedFolder(list, line.folderName);
  SLoginNameObj owner;
  if (!ReadLongName(FileIn(folder, CachedText<kTextLongNameFile>()), owner.firstName,
                    owner.lastName) ||
      owner.firstName.IsEmpty()) {
    session.Need("write the long name of " + session.Show(line), folder,
                 [&] { return WriteLongName(folder, line.firstName, line.lastName); });
    return false;
  }
  const bool differs = CompareDisplayNames(owner, line) != 0;
  if (differs) {
    line.firstName = owner.firstName;
    line.lastName = owner.lastName;
  }
  return differs;
}

void MendList(const Session& session, const SFileSpec& folder, ListKind kind) {
  SLockFile lock(session.Site());
  session.TakeIndexLock(lock, folder, kind);
  bool changed = IsEmptyFile(FileIn(folder, CachedText<kTextIndexFile>()));
  SIndexObj index;
  ReadWholeIndex(folder, index);
  for (SLoginNameObj& line : *index.logins) {
    changed |= MendName(session, folder, line);
  }
  if (changed) {
    session.Need("write the index", folder, [&] { return WriteIndex(folder, index); });
  }
}

void DropEmpty(const Session& session, SFileSpec file) {
  if (IsEmptyFile(file)) {
    session.Need("remove an empty file", file, [&] { return file.Delete(false); });
  }
}

// Under its lock: one who makes a file has it empty for a moment.
void MendOptions(const Session& session, const SFileSpec& folder) {
  const SFileSpec file = FileIn(folder, CachedText<kTextOptionsFile>());
  if (IsEmptyFile(file)) {
    SLockFile lock(session.Site(), file, SString());
    session.TakeLock(lock, "the options");
    DropEmpty(session, file);
  }
}

void MendStudent(const Session& session, const SFileSpec& folder) {
  MendOptions(session, folder);
  SLockFile lock(session.Site());
  session.TakeIndexLock(lock, folder, ListKind::kFiles);
  SFileFinder finder(folder, SFileFinder::kVisibleFiles, ".zep");
  for (SFileSpec file; finder.Next(file);) {
    DropEmpty(session, file);
  }
}

void MendClasses(const Session& session, const std::function<void()>& classDone) {
  const Roster classes = Classes(session);
  MendList(session, classes.folder, ListKind::kClasses);
  MendOptions(session, classes.folder);
  for (const SLoginNameObj& group : classes.list) {
    MendOptions(session, ListedFolder(classes.folder, group.folderName));
    const Roster students = Students(session, group);
    MendList(session, students.folder, ListKind::kStudents);
    for (const SLoginNameObj& student : students.list) {
      MendStudent(session, ListedFolder(students.folder, student.folderName));
    }
    classDone();
  }
}

}  // namespace

void MendStore(const Session& session, const std::function<void()>& classDone) {
  if (!session.HasTeachers()) {
    MendClasses(session, classDone);
    return;
  }
  const Roster teachers = Teachers(session);
  MendList(session, teachers.folder, ListKind::kTeachers);
  for (const SLoginNameObj& teacher : teachers.list) {
    session.Site().SelectTeacher(&teacher);
    MendClasses(session, classDone);
  }
}

}  // namespace kivadmin
