// What stands around every target: files in memory, a clock that moves by itself so that no wait
// takes time, and the settings that a call of the library makes.
#pragma once

#include <string>

#include "foundation/files/file_spec.h"
#include "foundation/files/file_type.h"
#include "foundation/site_mode.h"
#include "tests/fuzz/memory_files.h"
#include "tests/fuzz/require.h"
#include "tests/support/test_clock.h"

namespace kivtest {

class FuzzSite {
 public:
  FuzzSite() {
    kivstore::gFileVersion = kivstore::PackVersion("0.01");
    kivstore::RegisterFileType(kivstore::kFileTypeGame, "Game File|Game Files|zep|Game|1");
    files.PutFolder("root");
  }
  ~FuzzSite() { Require(files.OpenHandles() == 0, "every file is closed again"); }

  // The one file of most targets.
  kivstore::SFileSpec FileOf(const std::string& bytes, const char* name) {
    files.Put(std::string("root/") + name, bytes);
    return kivstore::SFileSpec(kivstore::SString(("/root/" + std::string(name)).c_str()));
  }
  kivstore::SFileSpec Root() const { return kivstore::SFileSpec("/root"); }
  std::string Stored(const char* name) const { return files.BytesOf(std::string("root/") + name); }

  MemoryFiles files;

 private:
  TestClock clock{1000};
  kivstore::SPlatformOverride<kivstore::IFileServices> installed{kivstore::Platform().files,
                                                                 &files};
};

inline kivstore::SString TextOf(const std::string& bytes) {
  return {bytes.data(), static_cast<int>(bytes.size())};
}

}  // namespace kivtest
