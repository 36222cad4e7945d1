// Walks a whole store and finds what is not in order. Changes nothing: its session only looks.
#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "hosts/kivadmin/session/session.h"
#include "store/list/index_file.h"

namespace kivadmin {

struct Finding {
  // "index", "longname", "nameless", "lock", "options", "game", "twin", "name", "folder", "busy",
  // "link", "file", "mount", "rights"
  std::string kind;
  std::string path;
  std::string what;
  bool repaired = false;

  bool IsSame(const Finding& other) const {
    return kind == other.kind && path == other.path && what == other.what;
  }
};

class StoreCheck {
 public:
  // `classDone` is called after each class.
  StoreCheck(const Session& session, std::function<void()> classDone)
      : session(session), classDone(std::move(classDone)) {}

  std::vector<Finding> Run();
  static size_t CountClasses(const Session& session);

 private:
  using CheckEntry = void (StoreCheck::*)(const kivstore::SFileSpec&);

  void CheckMount();
  void CheckRights();
  void CheckTeacher(const kivstore::SFileSpec& folder);
  void CheckClassList(const kivstore::SFileSpec& folder);
  void CheckClass(const kivstore::SFileSpec& folder);
  void CheckStudent(const kivstore::SFileSpec& folder);
  void CheckList(const kivstore::SFileSpec& folder, CheckEntry checkEntry);
  bool ReadLogins(const kivstore::SFileSpec& folder, kivstore::SIndexObj& index);
  void CompareWithFolders(const kivstore::SFileSpec& folder, const kivstore::SIndexObj& index,
                          CheckEntry checkEntry);
  bool CheckUnlisted(const kivstore::SFileSpec& folder);
  void CheckLongName(const kivstore::SFileSpec& folder, const kivstore::SLoginNameObj& entry);
  void CheckTwin(const kivstore::SFileSpec& game);
  void CheckNames(const kivstore::SFileSpec& folder, const kivstore::SIndexObj& index);
  void CheckLock(const kivstore::SFileSpec& folder, const char* name);
  void CheckOptions(const kivstore::SFileSpec& folder);
  void CheckGames(const kivstore::SFileSpec& folder);
  void CheckForeignEntries();
  void LookForForeign(const kivstore::SFileSpec& folder, int depth);
  void LookAtLink(const kivstore::SFileSpec& spec);
  bool IsBehindForeign(const std::string& path) const;
  void ReportForeign(const char* kind, const kivstore::SFileSpec& where, const std::string& what);
  void Report(const char* kind, const kivstore::SFileSpec& where, const std::string& what);

  const Session& session;
  std::function<void()> classDone;
  std::vector<Finding> findings;
  // Links that are not followed, and pipes: of what lies behind them nothing more is said.
  std::set<std::string> foreign;
  std::map<std::pair<size_t, size_t>, kivstore::SFileSpec> games;  // by length and hash
};

}  // namespace kivadmin
