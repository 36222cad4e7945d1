// What a OneRoster bundle says, as far as a roster needs it: the rows of its files, by sourcedId.
// Versions 1.1 and 1.2, and their relatives without manifest.
#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "hosts/kivadmin/roster_files/roster_bundle.h"

namespace kivadmin {

struct OneRosterUser {
  std::string given;
  std::string family;
  std::string role;  // "teacher", "student": where an enrollment has none
  bool isGone = false;

  std::string Name() const {
    return family.empty() || given.empty() ? given + family : given + ' ' + family;
  }
};

struct OneRosterClass {
  size_t number = 0;  // of its line
  std::string title;
  std::string code;
  std::string school;
  std::vector<std::string> terms;
  bool isHomeroom = false;
};

struct OneRosterEnrollment {
  size_t number = 0;  // of its line
  std::string group;  // the class
  std::string user;
  std::string role;
  bool isPrimary = false;
  bool hasEnded = false;
};

struct OneRosterTerm {
  std::string title;
  std::string parent;
};

struct OneRoster {
  std::map<std::string, std::string> schools;  // names by sourcedId; of other orgs, too
  std::map<std::string, OneRosterUser> users;
  std::map<std::string, OneRosterClass> classes;
  std::vector<OneRosterEnrollment> enrollments;  // in the order of the file
  std::map<std::string, OneRosterTerm> terms;
  std::set<std::string> goneClasses;
  size_t gone = 0;  // rows that are marked as deleted or inactive
};

// Rows that are marked as deleted or inactive are left out, but for users, whose enrollments lead
// to them. Throws wrong usage where a file or a column is missing.
OneRoster ReadOneRoster(RosterBundle& bundle, const std::string& charset, RosterFile& roster);

}  // namespace kivadmin
