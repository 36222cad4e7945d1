// Opening a store: from the root that a user gives to a site that stands on it.
#pragma once

#include <string>
#include <vector>

#include "app/general_call.h"

namespace kivhost {

// Classes at the top without locks, with locks, and below teachers with locks.
enum class SiteKind { kLocal, kShared, kTeachers };

const char* NameOf(SiteKind kind);

// The root as the store will hold it: absolute, and without the steps that lead nowhere or back. By
// the letters alone, so that what is looked at, told and opened is one place.
std::string HeldRoot(const std::string& root);

// Which kinds of store a program takes, the one to take for a tree that does not tell first.
struct KindWanted {
  std::vector<SiteKind> kinds;  // empty: whatever the tree tells
  bool force = false;           // also against the tree
};

// The store and the application object of one run of a program; one at a time. The file services
// that are in place when it opens stay in place while it is open.
class OpenStore {
 public:
  // `givenRoot` is the data root or its classes folder. Throws HostError if there is no store,
  // unless it is still to be laid out, and if the tree tells a kind that is not wanted. Where
  // nobody tells a store to be laid out is one with teachers.
  OpenStore(const std::string& givenRoot, const KindWanted& wanted, bool isToBeLaidOut = false);
  OpenStore(const OpenStore&) = delete;
  OpenStore& operator=(const OpenStore&) = delete;

  const std::string& Root() const { return root; }  // as held
  SiteKind Kind() const { return kind; }
  bool HasTeachers() const { return kind == SiteKind::kTeachers; }
  kivstore::SSite& Site() const { return call.GetSite(); }
  kivstore::SZEPApp& App() const { return *call.GetApp(); }
  // The list of teachers, or without teachers of classes.
  kivstore::SFileSpec TopFolder() const;

 private:
  SiteKind Choose(const KindWanted& wanted, bool isToBeLaidOut) const;
  void SetKind(SiteKind newKind);

  std::string root;
  kivstore::SGeneralCall call;
  SiteKind kind = SiteKind::kTeachers;
};

}  // namespace kivhost
