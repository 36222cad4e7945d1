// What a store has beside its entries: an index in every list folder, options where the tutor keeps
// them, and in a store with locks a .lok file wherever a listing, an adoption by name or an options
// read takes a lock. Makes what is missing and leaves alone what is there.
//
// A store is complete when libkivstore, which makes no file, can use all of it.
#pragma once

#include <functional>
#include <vector>

#include "hosts/kivadmin/session/session.h"

namespace kivadmin {

class LayoutMaker {
 public:
  // Without `makesOptions` the options files stay as they are.
  explicit LayoutMaker(const Session& session, bool makesOptions = true)
      : session(session), makesOptions(makesOptions) {}

  // The whole tree, every list repaired on the way; `classDone` after each class. Throws at a list
  // whose lock cannot be had.
  void CompleteStore(const std::function<void()>& classDone) const;

  // One folder, with what it holds of its own; not the entries below.
  void CompleteTopList() const;
  void CompleteTeacher(const kivstore::SFileSpec& folder) const;
  void CompleteClass(const kivstore::SFileSpec& folder) const;
  void CompleteStudent(const kivstore::SFileSpec& folder) const;
  // The same, for a folder that is made with them.
  std::vector<kivstore::NewFile> FilesOfStudent() const;
  // The entry `folderName` of the list, by its level.
  using Complete = void (LayoutMaker::*)(const kivstore::SFileSpec&) const;
  void CompleteEntry(const kivstore::SFileSpec& list, const kivstore::SString& folderName,
                     Complete complete) const;
  // The default class, which the store itself adds to a list that it finds empty.
  void CompleteDefaultClass() const;

 private:
  void CompleteClassList(const kivstore::SFileSpec& folder) const;
  void CompleteAllClasses(const std::function<void()>& classDone) const;
  void CompleteAllStudents(const kivstore::SLoginNameObj& classEntry) const;
  void CompleteList(const kivstore::SFileSpec& folder, kivstore::ListKind kind) const;
  void MakeLock(const kivstore::SFileSpec& folder, const char* name) const;
  void MakeDefaultOptions(const kivstore::SFileSpec& folder) const;

  const Session& session;
  bool makesOptions;
};

}  // namespace kivadmin
