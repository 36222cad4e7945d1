// Which of a store's entries a report tells of, and in what order.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "hosts/kivreport/model.h"

namespace kivreport {

// One entry of a list, by name (letter case ignored) or by its place: "#2". Empty takes all.
class Selector {
 public:
  Selector() = default;
  // Throws wrong usage if a place is no number from 1.
  explicit Selector(const std::string& text);

  bool IsAll() const { return place == 0 && text.empty(); }
  bool Takes(const std::string& name, size_t number) const;
  // An entry that stands in no list any more: by name alone.
  bool TakesName(const std::string& name) const;
  const std::string& Text() const { return text; }

 private:
  std::string text;  // as it was given
  std::string folded;
  size_t place = 0;
};

enum class Sort { kStore, kName, kMission };

struct Selection {
  Selector teacher;
  Selector group;
  Selector student;
  std::optional<int> lowestMission;
  std::optional<int> highestMission;
  Sort sort = Sort::kStore;

  bool TakesMission(int mission) const;
  bool LimitsMissions() const { return lowestMission || highestMission; }
  bool LimitsStudents() const { return !student.IsAll() || LimitsMissions(); }
};

// What the lists held that were looked through, for telling why nothing was found.
struct Sought {
  bool hasTeachers = false;  // a store with a teacher level
  std::vector<std::string> teachers;
  size_t teachersTaken = 0;
  std::vector<std::string> classes;  // of the teachers that were taken
  size_t classesTaken = 0;
  std::vector<std::string> students;  // of the classes that were taken, if one was looked for
  size_t studentsTaken = 0;

  bool FoundNothing(const Selection& selection) const {
    return (selection.LimitsStudents() ? studentsTaken : classesTaken) == 0;
  }
};

// Leaves out whoever is not asked for and sorts the others; of a report also the classes and
// teachers of whom nobody that was asked for is left, unless their lists could not be read. Who
// could not be read stays, behind the others in an order by mission, unless another name was asked
// for.
void Arrange(Class& group, const Selection& selection, Sought& sought);
void Arrange(Report& report, const Selection& selection, Sought& sought);

// "no class "9z"; there are: Room 12, Empty".
std::string NothingText(const Selection& selection, const Sought& sought);

}  // namespace kivreport
