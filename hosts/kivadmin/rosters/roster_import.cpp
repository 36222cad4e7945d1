#include "hosts/kivadmin/rosters/roster_import.h"

#include <algorithm>
#include <map>
#include <memory>
#include <new>
#include <optional>

#include "hosts/common/progress_bar.h"
#include "hosts/kivadmin/rosters/roster_changes.h"

namespace kivadmin {
namespace {

using kivstore::SLoginNameObj;
using kivstore::SNewcomer;
using kivstore::SString;

// The students that lines bring for one class.
struct Newcomers {
  std::vector<SNewcomer> students;
  std::vector<const RosterLine*> lines;  // beside them
  std::vector<bool> hasAddedAbove;       // whether the line has added the class or its teacher
};

class Importer {
 public:
  explicit Importer(const Session& session) : session(session) {}

  void TakeAll(const std::vector<RosterLine>& lines);
  // In the order of the lines.
  void TellRefusals(const Refused& refused);
  const ImportCounts& GetCounts() const { return counts; }

 private:
  struct Teacher {
    std::optional<Roster> classes;
    std::map<const SLoginNameObj*, Newcomers> newcomers;  // by the class's entry
  };

  // The teacher and the class; the student waits. Throws where the line cannot be taken.
  void TakeAbove(const RosterLine& line);
  Teacher& TakeTeacher(const std::string& name);
  const SLoginNameObj* TakeClass(Teacher& teacher, const std::string& name);
  void TakeStudents(const SLoginNameObj& group, Newcomers& newcomers,
                    const std::function<void()>& advance);
  void Count(const Newcomers& newcomers);
  void Refuse(const RosterLine& line, const std::string& why) { refusals.emplace_back(&line, why); }
  size_t Added() const { return counts.teachers + counts.classes; }
  // The roster's own entry for one that has been added.
  static const SLoginNameObj* Note(Roster& roster, const SLoginNameObj& entry);

  const Session& session;
  std::optional<Roster> teachers;
  std::map<const SLoginNameObj*, Teacher> known;  // by the entry; null in a store without teachers
  size_t waiting = 0;                             // students
  ImportCounts counts;
  std::vector<std::pair<const RosterLine*, std::string>> refusals;
};

const SLoginNameObj* Importer::Note(Roster& roster, const SLoginNameObj& entry) {
  const int32_t place = roster.list.GetSize();
  if (!roster.list.Add(std::make_unique<SLoginNameObj>(entry))) {
    throw std::bad_alloc();
  }
  return roster.list.At(place);
}

void Importer::TakeAll(const std::vector<RosterLine>& lines) {
  for (const RosterLine& line : lines) {
    try {
      TakeAbove(line);
    } catch (const HostError& error) {
      ++counts.notTaken;
      Refuse(line, error.what());
    }
  }
  kivhost::ProgressBar bar("students", waiting, session.IsDryRun());
  for (auto& [teacher, ofTeacher] : known) {
    if (teacher != nullptr) {
      session.Site().SelectTeacher(teacher);
    }
    for (auto& [group, newcomers] : ofTeacher.newcomers) {
      TakeStudents(*group, newcomers, [&] { bar.Advance(); });
    }
  }
}

void Importer::TellRefusals(const Refused& refused) {
  std::stable_sort(refusals.begin(), refusals.end(),
                   [](const auto& a, const auto& b) { return a.first->number < b.first->number; });
  for (const auto& [line, why] : refusals) {
    refused(*line, why);
  }
}

void Importer::TakeAbove(const RosterLine& line) {
  // Nothing of a line is added whose student could not be.
  std::optional<PersonName> person;
  if (!line.first.empty() || !line.last.empty()) {
    person = NewPerson(session, line.first, line.last);
  }
  if (!line.group.empty() || person) {
    session.NewName(line.group, "class");
  }
  const size_t before = Added();
  Teacher& teacher = TakeTeacher(line.teacher);
  const SLoginNameObj* const group = line.group.empty() ? nullptr : TakeClass(teacher, line.group);
  if (!person) {
    counts.there += Added() == before;
    return;
  }
  Newcomers& newcomers = teacher.newcomers[group];
  newcomers.students.push_back({person->first, person->last});
  newcomers.lines.push_back(&line);
  newcomers.hasAddedAbove.push_back(Added() != before);
  ++waiting;
}

Importer::Teacher& Importer::TakeTeacher(const std::string& name) {
  if (!session.HasTeachers()) {
    if (!name.empty()) {
      RequireTeachers(session);
    }
    return known[nullptr];
  }
  const SString text = session.NewName(name, "teacher");
  if (!teachers) {
    teachers = Teachers(session);
  }
  const SLoginNameObj* entry = FindName(*teachers, text, SString());
  if (entry == nullptr) {
    entry = Note(*teachers, EnterTeacher(session, *teachers, text));
    ++counts.teachers;
  }
  session.Site().SelectTeacher(entry);
  return known[entry];
}

const SLoginNameObj* Importer::TakeClass(Teacher& teacher, const std::string& name) {
  const SString text = session.NewName(name, "class");
  if (!teacher.classes) {
    teacher.classes = Classes(session);
  }
  const SLoginNameObj* entry = FindName(*teacher.classes, text, SString());
  if (entry == nullptr) {
    entry = Note(*teacher.classes, EnterClass(session, *teacher.classes, text));
    ++counts.classes;
  }
  return entry;
}

// What keeps a whole class out is told once, at its first line.
void Importer::TakeStudents(const SLoginNameObj& group, Newcomers& newcomers,
                            const std::function<void()>& advance) {
  try {
    EnterStudents(session, group, newcomers.students, advance);
  } catch (const HostError& error) {
    const auto isLeft = [](const SNewcomer& one) { return one.outcome == SNewcomer::kWaiting; };
    const auto first = std::find_if(newcomers.students.begin(), newcomers.students.end(), isLeft);
    const auto left = std::count_if(first, newcomers.students.end(), isLeft);
    Refuse(*newcomers.lines[static_cast<size_t>(first - newcomers.students.begin())],
           error.what() + (left > 1 ? " (" + std::to_string(left) + " lines of this class)" : ""));
  }
  Count(newcomers);
}

void Importer::Count(const Newcomers& newcomers) {
  for (size_t i = 0; i < newcomers.students.size(); ++i) {
    switch (newcomers.students[i].outcome) {
      case SNewcomer::kAdded:
        ++counts.students;
        break;
      case SNewcomer::kThere:
        counts.there += !newcomers.hasAddedAbove[i];
        break;
      case SNewcomer::kFull:
        Refuse(
            *newcomers.lines[i],
            "full: the class has " + std::to_string(kivstore::kMaxStudents) + " students already");
        [[fallthrough]];
      case SNewcomer::kWaiting:
        ++counts.notTaken;
        break;
    }
  }
}

}  // namespace

ImportCounts ImportRosters(const Session& session, const std::vector<RosterLine>& lines,
                           const Refused& refused) {
  Importer importer(session);
  importer.TakeAll(lines);
  importer.TellRefusals(refused);
  return importer.GetCounts();
}

}  // namespace kivadmin
