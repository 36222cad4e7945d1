// Who is logged in. In this library nobody is: it stays cleared.
#pragma once

#include <memory>

#include "store/place/login_name.h"

namespace kivstore {

class CurrentUser {
 public:
  CurrentUser();
  CurrentUser(const CurrentUser& other) : CurrentUser() { *this = other; }
  CurrentUser& operator=(const CurrentUser& other);
  ~CurrentUser() = default;

  // Class "Default", a student without a name, no teacher, not valid.
  void Clear();
  void SetTeacher(const SLoginNameObj& entry);
  void ClearTeacher() { teacherEntry.reset(); }

  SLoginNameObj classEntry;
  SLoginNameObj studentEntry;
  std::unique_ptr<SLoginNameObj> teacherEntry;
  bool valid = false;
};

}  // namespace kivstore
