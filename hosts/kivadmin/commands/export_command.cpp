#include <filesystem>
#include <fstream>
#include <iostream>

#include "foundation/site_mode.h"
#include "hosts/kivadmin/commands/commands.h"
#include "hosts/kivadmin/rosters/csv_reader.h"

namespace kivadmin {
namespace {

using kivstore::SLoginNameObj;

std::string LinesOfClass(const Session& session, const std::string& teacher,
                         const SLoginNameObj& group) {
  const std::string name = session.Show(group.firstName);
  const auto students = session.Students(group);
  if (students->list.GetSize() == 0) {
    return FormatCsv({teacher, name, "", ""});
  }
  std::string lines;
  for (int32_t i = 0; i < students->list.GetSize(); ++i) {
    const SLoginNameObj& student = *students->list.At(i);
    lines +=
        FormatCsv({teacher, name, session.Show(student.firstName), session.Show(student.lastName)});
  }
  return lines;
}

// Of the selected teacher.
std::string LinesOfClasses(const Session& session, const std::string& teacher) {
  const auto classes = session.Classes();
  std::string lines;
  for (int32_t i = 0; i < classes->list.GetSize(); ++i) {
    lines += LinesOfClass(session, teacher, *classes->list.At(i));
  }
  return lines.empty() && !teacher.empty() ? FormatCsv({teacher, "", "", ""}) : lines;
}

std::string LinesOfStore(const Session& session) {
  std::string lines = FormatCsv({"teacher", "class", "first_name", "last_name"});
  if (!session.HasTeachers()) {
    return lines + LinesOfClasses(session, "");
  }
  const auto teachers = session.Teachers();
  for (int32_t i = 0; i < teachers->list.GetSize(); ++i) {
    const SLoginNameObj& teacher = *teachers->list.At(i);
    SelectTeacher(&teacher);
    lines += LinesOfClasses(session, session.Show(teacher.firstName));
  }
  return lines;
}

void Export(const CommonOptions& common, const std::string& output) {
  const std::string lines = LinesOfStore(Session(common, Session::Access::kLook));
  if (output.empty()) {
    std::cout << lines;
    return;
  }
  std::ofstream file(std::filesystem::path(output), std::ios::binary);
  file << lines << std::flush;
  if (!file) {
    throw AdminError{kWrongUsage, output + ": could not be written"};
  }
}

}  // namespace

void AddExportCommand(CLI::App& app, CommonOptions& common) {
  CLI::App* const command = app.add_subcommand(
      "export", "Write the teachers, classes and students in the form that import takes");
  const auto output = std::make_shared<std::string>();
  AddStoreArguments(*command, common);
  command->add_option("--output", *output, "Write to this file instead of standard output")
      ->type_name("FILE");
  command->callback([&common, output] { Export(common, *output); });
}

}  // namespace kivadmin
