#include "hosts/kivadmin/commands/command_line.h"

namespace kivadmin {

void AddStoreArguments(CLI::App& command, CommonOptions& common) {
  command.add_option("ROOT", common.root, "The data root of the store")->required();
  command.add_option("--kind", common.kind, "The kind of site; without it the tree tells")
      ->transform(CLI::CheckedTransformer(
                      std::map<std::string, SiteKind>{{"local", SiteKind::kLocal},
                                                      {"shared", SiteKind::kShared},
                                                      {"teachers", SiteKind::kTeachers}},
                      CLI::ignore_case)
                      .description(""))
      ->type_name("local|shared|teachers");
  AddCharset(command, common, "The character set of the store's texts");
}

void AddChangeArguments(CLI::App& command, CommonOptions& common) {
  AddStoreArguments(command, common);
  command.add_flag("--dry-run", common.dryRun, "Say what would be done, and change nothing");
}

void AddCharset(CLI::App& command, CommonOptions& common, const char* ofWhat) {
  command.add_option("--charset", common.charset, ofWhat)->type_name("NAME")->capture_default_str();
}

void AddTeacherOption(CLI::App& command, EntryNames& names) {
  command
      .add_option("--teacher", names.teacher,
                  "The teacher: a name, or #N for its place; may be left out if there is only one")
      ->type_name("NAME|#N");
}

CLI::Option* AddClassOption(CLI::App& command, EntryNames& names) {
  return command.add_option("--class", names.group, "The class: a name, or #N for its place")
      ->type_name("NAME|#N");
}

CLI::Option* AddStudentOption(CLI::App& command, EntryNames& names) {
  return command.add_option("--student", names.student, "The student: a name, or #N for its place")
      ->type_name("NAME|#N");
}

void AddFormat(CLI::App& command, bool& isJson, const char* other) {
  command.add_option("--format", isJson, "The form of the report")
      ->transform(CLI::CheckedTransformer(
                      std::map<std::string, bool>{{other, false}, {"json", true}}, CLI::ignore_case)
                      .description(""))
      ->type_name(std::string(other) + "|json")
      ->default_str(other);
}

}  // namespace kivadmin
