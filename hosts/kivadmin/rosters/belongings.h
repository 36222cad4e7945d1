// How much belongs to an entry, for whoever is about to delete it.
#pragma once

#include <string>

#include "hosts/kivadmin/rosters/rosters.h"

namespace kivadmin {

struct Belongings {
  int classes = -1;  // -1: of a level below
  int students = -1;
  int games = 0;  // students with a saved game
};

Belongings OfStudent(const Session& session, const kivstore::SFileSpec& students,
                     const kivstore::SLoginNameObj& student);
Belongings OfClass(const Session& session, const kivstore::SLoginNameObj& classEntry);
// Of the selected teacher.
Belongings OfAllClasses(const Session& session);

// "2 classes, 24 students, 3 with a saved game"; of a student "with a saved game".
std::string TextOf(const Belongings& belongings);

}  // namespace kivadmin
