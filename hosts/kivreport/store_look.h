// A look at the store's tree from outside: what kind of site it is, and why a list came back empty.
// GeneralProc answers no reasons; a person needs one, with the path and what to do.
#pragma once

#include <optional>
#include <string>

namespace kivreport {

struct StoreLook {
  bool network = false;
  std::string trouble;  // one line; empty if there is a store to read
};

// Whether there is a store at `root`, which may be the data root or its classes folder. A teacher's
// folder holds a classes folder, a class's holds "Students": the first of either decides.
StoreLook LookAtStore(const std::string& root);

// The first thing that keeps a list of the store from being read: no permission, and in a networked
// store a lock file that is missing or held by someone else. Nothing if there is none.
std::optional<std::string> FindTrouble(const std::string& root, bool network);

}  // namespace kivreport
