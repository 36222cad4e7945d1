// `dump`: any file of a store as JSON.
#include <filesystem>
#include <iostream>

#include "hosts/common/store_conf.h"
#include "hosts/common/whole_file.h"
#include "hosts/kivadmin/checking/store_file.h"
#include "hosts/kivadmin/commands/command_line.h"
#include "hosts/kivadmin/commands/commands.h"

namespace kivadmin {
namespace {

// Beyond any file that the store writes; what is larger is not one.
constexpr size_t kMostBytes = 64 << 20;

struct DumpArguments {
  std::string file;
};

void Dump(const CommonOptions& common, const DumpArguments& arguments) {
  const auto charset = kivhost::NeedCharset(common.charset.value_or(kivhost::kDefaultCharset));
  const std::string name = std::filesystem::path(arguments.file).filename().string();
  const StoreFileDump dump = DumpStoreFile(
      name, kivhost::ReadWholeFile(arguments.file, kMostBytes, "a file of a store", kNoStore),
      *charset);
  std::cout << dump.json.dump(2) << '\n';
  kivhost::TellUnshown("kivadmin", *charset);
  if (!dump.trouble.empty()) {
    throw HostError(kRefused, kivhost::NameOfFile(arguments.file) + ": " + dump.trouble);
  }
}

}  // namespace

void AddDumpCommand(const Command& app, CommonOptions& common) {
  const Command command = app.AddCommand("dump", "Any file of a store as JSON");
  DumpArguments& arguments = AddRun(command, common, Dump);
  command.AddOption("FILE", arguments.file, "An index, options, game, last, long name or lock file")
      .Require();
  AddCharset(command, common, "The character set of the file's texts");
}

}  // namespace kivadmin
