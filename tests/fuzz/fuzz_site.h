// What stands around every target: a store in a temporary folder, file services that fail and count
// on demand, a clock that moves by itself so that no wait takes time, and the settings that a call
// of the library makes.
#pragma once

#include <string>

#include "app/zep_app.h"
#include "foundation/files/file_spec.h"
#include "foundation/files/file_type.h"
#include "tests/fuzz/fuzz_target.h"
#include "tests/support/fault_file_services.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_clock.h"

namespace kivtest {

inline std::string Bytes(const kivstore::SString& text) {
  return std::string(text.View());
}
inline kivstore::SString Text(const std::string& bytes) {
  return {bytes.data(), static_cast<int>(bytes.size())};
}

class FuzzSite {
 public:
  FuzzSite() {
    kivstore::RegisterFileType(kivstore::kFileTypeGame, "Game File|Game Files|zep|Game|1");
  }
  ~FuzzSite() { Require(files.OpenPaths().empty(), "every file is closed again"); }

  // The one file of most targets.
  kivstore::SFileSpec FileOf(const std::string& bytes, const char* name) const {
    folder.WriteFile(name, bytes);
    return kivstore::SFileSpec(Text(folder.Path(name)));
  }
  kivstore::SFileSpec Root() const { return kivstore::SFileSpec(Text(folder.Path())); }
  std::string Stored(const char* name) const { return folder.ReadFile(name); }

  TempFolder folder;
  kivstore::IFileServices& disk = *kivstore::Platform().files;
  FaultFileServices files{disk};

 private:
  TestClock clock{1000};
  kivstore::SPlatformOverride<kivstore::IFileServices> installed{kivstore::Platform().files,
                                                                 &files};
};

}  // namespace kivtest
