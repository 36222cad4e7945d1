#include "hosts/kivreport/model.h"

namespace kivreport {

size_t Report::CountStudents() const {
  size_t count = 0;
  for (const Teacher& teacher : teachers) {
    for (const Class& group : teacher.classes) {
      count += group.students.size();
    }
  }
  return count;
}

size_t Report::CountClasses() const {
  size_t count = 0;
  for (const Teacher& teacher : teachers) {
    count += teacher.classes.size();
  }
  return count;
}

}  // namespace kivreport
