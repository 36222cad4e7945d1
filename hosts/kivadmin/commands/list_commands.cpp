// `list` and `find`: who is in a store, with the place that every command takes as #N.
#include <algorithm>
#include <iostream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "hosts/common/counted.h"
#include "hosts/common/progress_bar.h"
#include "hosts/common/unicode.h"
#include "hosts/kivadmin/commands/command_line.h"
#include "hosts/kivadmin/commands/commands.h"
#include "hosts/kivadmin/rosters/belongings.h"
#include "hosts/kivadmin/rosters/rosters.h"
#include "store/place/display_name.h"

namespace kivadmin {
namespace {

using kivstore::SLoginNameObj;
using Json = nlohmann::ordered_json;

struct ListArguments {
  EntryNames where;
  bool json = false;
};

struct FindArguments {
  std::string text;
  bool json = false;
};

// What could not be read is told as it is met, and once more by the exit code.
class UnreadLists {
 public:
  // False if reading failed.
  bool Try(const std::function<void()>& read) {
    try {
      read();
      return true;
    } catch (const HostError& why) {
      std::cout << std::flush;
      std::cerr << "kivadmin: " << why.what() << '\n';
      ++count;
      return false;
    }
  }
  void Need() const {
    if (count > 0) {
      throw HostError(kNoStore,
                      "incomplete: " + kivhost::Counted(count, "list") + " could not be read");
    }
  }

 private:
  size_t count = 0;
};

std::string ShownName(const Session& session, const SLoginNameObj& entry) {
  return session.Show(kivstore::DisplayName(entry));
}

size_t SizeOf(const Roster& roster) {
  return static_cast<size_t>(roster.list.GetSize());
}

// A table whose first two columns are the place and the name; what is counted stands behind.
class PlaceTable {
 public:
  PlaceTable(const char* plural, std::vector<std::string> header)
      : plural(plural), header(std::move(header)) {}

  // A value that is null is not known.
  void Add(const std::string& name, const std::vector<Json>& values) {
    std::vector<std::string> row{'#' + std::to_string(rows.size() + 1), name};
    for (const Json& value : values) {
      row.push_back(value.is_null()      ? "?"
                    : value.is_boolean() ? (value.get<bool>() ? "yes" : "no")
                                         : value.dump());
    }
    rows.push_back(row);
    Json object = {{"place", rows.size()}, {"name", name}};
    for (size_t i = 0; i < values.size(); ++i) {
      object[Key(header[i + 2])] = values[i];
    }
    json.push_back(object);
  }

  void PrintText() const {
    if (rows.empty()) {
      std::cout << "no " << plural << '\n';
      return;
    }
    std::vector<std::string> rule;
    for (size_t i = 0; i < header.size(); ++i) {
      rule.emplace_back(Width(i), '-');
    }
    PrintRow(header);
    PrintRow(rule);
    for (const auto& row : rows) {
      PrintRow(row);
    }
  }
  void PrintJson() const { std::cout << json.dump(2) << '\n'; }

 private:
  static std::string Key(std::string title) {
    title[0] = static_cast<char>(title[0] | 0x20);
    return title;
  }

  size_t Width(size_t column) const {
    size_t width = kivhost::CountCells(header[column]);
    for (const auto& row : rows) {
      width = std::max(width, kivhost::CountCells(row[column]));
    }
    return width;
  }

  void PrintRow(const std::vector<std::string>& row) const {
    std::string line;
    for (size_t i = 0; i < row.size(); ++i) {
      const std::string gap(Width(i) - kivhost::CountCells(row[i]), ' ');
      line += (i == 0 ? "" : "  ") + (i < 2 ? row[i] + gap : gap + row[i]);
    }
    line.erase(line.find_last_not_of(' ') + 1);
    std::cout << line << '\n';
  }

