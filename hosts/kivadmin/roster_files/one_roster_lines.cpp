#include "hosts/kivadmin/roster_files/one_roster_lines.h"

#include <algorithm>
#include <tuple>

#include "hosts/common/charset.h"
#include "hosts/common/counted.h"
#include "hosts/common/unicode.h"
#include "hosts/kivadmin/roster_files/cell_text.h"
#include "hosts/kivadmin/roster_files/one_roster_choice.h"

namespace kivadmin {
namespace {

using kivhost::EqualNoCase;
using SeveralClasses = RosterFormat::SeveralClasses;

constexpr const char* kEnrollments = "enrollments.csv";

// A class that is taken, and who is in it.
struct Group {
  std::string id;
  const OneRosterClass* facts;
  std::string name;
  std::string teacher;
  std::vector<const OneRosterEnrollment*> teachers;
  std::vector<const OneRosterEnrollment*> students;
};

class Joiner {
 public:
  Joiner(const OneRoster& bundle, const RosterFormat& format, RosterFile& roster)
      : bundle(bundle), format(format), roster(roster) {}

  void TakeClasses();
  void ShareOut();
  // By the code those that have one title; by the sourcedId those that still have one name with one
  // teacher, once these are chosen.
  void NameApart(bool byCode);
  void ChooseTeachers();
  void ChooseClassesOfStudents();
  void MakeLines();
  void Tell();

 private:
  using Enrollments = std::vector<std::pair<Group*, const OneRosterEnrollment*>>;

  // Null, and refused, where it leads nowhere.
  const OneRosterUser* UserOf(const OneRosterEnrollment& enrollment);
  void TakeEnrollment(Group& group, const OneRosterEnrollment& enrollment);
  const OneRosterUser& User(const OneRosterEnrollment& enrollment) const {
    return bundle.users.at(enrollment.user);
  }
  Enrollments Kept(const Enrollments& ofStudent);
  void AddLine(const Group& group, const OneRosterEnrollment* student);
  void Note(const std::string& what, const std::vector<std::string>& which);
  void NoteSameNames();

