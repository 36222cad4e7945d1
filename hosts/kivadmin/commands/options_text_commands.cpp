// `options export` and `options import`: a level's options as a text file for hands.
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <utility>

#include "archive/pref_file.h"
#include "hosts/common/console.h"
#include "hosts/kivadmin/commands/options_commands.h"
#include "hosts/kivadmin/options/options_import.h"
#include "platform/platform.h"
#include "store/place/layout.h"

namespace kivadmin {
namespace {

namespace fs = std::filesystem;
using kivstore::SFileSpec;
using kivstore::STeacherOptionsDob;

struct TextFileLine {
  CommonOptions* common;
  EntryNames names;
  std::string file;
  bool force = false;
};

// For a file that is none of the store's.
class CreatingScope {
 public:
  CreatingScope() : before(kivstore::Platform().files) {
    kivstore::Platform().files = &kivstore::CreatingFileServices();
  }
  ~CreatingScope() { kivstore::Platform().files = before; }
  CreatingScope(const CreatingScope&) = delete;
  CreatingScope& operator=(const CreatingScope&) = delete;

 private:
  kivstore::IFileServices* before;
};

// A full disk is told by nothing but the text that arrived.
bool SaveAndCompare(STeacherOptionsDob& options, const fs::path& path) {
  const CreatingScope scope;
  const std::string libraryPath = kivhost::ToLibraryPath(path.string());
  SFileSpec spec{kivstore::SString(libraryPath.c_str())};
  STeacherOptionsDob stored;
  if (!options.SaveToPref(spec, kOptionsSection, false) || !spec.Refresh() ||
      !stored.LoadFromPref(spec, kOptionsSection, false)) {
    return false;
  }
  // Loading leaves a per-game record of defaults where the text says that there is none.
  if (options.gameOptions == nullptr) {
    delete std::exchange(stored.gameOptions, nullptr);
  }
  return stored.IsEqual(options);
}

// Beside the file and then into its place, so that one that is there stays until the new is whole.
void WriteText(STeacherOptionsDob& options, const std::string& file) {
  std::error_code error;
  const fs::path target = fs::absolute(fs::path(file), error);
  fs::path beside = target;
  beside += ".new";
  fs::remove(beside, error);
  const bool isSaved = SaveAndCompare(options, beside);
  if (isSaved) {
    fs::rename(beside, target, error);
  }
  if (!isSaved || error) {
    std::error_code ignored;
    fs::remove(beside, ignored);
    throw AdminError{kWrongUsage, file +
                                      ": could not be written; look at its folder, permissions "
                                      "and free space"};
  }
}

void Export(const TextFileLine& line) {
  std::error_code error;
  if (!line.force && fs::exists(fs::path(line.file), error)) {
    throw AdminError{kWrongUsage, line.file + ": is there already; --force replaces it"};
  }
  STeacherOptionsDob options;
  std::string whose;
  {
    Session session(*line.common, Session::Access::kLook);
    const ChosenPlace chosen(session, line.names);
    ChangeOptions(chosen.Get(), true, [&](auto& stored) { options.Copy(stored); });
    whose = chosen.Text(session);
  }
  WriteText(options, line.file);
  const bool isDecided = options.GetModified() > kivstore::SDateTime::None();
  std::cout << "exported the options of " << whose << " to " << line.file
            << (isDecided ? "" : "; nothing is decided there yet") << '\n';
}

std::string ReadText(const std::string& file) {
  std::error_code error;
  const fs::path path(file);
  std::ifstream stream(path, std::ios::binary);
  if (!stream || fs::is_directory(path, error)) {
    throw AdminError{kWrongUsage, file + ": could not be read"};
  }
  std::string text;
  char block[1 << 16];
  while (stream.read(block, sizeof block), stream.gcount() > 0) {
    text.append(block, static_cast<size_t>(stream.gcount()));
    if (std::ssize(text) > kivstore::SPrefFile::kLongestText) {
      throw AdminError{kWrongUsage, file + ": too large for a file of options"};
    }
  }
  return text;
}

// What keeps the text's time, under the lock that ChangeOptions holds: it stores what is decided
// now, and over a missing file everything.
void StoreTimes(STeacherOptionsDob& options, const OptionsPlace& place) {
  SFileSpec spec;
  kivstore::OptionsFile(spec, place.classEntry, place.student);
  if (spec.IsExistingFile() && !options.SaveToFile(spec)) {
    throw AdminError{kNoStore, "the options file cannot be written"};
  }
}

OptionsTaken Import(const OptionsPlace& place, bool dryRun, const OptionsText& text) {
  OptionsTaken result;
  ChangeOptions(place, dryRun, [&](STeacherOptionsDob& options) {
    result = TakeOptions(options, text);
    if (result.hasTimes && !dryRun) {
      StoreTimes(options, place);
    }
  });
  return result;
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

// Tried first, so that what changes nothing leaves the store's files alone.
void Import(const TextFileLine& line) {
  const OptionsText text(line.file, ReadText(line.file));
  Session session(*line.common, Session::Access::kChange);
  const ChosenPlace chosen(session, line.names);
  OptionsTaken result = Import(chosen.Get(), true, text);
  if (!result.taken.empty() && !session.IsDryRun()) {
    result = Import(chosen.Get(), false, text);
  }
  SayKept(result);
  session.Say(TakenText(result) + " for " + chosen.Text(session));
}

}  // namespace

void AddOptionsExport(CLI::App& options, CommonOptions& common) {
  const auto line = std::make_shared<TextFileLine>();
  line->common = &common;
  CLI::App* const command = options.add_subcommand(
      "export",
      "Writes the options of the store, or of the class or student named, to a text file that\n"
      "import takes; where nothing is decided yet, the defaults");
  AddStoreArguments(*command, common);
  AddLevelOptions(*command, line->names);
  command->add_option("FILE", line->file, "The text file")->required();
  command->add_flag("--force", line->force, "Replace the file if it is there");
  command->callback([line] { Export(*line); });
}

void AddOptionsImport(CLI::App& options, CommonOptions& common) {
  const auto line = std::make_shared<TextFileLine>();
  line->common = &common;
  CLI::App* const command = options.add_subcommand(
      "import",
      "Takes the options of a text file for the store, or for the class or student named. What\n"
      "was edited is decided now; what the store decided later stays; a line that is missing\n"
      "changes nothing. A file with a fault is refused as a whole.");
  AddChangeArguments(*command, common);
  AddLevelOptions(*command, line->names);
  command->add_option("FILE", line->file, "The text file")->required();
  command->callback([line] { Import(*line); });
}

}  // namespace kivadmin