  const char* plural;
  std::vector<std::string> header;
  std::vector<std::vector<std::string>> rows;
  Json json = Json::array();
};

// Null if its list could not be read.
Json CountStudents(const Session& session, const SLoginNameObj& group, UnreadLists& unread) {
  Json count;
  unread.Try([&] { count = Students(session, group).list.GetSize(); });
  return count;
}

PlaceTable TeacherTable(const Session& session, UnreadLists& unread) {
  PlaceTable table("teachers", {"#", "Teacher", "Classes", "Students"});
  const Roster teachers = Teachers(session);
  kivhost::ProgressBar bar("teachers", SizeOf(teachers), false);
  for (const SLoginNameObj& teacher : teachers.list) {
    bar.Advance();
    session.Site().SelectTeacher(&teacher);
    Json classCount, studentCount;
    unread.Try([&] {
      const Roster classes = Classes(session);
      classCount = classes.list.GetSize();
      studentCount = 0;
      for (const SLoginNameObj& group : classes.list) {
        const Json count = CountStudents(session, group, unread);
        studentCount = count.is_null() || studentCount.is_null()
                           ? Json()
                           : Json(studentCount.get<int>() + count.get<int>());
      }
    });
    table.Add(ShownName(session, teacher), {classCount, studentCount});
  }
  return table;
}

// Of the selected teacher.
PlaceTable ClassTable(const Session& session, UnreadLists& unread) {
  PlaceTable table("classes", {"#", "Class", "Students"});
  const Roster classes = Classes(session);
  for (const SLoginNameObj& group : classes.list) {
    table.Add(ShownName(session, group), {CountStudents(session, group, unread)});
  }
  return table;
}

PlaceTable StudentTable(const Session& session, const std::string& className) {
  PlaceTable table("students", {"#", "Student", "Game"});
  const Roster students = Students(session, FindClass(session, className));
  for (const SLoginNameObj& student : students.list) {
    table.Add(ShownName(session, student),
              {OfStudent(session, students.folder, student).games > 0});
  }
  return table;
}

PlaceTable ChosenTable(const Session& session, const EntryNames& where, UnreadLists& unread) {
  if (session.HasTeachers() && where.teacher.empty() && where.group.empty()) {
    return TeacherTable(session, unread);
  }
  ChooseTeacher(session, where.teacher);
  return where.group.empty() ? ClassTable(session, unread) : StudentTable(session, where.group);
}

void List(const CommonOptions& common, const ListArguments& arguments) {
  const Session session(common, Session::Access::kLook);
  UnreadLists unread;
  const PlaceTable table = ChosenTable(session, arguments.where, unread);
  arguments.json ? table.PrintJson() : table.PrintText();
  unread.Need();
}

// Somebody with the place in the list, and those whose list it is.
struct PlacedEntry {
  std::string level;
  std::string name;
  int32_t place = 0;
};

using Path = std::vector<PlacedEntry>;  // from the top

// student "Ann Lee"  #3 of class "5a" (#2) of teacher "Ms Hill" (#1)
std::string TextOf(const Path& path) {
  const PlacedEntry& found = path.back();
  std::string text = found.level + " \"" + found.name + "\"  #" + std::to_string(found.place);
  for (auto above = path.rbegin() + 1; above != path.rend(); ++above) {
    text +=
        " of " + above->level + " \"" + above->name + "\" (#" + std::to_string(above->place) + ')';
  }
  return text;
}

Json JsonOf(const Path& path) {
  Json object = {
      {"level", path.back().level}, {"name", path.back().name}, {"place", path.back().place}};
  for (auto above = path.rbegin() + 1; above != path.rend(); ++above) {
    object[above->level] = {{"name", above->name}, {"place", above->place}};
  }
  return object;
}

class StoreSearch {
 public:
  StoreSearch(const Session& session, const std::string& text, UnreadLists& unread)
      : session(session), unread(unread) {
    std::istringstream folded(kivhost::FoldAccents(text));
    for (std::string word; folded >> word;) {
      words.push_back(word);
    }
    if (words.empty()) {
      throw HostError(kWrongUsage, "TEXT: nothing to look for");
    }
  }

  std::vector<Path> Run() {
    if (session.HasTeachers()) {
      const Roster teachers = Teachers(session);
      kivhost::ProgressBar bar("teachers", SizeOf(teachers), false);
      LookAt(teachers, "teacher", [&](const SLoginNameObj& teacher) {
        session.Site().SelectTeacher(&teacher);
        unread.Try([&] { LookAtClasses(); });
        bar.Advance();
      });
    } else {
      LookAtClasses();
    }
    return std::move(found);
  }

 private:
  using Below = std::function<void(const SLoginNameObj&)>;

  void LookAtClasses() {
    const Roster classes = Classes(session);
    kivhost::ProgressBar bar("classes", SizeOf(classes), session.HasTeachers());
    LookAt(classes, "class", [&](const SLoginNameObj& group) {
      unread.Try([&] { LookAt(Students(session, group), "student", [](const SLoginNameObj&) {}); });
      bar.Advance();
    });
  }

  void LookAt(const Roster& roster, const char* level, const Below& below) {
    int32_t place = 0;
    for (const SLoginNameObj& entry : roster.list) {
      path.push_back({level, ShownName(session, entry), ++place});
      if (IsMeant(path.back().name)) {
        found.push_back(path);
      }
      below(entry);
      path.pop_back();
    }
  }

  bool IsMeant(const std::string& name) const {
    const std::string folded = kivhost::FoldAccents(name);
    return std::all_of(words.begin(), words.end(),
                       [&](const std::string& word) { return folded.find(word) != folded.npos; });
  }

  const Session& session;
  UnreadLists& unread;
  std::vector<std::string> words;
  Path path;
  std::vector<Path> found;
};

void PrintFound(const std::vector<Path>& found) {
  for (const Path& path : found) {
    std::cout << TextOf(path) << '\n';
  }
}

void PrintFoundJson(const std::vector<Path>& found) {
  Json all = Json::array();
  for (const Path& path : found) {
    all.push_back(JsonOf(path));
  }
  std::cout << all.dump(2) << '\n';
}

void FindInStore(const CommonOptions& common, const FindArguments& arguments) {
  const Session session(common, Session::Access::kLook);
  UnreadLists unread;
  const std::vector<Path> found = StoreSearch(session, arguments.text, unread).Run();
  (arguments.json ? PrintFoundJson : PrintFound)(found);
  unread.Need();
  if (found.empty()) {
    throw HostError(kRefused, "nobody and no class is called \"" + arguments.text + '"');
  }
}

}  // namespace

void AddListCommands(const Command& app, CommonOptions& common) {
  const Command list = app.AddCommand(
      "list",
      "List the teachers, the classes of a teacher or the students of a class, each with the #N\n"
      "that every command takes for a name.");
  ListArguments& ofList = AddRun(list, common, List);
  AddStoreArguments(list, common);
  AddTeacherOption(list, ofList.where);
  AddClassOption(list, ofList.where);
  AddFormat(list, ofList.json, "table");

  const Command find = app.AddCommand(
      "find",
      "Look for teachers, classes and students through the whole store, and tell where they are.\n"
      "Letter case and accents do not count. Exit code 1 if nobody is found.");
  FindArguments& ofFind = AddRun(find, common, FindInStore);
  AddStoreArguments(find, common);
  find.AddOption("TEXT", ofFind.text, "A name or words of it, in any order").Require();
  AddFormat(find, ofFind.json, "text");
}

}  // namespace kivadmin
