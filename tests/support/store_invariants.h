// What a store on disk says of itself, and what is wrong with it: the indexes held against the
// folders. Reads the tree with the standard library and uses nothing of ours.
#pragma once

#include <string>
#include <vector>

namespace kivtest {

// An entry as its list's index tells it.
struct ListedEntry {
  std::string list;  // the list's folder, relative to the root
  std::string folder, first, last;

  std::string Path() const { return list + "/" + folder; }
  std::string Name() const { return last.empty() ? first : first + " " + last; }
  bool IsStudent() const { return list.ends_with("/Students"); }
};

struct StoreImage {
  std::vector<ListedEntry> entries;
  // An index that is torn; a line without a folder; a folder that tells its name and has no line;
  // two lines of one folder or of one name in a list.
  std::vector<std::string> faults;
};

// The whole tree, by folders and by indexes.
StoreImage ReadStore(const std::string& root);

}  // namespace kivtest
