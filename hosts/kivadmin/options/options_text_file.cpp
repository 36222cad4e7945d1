#include "hosts/kivadmin/options/options_text_file.h"

#include <filesystem>
#include <iostream>
#include <utility>

#include "archive/pref_file.h"
#include "hosts/common/console.h"
#include "hosts/common/scratch_folder.h"
#include "hosts/common/whole_file.h"
#include "hosts/kivadmin/options/options_text.h"
#include "hosts/kivadmin/session/file_services_scope.h"

namespace kivadmin {
namespace {

namespace fs = std::filesystem;
using kivhost::HostError;
using kivhost::kWrongUsage;
using kivstore::SFileSpec;
using kivstore::STeacherOptionsDob;

// A full disk is told by nothing but the text that arrived.
bool SaveAndCompare(STeacherOptionsDob& options, const fs::path& path) {
  const FileServicesScope scope(kivstore::CreatingFileServices());
  const std::string libraryPath = kivhost::ToLibraryPath(path.string());
  SFileSpec spec{kivstore::SString(libraryPath.c_str())};
  STeacherOptionsDob stored;
  if (!options.SaveToPref(spec, kOptionsSection) || !spec.Refresh() ||
      !stored.LoadFromPref(spec, kOptionsSection)) {
    return false;
  }
  // Loading leaves a per-game record of defaults where the text says that there is none.
  if (options.gameOptions == nullptr) {
    delete std::exchange(stored.gameOptions, nullptr);
  }
  return stored.IsEqual(options);
}

void PrintOptionsText(STeacherOptionsDob& options) {
  const kivhost::ScratchFolder scratch;
  const std::string written = scratch.PathOf("options.txt");
  if (!SaveAndCompare(options, written)) {
    throw HostError(kWrongUsage, scratch.Path() + ": a temporary file could not be written");
  }
  std::cout << ReadOptionsText(written);
}

}  // namespace

void WriteOptionsText(STeacherOptionsDob& options, const std::string& file) {
  if (file == "-") {
    PrintOptionsText(options);
    return;
  }
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
    throw HostError(kWrongUsage, file +
                                     ": could not be written; look at its folder, permissions "
                                     "and free space");
  }
}

std::string ReadOptionsText(const std::string& file) {
  return kivhost::ReadWholeFile(file, kivstore::SPrefFile::kLongestText, "a file of options",
                                kWrongUsage);
}

}  // namespace kivadmin
