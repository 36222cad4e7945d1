// What the commands below `options` have in common.
#pragma once

#include <string>

#include "hosts/kivadmin/commands/command_line.h"
#include "hosts/kivadmin/options/option_levels.h"

namespace kivadmin {

// --teacher, --class and --student.
void AddLevelOptions(const Command& command, EntryNames& names);

void AddOptionsExport(const Command& options, CommonOptions& common);
void AddOptionsImport(const Command& options, CommonOptions& common);

// The place that the command line names; holds its entries.
class ChosenPlace {
 public:
  ChosenPlace(const Session& session, const EntryNames& names);
  ChosenPlace(const ChosenPlace&) = delete;
  ChosenPlace& operator=(const ChosenPlace&) = delete;

  const OptionsPlace& Get() const { return place; }
  std::string Text(const Session& session) const;

 private:
  kivstore::SLoginNameObj classEntry;
  kivstore::SLoginNameObj student;
  OptionsPlace place;
};

}  // namespace kivadmin
