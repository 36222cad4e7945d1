// The options of a store, level by level: one file for all classes of the selected teacher, one for
// a class, one for a student. Failures are thrown as HostError.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "hosts/kivadmin/options/option_fields.h"
#include "hosts/kivadmin/session/session.h"

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
std::vector<DecidedOption> LayerOptions(const Session& session, const OptionsPlace& place);

using OptionsChange = std::function<void(kivstore::STeacherOptionsDob&)>;

// Reads the options of one level and tries a change on them, and that is all.
void TryOptions(const Session& session, const OptionsPlace& place, const OptionsChange& change);
// Changes the options of one level under its lock, over what the file holds now: only what `change`
// marked as decided is stored. A missing file is made, and in a shared store its lock file. A dry
// run tries. A file that is there but cannot be read stays as it is.
void ChangeOptions(const Session& session, const OptionsPlace& place, const OptionsChange& change);

// The file of the level; throws if its folder is missing.
kivstore::SFileSpec OptionsFileOf(const Session& session, const OptionsPlace& place);

}  // namespace kivadmin
