// `dump`: any file of a store as JSON.
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>

#include "hosts/kivadmin/commands/commands.h"
#include "hosts/kivadmin/files/store_file.h"

namespace kivadmin {
namespace {

// Beyond any file that the store writes; what is larger is not one.
constexpr std::streamsize kMostBytes = 64 << 20;

std::string ReadBytes(const std::string& path) {
  std::error_code error;
  std::ifstream file(std::filesystem::path(path), std::ios::binary);
  if (!file || std::filesystem::is_directory(path, error)) {
    throw AdminError{kNoStore, path + ": cannot be read"};
  }
  std::string bytes;
  char block[1 << 16];
  while (file.read(block, sizeof block), file.gcount() > 0) {
    bytes.append(block, static_cast<size_t>(file.gcount()));
    if (std::ssize(bytes) > kMostBytes) {
      throw AdminError{kNoStore, path + ": too large for a file of a store"};
    }
  }
  return bytes;
}

void Dump(const std::string& path, const std::string& charsetName) {
  const auto charset = OpenCharset(charsetName);
  const std::string name = std::filesystem::path(path).filename().string();
  const StoreFileDump dump = DumpStoreFile(name, ReadBytes(path), *charset);
  std::cout << dump.json.dump(2) << '\n';
  if (!dump.trouble.empty()) {
    throw AdminError{kRefused, path + ": " + dump.trouble};
  }
}

}  // namespace

void AddDumpCommand(CLI::App& app, CommonOptions& common) {
  const auto path = std::make_shared<std::string>();
  CLI::App* const command = app.add_subcommand("dump", "Any file of a store as JSON");
  command->add_option("FILE", *path, "An index, options, game, last, long name or lock file")
      ->required();
  command->add_option("--charset", common.charset, "The character set of the file's texts")
      ->type_name("NAME")
      ->capture_default_str();
  command->callback([path, &common] { Dump(*path, common.charset); });
}

}  // namespace kivadmin
