// Lays out a store on disk as the tutor's administration would: folders, index files, long names,
// options, games and the lock files of a shared store. Uses nothing of the library.
//
//   StoreBuilder store(folder.Path(), Kind::kTeachers);
//   const std::string hill = store.AddTeacher("Ms Hill");
//   const std::string room = store.AddClass(hill, "Room 12");
//   const std::string ann = store.AddStudent(room, "Ann", "Lee");
//   store.WriteOptions(ann, OptionsBytes().SetMission(5));
//   store.Finish();
//
// An entry is named by its folder's path, relative to the root and with slashes. What cannot be
// written throws.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "tests/support/record_bytes.h"
#include "tests/support/temp_folder.h"

namespace kivtest {

// A local store has classes at the top, a shared one lock files too, one with teachers a level
// more.
enum class Kind { kLocal, kShared, kTeachers };

class StoreBuilder {
 public:
  StoreBuilder(const std::string& rootPath, Kind kind);

  // An empty folder name is derived: letters and digits, at most eight, unique in its list.
  std::string AddTeacher(const std::string& name, const std::string& folder = "");
  std::string AddClass(const std::string& teacher, const std::string& name,
                       const std::string& folder = "");
  std::string AddClass(const std::string& name) { return AddClass("", name); }
  std::string AddStudent(const std::string& classFolder, const std::string& first,
                         const std::string& last = "", const std::string& folder = "");
  // A game's line in the index of a student's or class's list.
  void AddFileLine(const std::string& list, const FileLine& line);

  // `place` is an entry, or a class list for the options of the whole store.
  void WriteOptions(const std::string& place, const OptionsBytes& options);
  // autogame.zep
  void WriteGame(const std::string& student, const GameBytes& game);
  // Writes the index of every list. Entries may be added afterwards with another Finish.
  void Finish();

  // The folder of the teacher list, or without teachers of the class list.
  static std::string Top() { return "Classes.zep"; }
  static std::string ClassList(const std::string& teacher) {
    return teacher.empty() ? Top() : Join(teacher, Top());
  }
  static std::string StudentList(const std::string& classFolder) {
    return Join(classFolder, "Students");
  }

  // Disorder, after Finish. The first changes the index of the entry's list and nothing else.
  void DropIndexLine(const std::string& entry);
  void RemoveFolder(const std::string& entry) const;
  void SetLongName(const std::string& entry, const std::string& first,
                   const std::string& last = "") const;
  // By the attribute; false where the disk cannot keep it.
  bool Hide(const std::string& entry) const;
  void Tear(const std::string& file, size_t length) const;
  void WriteFile(const std::string& file, const std::string& bytes) const {
    WriteFileBytes(Path(file), bytes);
  }
  void RemoveFile(const std::string& file) const;
  std::string ReadFile(const std::string& file) const { return ReadFileBytes(Path(file)); }
  std::string Path(const std::string& relative) const { return root + "/" + relative; }

  std::map<std::string, std::string> Snapshot() const { return SnapshotOf(root); }

 private:
  struct List {
    std::vector<IndexLine> logins;
    std::vector<FileLine> files;
  };

  std::string AddEntry(const std::string& list, const std::string& first, const std::string& last,
                       const std::string& folder);
  void MakeList(const std::string& list);
  void WriteIndex(const std::string& list) const;
  void WriteLock(const std::string& file) const;  // but in a local store
  std::string DeriveFolder(const std::string& list, const std::string& name) const;
  static std::string Join(const std::string& folder, const std::string& name) {
    return folder + "/" + name;
  }

  std::string root;
  Kind kind;
  std::map<std::string, List> lists;
};

}  // namespace kivtest
