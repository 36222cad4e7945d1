#include "hosts/kivadmin/commands/command_line.h"

namespace kivadmin {

void AddStoreArguments(const Command& command, CommonOptions& common, bool mayBeNew) {
  command.AddRoot("ROOT", common.root,
                  "The data root of the store; where it is left out, KIVSTORE_ROOT is it",
                  mayBeNew);
  command.AddChoice<SiteKind>("--kind", common.kind, "The kind of site; without it the tree tells",
                              {{"local", SiteKind::kLocal},
                               {"shared", SiteKind::kShared},
                               {"teachers", SiteKind::kTeachers}});
  command.AddFlag(
      "--force", common.force,
      "Do it all the same: --kind against what the tree tells, over a file that is there");
  AddCharset(command, common,
             "The character set of the store's texts; else what kivstore.conf says, or "
             "windows-1252");
}

void AddChangeArguments(const Command& command, CommonOptions& common, bool mayBeNew) {
  AddStoreArguments(command, common, mayBeNew);
  command.AddFlag("-n,--dry-run", common.dryRun, "Say what would be done, and change nothing");
  command.AddFlag("--no-log", common.noLog, "Do not write into kivadmin.log what was done");
}

void AddCharset(const Command& command, CommonOptions& common, const char* ofWhat) {
  command.AddOption("--charset", common.charset, ofWhat).Takes("NAME");
}

void AddTeacherOption(const Command& command, EntryNames& names) {
  command
      .AddOption("-t,--teacher", names.teacher,
                 "The teacher: a name, or #N for its place; may be left out if there is only one")
      .Takes("NAME|#N");
}

CommandOption AddClassOption(const Command& command, EntryNames& names) {
  return command.AddOption("-c,--class", names.group, "The class: a name, or #N for its place")
      .Takes("NAME|#N");
}

CommandOption AddStudentOption(const Command& command, EntryNames& names) {
  return command
      .AddOption("-s,--student", names.student, "The student: a name, or #N for its place")
      .Takes("NAME|#N");
}

void AddFormat(const Command& command, bool& isJson, const char* other) {
  command.AddChoice<bool>("-f,--format", isJson, "The form of the report",
                          {{other, false}, {"json", true}}, other);
}

}  // namespace kivadmin
