// What the commands have in common on the command line.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "hosts/common/command_line.h"
#include "hosts/kivadmin/session/session.h"

namespace kivadmin {

using kivhost::Command;
using kivhost::CommandOption;

// ROOT, --kind and --charset: what every command on a store takes. `mayBeNew`: no folder has to be
// there yet.
void AddStoreArguments(const Command& command, CommonOptions& common, bool mayBeNew = false);
// And --dry-run and --no-log.
void AddChangeArguments(const Command& command, CommonOptions& common, bool mayBeNew = false);
void AddCharset(const Command& command, CommonOptions& common, const char* ofWhat);

// Where an entry is, as options tell it.
struct EntryNames {
  std::string teacher;
  std::string group;  // the class
  std::string student;
};

void AddTeacherOption(const Command& command, EntryNames& names);
CommandOption AddClassOption(const Command& command, EntryNames& names);
CommandOption AddStudentOption(const Command& command, EntryNames& names);

// --format json, or `other` without it.
void AddFormat(const Command& command, bool& isJson, const char* other);

// Arguments that live as long as the command.
template <class Arguments>
using Run = void (*)(const CommonOptions&, const Arguments&);
template <class Arguments>
Arguments& AddRun(const Command& command, const CommonOptions& common, Run<Arguments> run) {
  const auto arguments = std::make_shared<Arguments>();
  command.OnRun([&common, arguments, run] { run(common, *arguments); });
  return *arguments;
}

}  // namespace kivadmin
