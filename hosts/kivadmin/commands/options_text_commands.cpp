// `options export` and `options import`: a level's options as a text file for hands.
#include <iostream>

#include "hosts/common/whole_file.h"
#include "hosts/kivadmin/commands/options_commands.h"
#include "hosts/kivadmin/options/options_import.h"
#include "hosts/kivadmin/options/options_text_file.h"

namespace kivadmin {
namespace {

struct TextFileArguments {
  EntryNames names;
  std::string file;
};

void Export(const CommonOptions& common, const TextFileArguments& arguments) {
  kivhost::NeedTarget(arguments.file, common.force);
  const Session session(common, Session::Access::kLook);
  const ChosenPlace chosen(session, arguments.names);
  kivstore::STeacherOptionsDob options;
  TryOptions(session, chosen.Get(), [&](auto& stored) { options.Copy(stored); });
  WriteOptionsText(options, arguments.file);
  if (arguments.file == "-") {
    return;
  }
  const bool isDecided = options.GetModified() > kivstore::SDateTime::None();
  std::cout << "exported the options of " << chosen.Text(session) << " to " << arguments.file
            << (isDecided ? "" : "; nothing is decided there yet") << '\n';
}

void SayKept(const OptionsTaken& result) {
  for (size_t i = 0; i < result.kept.size(); ++i) {
    const Option& option = result.kept[i];
    std::cerr << "kivadmin: " << option.key << " stays " << ValueText(option.value) << ", decided "
              << IsoTime(option.stamp) << ", which is after the file's "
              << ValueText(result.outdated[i].value) << '\n';
  }
}

std::string TakenText(const OptionsTaken& result) {
  std::string said;
  for (const Option& option : result.taken) {
    said += (said.empty() ? "set " : ", ") + option.key + '=' + ValueText(option.value);
  }
  return said.empty() ? "nothing to change" : said;
}

void Import(const CommonOptions& common, const TextFileArguments& arguments) {
  const OptionsText text(kivhost::NameOfFile(arguments.file), ReadOptionsText(arguments.file));
  const Session session(common, Session::Access::kChange);
  const ChosenPlace chosen(session, arguments.names);
  const OptionsTaken result = ImportOptions(session, chosen.Get(), text);
  SayKept(result);
  session.Say(TakenText(result) + " for " + chosen.Text(session));
}

}  // namespace

void AddOptionsExport(const Command& options, CommonOptions& common) {
  const Command command = options.AddCommand(
      "export",
      "Writes the options of the store, or of the class or student named, to a text file that\n"
      "import takes; where nothing is decided yet, the defaults");
  TextFileArguments& arguments = AddRun(command, common, Export);
  AddStoreArguments(command, common);
  AddLevelOptions(command, arguments.names);
  command.AddOption("FILE", arguments.file, "The text file; - is standard output").Require();
}

void AddOptionsImport(const Command& options, CommonOptions& common) {
  const Command command = options.AddCommand(
      "import",
      "Takes the options of a text file for the store, or for the class or student named. What\n"
      "was edited is decided now; what the store decided later stays; a line that is missing\n"
      "changes nothing. A file with a fault is refused as a whole.");
  TextFileArguments& arguments = AddRun(command, common, Import);
  AddChangeArguments(command, common);
  AddLevelOptions(command, arguments.names);
  command.AddOption("FILE", arguments.file, "The text file; - is standard input").Require();
}

}  // namespace kivadmin
