#include "hosts/kivadmin/backups/student_restoring.h"

#include <optional>

#include "hosts/kivadmin/backups/backup_lists.h"
#include "hosts/kivadmin/rosters/deleted_entries.h"
#include "hosts/kivadmin/rosters/layout_maker.h"
#include "hosts/kivadmin/rosters/rosters.h"
#include "store/list/long_name.h"
#include "store/place/display_name.h"
#include "store/place/store_names.h"

namespace kivadmin {
namespace {

using namespace kivstore;

// Where a student is in a backup.
struct BackupPlace {
  std::string teacher;  // its display name; empty where there is no level of them
  std::string group;
  BackupEntry student;
};

std::string FolderName(const SString& name) {
  return std::string(name.View()) + '/';
}

std::string Shown(const BackupReader& backup, const SLoginNameObj& entry) {
  return backup.Show(DisplayName(entry));
}

BackupEntry FindTeacherIn(const BackupReader& backup, const std::string& list,
                          const std::string& name) {
  const std::vector<BackupEntry> all = EntriesOf(backup, list);
  if (name.empty() && all.size() != 1) {
    throw HostError(kWrongUsage, "--teacher is needed: " + backup.GetPath() + " has " +
                                     std::to_string(all.size()) + " teachers");
  }
  return name.empty() ? all.front() : FindEntry(backup, list, name, "teacher");
}

BackupPlace FindIn(const BackupReader& backup, const WantedStudent& names) {
  BackupPlace place;
  std::string list = FolderName(ClassesName());
  if (backup.GetManifest().kind == SiteKind::kTeachers) {
    const BackupEntry teacher = FindTeacherIn(backup, list, names.teacher);
    place.teacher = Shown(backup, teacher.entry);
    list = teacher.folder + FolderName(ClassesName());
  } else if (!names.teacher.empty()) {
    throw HostError(kWrongUsage, backup.GetPath() + ": is of a store without teachers");
  }
  const BackupEntry group = FindEntry(backup, list, names.group, "class");
  place.group = Shown(backup, group.entry);
  place.student = FindEntry(backup, group.folder + FolderName(CachedText<kTextStudents>()),
                            names.student, "student");
  return place;
}

void NeedSameCharset(const Session& session, const BackupReader& backup) {
  const std::string& charset = backup.GetManifest().charset;
  if (!kivhost::EqualNoCase(charset, session.CharsetName())) {
    throw HostError(kRefused, backup.GetPath() + ": its texts are in " + charset +
                                  ", those of the store in " + session.CharsetName());
  }
}

void UnpackStudent(const Session& session, const BackupReader& backup, const BackupEntry& student,
                   const SFileSpec& folder) {
  Unpack(session, backup, student.folder, folder, [] {});
  SFileSpec made(folder);
  made.Refresh();
  // By it the folder is known to be this student's.
  session.Need("write", made, [&] {
    return WriteLongName(made, student.entry.firstName, student.entry.lastName);
  });
}

class Comeback {
 public:
  Comeback(const Session& session, const BackupReader& backup, const BackupPlace& place)
      : session(session),
        backup(backup),
        student(place.student),
        group(ChosenClass(session, place)),
        roster(Students(session, group)),
        of("class " + session.Show(group) + OfTeacher(session)) {}

  bool IsNameThere() const { return Present() != nullptr; }
  std::string Text() const { return "student " + session.Show(student.entry) + " of " + of; }

  void Run() const {
    const DeletedEntry laid = LayAmongDeleted(
        session, Described(student.entry),
        [&](const SFileSpec& folder) { UnpackStudent(session, backup, student, folder); });
    std::optional<DeletedEntry> before;
    try {
      if (const SLoginNameObj* const present = Present()) {
        before = SetAside(session, Described(*present));
      }
      const SLoginNameObj entry = PutBack(session, laid);
      LayoutMaker(session).CompleteEntry(roster.folder, entry.folderName,
                                         &LayoutMaker::CompleteStudent);
    } catch (const HostError&) {
      Undo(laid, before);
      throw;
    }
  }

 private:
  // As far as it goes: what stays is in Deleted, where undelete finds it.
  void Undo(const DeletedEntry& laid, const std::optional<DeletedEntry>& before) const {
    try {
      Purge(session, laid);
      if (before) {
        PutBack(session, *before);
      }
    } catch (const HostError&) {
    }
  }

  static SLoginNameObj ChosenClass(const Session& session, const BackupPlace& place) {
    ChooseTeacher(session, session.HasTeachers() ? place.teacher : "");
    return FindClass(session, place.group);
  }

  const SLoginNameObj* Present() const {
    return FindName(roster, student.entry.firstName, student.entry.lastName);
  }

  EntryToDelete Described(const SLoginNameObj& entry) const {
    return {roster, ListKind::kStudents, entry, "student", of};
  }

  const Session& session;
  const BackupReader& backup;
  const BackupEntry& student;
  SLoginNameObj group;
  Roster roster;
  std::string of;
};

}  // namespace

std::string RestoreStudent(const Session& session, const BackupReader& backup,
                           const WantedStudent& wanted) {
  backup.NeedNamesOfStore();
  NeedSameCharset(session, backup);
  const BackupPlace place = FindIn(backup, wanted);
  const Comeback comeback(session, backup, place);
  const bool isThere = comeback.IsNameThere();
  if (isThere && !wanted.mayReplace) {
    throw HostError(kRefused, "there is a " + comeback.Text() +
                                  " already; --replace sets that one aside first");
  }
  if (session.IsDryRun()) {
    for (const kivhost::ZipEntry* entry : backup.Below(place.student.folder)) {
      backup.Read(*entry);
    }
  } else {
    comeback.Run();
  }
  return "restored " + comeback.Text() + " as of " + backup.GetManifest().when +
         (isThere ? "; kivadmin undelete brings back the one that was there" : "");
}

}  // namespace kivadmin
