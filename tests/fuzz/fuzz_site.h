// What stands around every target: files in memory, a clock that moves by itself so that no wait
// takes time, and the settings that a call of the library makes.
#pragma once

#include <string>

#include "app/zep_app.h"
#include "foundation/files/file_spec.h"
#include "foundation/files/file_type.h"
#include "tests/fuzz/memory_files.h"
#include "tests/support/test_clock.h"

namespace kivtest {

class FuzzSite {
 public:
  FuzzSite() {
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

// A local store at /root, as the library sees it during a call.
class LocalSite {
 public:
  LocalSite() {
    site.SetSiteMode(kivstore::kSiteLocal);
    app.SetProperty("Data", "/root");
  }

  kivstore::SSite site;

 private:
  kivstore::SZEPApp app{site};
};

inline std::string Bytes(const kivstore::SString& text) {
  return std::string(text.View());
}
inline kivstore::SString Text(const std::string& bytes) {
  return {bytes.data(), static_cast<int>(bytes.size())};
}

}  // namespace kivtest