  const OneRoster& bundle;
  const RosterFormat& format;
  RosterFile& roster;
  std::map<std::string, Group> groups;
  std::vector<Group*> inOrder;
  size_t otherRoles = 0;
  std::vector<std::string> severalTeachers;
  std::vector<std::string> severalClasses;
  std::vector<std::string> toldApart;
};

void Joiner::TakeClasses() {
  for (const std::string& id : ChooseClasses(bundle, format, roster.name)) {
    const OneRosterClass& facts = bundle.classes.at(id);
    if (facts.title.empty()) {
      roster.refused.push_back({facts.number, "classes.csv", "the class has no title"});
      continue;
    }
    inOrder.push_back(
        &groups.emplace(id, Group{id, &facts, facts.title, "", {}, {}}).first->second);
  }
}

void Joiner::ShareOut() {
  for (const OneRosterEnrollment& enrollment : bundle.enrollments) {
    const auto group = groups.find(enrollment.group);
    if (group != groups.end()) {
      TakeEnrollment(group->second, enrollment);
    } else if (!bundle.classes.contains(enrollment.group) &&
               !bundle.goneClasses.contains(enrollment.group)) {
      roster.refused.push_back({enrollment.number, kEnrollments,
                                "no class " + InQuotes(enrollment.group) + " in classes.csv"});
    }
  }
}

const OneRosterUser* Joiner::UserOf(const OneRosterEnrollment& enrollment) {
  const auto user = bundle.users.find(enrollment.user);
  if (user == bundle.users.end()) {
    roster.refused.push_back({enrollment.number, kEnrollments,
                              "no user " + InQuotes(enrollment.user) + " in users.csv"});
    return nullptr;
  }
  return &user->second;
}

void Joiner::TakeEnrollment(Group& group, const OneRosterEnrollment& enrollment) {
  const OneRosterUser* const user = UserOf(enrollment);
  if (user == nullptr || user->isGone) {
    return;
  }
  const std::string& role = enrollment.role.empty() ? user->role : enrollment.role;
  if (EqualNoCase(role, "student")) {
    group.students.push_back(&enrollment);
  } else if (EqualNoCase(role, "teacher")) {
    group.teachers.push_back(&enrollment);
  } else {
    ++otherRoles;
  }
}

void Joiner::ChooseTeachers() {
  const auto rank = [&](const OneRosterEnrollment* one) {
    const OneRosterUser& user = User(*one);
    return std::tuple(!one->isPrimary, one->hasEnded, kivhost::FoldCase(user.family),
                      kivhost::FoldCase(user.given));
  };
  for (Group* const group : inOrder) {
    auto& teachers = group->teachers;
    std::stable_sort(teachers.begin(), teachers.end(),
                     [&](const auto* a, const auto* b) { return rank(a) < rank(b); });
    group->teacher = teachers.empty() ? format.teacher : User(*teachers[0]).Name();
    const auto isOther = [&](const auto* one) { return one->user != teachers[0]->user; };
    const auto other = std::find_if(teachers.begin(), teachers.end(), isOther);
    if (other != teachers.end()) {
      severalTeachers.push_back(group->name + " (" + group->teacher + ", not " +
                                User(**other).Name() + ')');
    }
  }
}

// The classes of a student that are kept: none that has ended where another has not.
Joiner::Enrollments Joiner::Kept(const Enrollments& ofStudent) {
  Enrollments kept = ofStudent;
  std::stable_sort(kept.begin(), kept.end(), [](const auto& a, const auto& b) {
    return std::pair(a.second->hasEnded, !a.first->facts->isHomeroom) <
           std::pair(b.second->hasEnded, !b.first->facts->isHomeroom);
  });
  if (!kept.front().second->hasEnded) {
    std::erase_if(kept, [](const auto& one) { return one.second->hasEnded; });
  }
  Enrollments each;
  for (const auto& one : kept) {
    const auto isSame = [&](const auto& other) { return other.first == one.first; };
    if (std::none_of(each.begin(), each.end(), isSame)) {
      each.push_back(one);
    }
  }
  if (each.size() > 1) {
    severalClasses.push_back(User(*each[0].second).Name() + " (" + each[0].first->name + " and " +
                             each[1].first->name + ')');
    if (format.severalClasses != SeveralClasses::kAll) {
      each.resize(format.severalClasses == SeveralClasses::kFirst ? 1 : 0);
    }
  }
  return each;
}

void Joiner::ChooseClassesOfStudents() {
  std::map<std::string, Enrollments> byStudent;
  for (Group* const group : inOrder) {
    for (const OneRosterEnrollment* const student : group->students) {
      byStudent[student->user].emplace_back(group, student);
    }
    group->students.clear();
  }
  for (const auto& [student, enrollments] : byStudent) {
    for (const auto& [group, enrollment] : Kept(enrollments)) {
      group->students.push_back(enrollment);
    }
  }
  for (Group* const group : inOrder) {
    std::sort(group->students.begin(), group->students.end(),
              [](const auto* a, const auto* b) { return a->number < b->number; });
  }
}

void Joiner::NameApart(bool byCode) {
  std::map<std::string, std::vector<Group*>> alike;
  for (Group* const group : inOrder) {
    alike[kivhost::FoldCase(byCode ? group->name : group->name + '\n' + group->teacher)].push_back(
        group);
  }
  for (const auto& [name, ofName] : alike) {
    for (Group* const group : ofName) {
      const std::string& mark = byCode ? group->facts->code : group->id;
      if (ofName.size() > 1 && !mark.empty()) {
        group->name += " (" + mark + ')';
        toldApart.push_back(group->name);
      }
    }
  }
}

void Joiner::AddLine(const Group& group, const OneRosterEnrollment* student) {
  RosterLine line;
  line.number = student != nullptr ? student->number : group.facts->number;
  line.file = student != nullptr ? kEnrollments : "classes.csv";
  line.teacher = group.teacher;
  line.group = group.name;
  if (student != nullptr) {
    const OneRosterUser& user = User(*student);
    line.first = user.given.empty() ? user.family : user.given;
    line.last = user.given.empty() ? "" : user.family;
  }
  const std::string names = line.teacher + line.group + line.first + line.last;
  if (kivhost::HasHiddenCharacter(names)) {
    roster.refused.push_back(
        {line.number, line.file, std::string(student != nullptr ? "student" : "class") + kHidden});
  } else if (student != nullptr && line.first.empty()) {
    roster.refused.push_back({line.number, line.file, "the student has no name in users.csv"});
  } else {
    roster.lines.push_back(std::move(line));
  }
}

void Joiner::MakeLines() {
  for (const Group* const group : inOrder) {
    if (group->students.empty()) {
      AddLine(*group, nullptr);
    }
    for (const OneRosterEnrollment* const student : group->students) {
      AddLine(*group, student);
    }
  }
}

void Joiner::Note(const std::string& what, const std::vector<std::string>& which) {
  if (!which.empty()) {
    roster.notes.push_back(what + Listed(which));
  }
}

void Joiner::NoteSameNames() {
  std::map<std::string, std::set<std::string>> byName;
  for (const Group* const group : inOrder) {
    if (!group->teachers.empty()) {
      byName[group->teacher].insert(group->teachers[0]->user);
    }
  }
  std::vector<std::string> same;
  for (const auto& [name, users] : byName) {
    if (users.size() > 1) {
      same.push_back(name);
    }
  }
  Note("teachers of one name, taken as one: ", same);
}

void Joiner::Tell() {
  const auto students = std::count_if(roster.lines.begin(), roster.lines.end(),
                                      [](const RosterLine& line) { return !line.first.empty(); });
  roster.readAs += "; " + kivhost::Counted(inOrder.size(), "class", "classes") + ", " +
                   kivhost::Counted(static_cast<size_t>(students), "student");
  if (bundle.gone > 0) {
    roster.notes.push_back(kivhost::Counted(bundle.gone, "row") +
                           " marked as deleted, inactive or disabled: left out");
  }
  if (otherRoles > 0) {
    roster.notes.push_back(kivhost::Counted(otherRoles, "enrollment") +
                           " of neither students nor teachers: left out");
  }
  Note("classes of several teachers, of whom the primary one or the first by name is taken: ",
       severalTeachers);
  const char* const taken = format.severalClasses == SeveralClasses::kAll     ? "all are taken"
                            : format.severalClasses == SeveralClasses::kFirst ? "the first is taken"
                                                                              : "none is taken";
  Note(std::string("students of several classes, of which ") + taken +
           " (--several-classes tells): ",
       severalClasses);
  Note("classes of one title, told apart: ", toldApart);
  NoteSameNames();
}

}  // namespace

void TakeOneRoster(const OneRoster& bundle, const RosterFormat& format, RosterFile& roster) {
  Joiner joiner(bundle, format, roster);
  joiner.TakeClasses();
  joiner.NameApart(true);
  joiner.ShareOut();
  joiner.ChooseTeachers();
  joiner.NameApart(false);
  joiner.ChooseClassesOfStudents();
  joiner.MakeLines();
  joiner.Tell();
}

}  // namespace kivadmin
