// The options of a store, level by level: one file for all classes of the selected teacher, one for
// a class, one for a student. Failures are thrown as AdminError.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "foundation/login_name.h"
#include "hosts/kivadmin/options/option_fields.h"

namespace kivadmin {

// Without a class the whole store, without a student the class. The entries are the caller's.
struct OptionsPlace {
  const kivstore::SLoginNameObj* classEntry = nullptr;
  const kivstore::SLoginNameObj* student = nullptr;
};

// An option in force and the level that decided it: "store", "class", "student", or "default" if
// nobody did.
struct DecidedOption {
  Option option;
  const char* level;
};

// The levels down to the place, laid over each other as the tutor does it. Nothing is locked,
// changed or repaired.
std::vector<DecidedOption> LayerOptions(const OptionsPlace& place);

// Changes the options of one level under its lock, over what the file holds now: only what `change`
// marked as decided is stored. A missing file is made, and in a shared store its lock file. With
// `dryRun` the file is read and the change tried, and that is all. A file that is there but cannot
// be read stays as it is.
void ChangeOptions(const OptionsPlace& place, bool dryRun,
                   const std::function<void(kivstore::STeacherOptionsDob&)>& change);

}  // namespace kivadmin
