#include "game/current_user.h"

#include "store/place/display_name.h"

namespace kivstore {

CurrentUser::CurrentUser() {
  MakeDefaultEntry(classEntry);
}

CurrentUser& CurrentUser::operator=(const CurrentUser& other) {
  if (this == &other) {
    return *this;
  }
  classEntry = other.classEntry;
  studentEntry = other.studentEntry;
  valid = other.valid;
  if (other.teacherEntry == nullptr) {
    ClearTeacher();
  } else {
    SetTeacher(*other.teacherEntry);
  }
  return *this;
}

void CurrentUser::Clear() {
  MakeDefaultEntry(classEntry);
  studentEntry = SLoginNameObj();
  ClearTeacher();
  valid = false;
}

void CurrentUser::SetTeacher(const SLoginNameObj& entry) {
  if (teacherEntry == nullptr) {
    teacherEntry.reset(new (std::nothrow) SLoginNameObj);
  }
  if (teacherEntry != nullptr) {
    *teacherEntry = entry;
  }
}

}  // namespace kivstore
