#include "hosts/kivadmin/rosters/belongings.h"

#include "store/place/placing.h"

namespace kivadmin {
namespace {

using namespace kivstore;

std::string Count(int count, const std::string& one, const std::string& many) {
  return std::to_string(count) + ' ' + (count == 1 ? one : many);
}

}  // namespace

Belongings OfStudent(const Session& session, const SFileSpec& students,
                     const SLoginNameObj& student) {
  SFileSpec game = ListedFolder(students, student.folderName);
  Belongings own;
  own.games = game.Down(session.App().AutoGameName()) && game.Exists() ? 1 : 0;
  return own;
}

Belongings OfClass(const Session& session, const SLoginNameObj& classEntry) {
  const Roster students = Students(session, classEntry);
  Belongings all;
  all.students = students.list.GetSize();
  for (const SLoginNameObj& student : students.list) {
    all.games += OfStudent(session, students.folder, student).games;
  }
  return all;
}

Belongings OfAllClasses(const Session& session) {
  const Roster classes = Classes(session);
  Belongings all;
  all.classes = classes.list.GetSize();
  all.students = 0;
  for (const SLoginNameObj& group : classes.list) {
    const Belongings own = OfClass(session, group);
    all.students += own.students;
    all.games += own.games;
  }
  return all;
}

std::string TextOf(const Belongings& belongings) {
  if (belongings.students < 0) {
    return belongings.games > 0 ? "with a saved game" : "without a saved game";
  }
  std::string text;
  if (belongings.classes >= 0) {
    text = Count(belongings.classes, "class, ", "classes, ");
  }
  return text + Count(belongings.students, "student", "students") + ", " +
         std::to_string(belongings.games) + " with a saved game";
}

}  // namespace kivadmin
