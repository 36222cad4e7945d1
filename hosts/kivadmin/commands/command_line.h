// What the commands have in common on the command line.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "hosts/kivadmin/session/session.h"

namespace kivadmin {

// ROOT, --kind and --charset: what every command on a store takes.
void AddStoreArguments(CLI::App& command, CommonOptions& common);
// And --dry-run.
void AddChangeArguments(CLI::App& command, CommonOptions& common);
void AddCharset(CLI::App& command, CommonOptions& common, const char* ofWhat);

// Where an entry is, as options tell it.
struct EntryNames {
  std::string teacher;
  std::string group;  // the class
  std::string student;
};

void AddTeacherOption(CLI::App& command, EntryNames& names);
CLI::Option* AddClassOption(CLI::App& command, EntryNames& names);
CLI::Option* AddStudentOption(CLI::App& command, EntryNames& names);

// --format json, or `other` without it.
void AddFormat(CLI::App& command, bool& isJson, const char* other);

// Arguments that live as long as the command.
template <class Arguments>
using Run = void (*)(const CommonOptions&, const Arguments&);
template <class Arguments>
Arguments& AddRun(CLI::App& command, const CommonOptions& common, Run<Arguments> run) {
  const auto arguments = std::make_shared<Arguments>();
  command.callback([&common, arguments, run] { run(common, *arguments); });
  return *arguments;
}

}  // namespace kivadmin
