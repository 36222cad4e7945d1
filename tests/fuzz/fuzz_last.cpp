// "last.kiv" of any bytes: a file of some type is recorded in it.
#include <algorithm>

#include "store/change/maintenance.h"
#include "store/place/layout.h"
#include "tests/fuzz/fuzz_input.h"
#include "tests/fuzz/fuzz_site.h"
#include "tests/store/store_scope.h"

namespace kivtest {
namespace {

using namespace kivstore;

constexpr const char* kFile = "Classes.zep/last.kiv";

// The application object of a local store, without records.
class LocalApp {
 public:
  LocalApp() {
    app.SetProperty("Data", "/root");
    gApp = &app;
  }
  ~LocalApp() { gApp = nullptr; }
  LocalApp(const LocalApp&) = delete;
  LocalApp& operator=(const LocalApp&) = delete;

 private:
  SZEPApp app;
  const SiteScope site{kSiteLocal};
};

std::string Without(std::string text, const std::string& signs) {
  std::erase_if(text, [&](char c) { return signs.find(c) != std::string::npos; });
  return text;
}

// The name that is found, or "(none)".
std::string Last(const std::string& extension) {
  SFileSpec spec;
  if (!FindLastFile(spec, nullptr, nullptr, TextOf(extension), false)) {
    return "(none)";
  }
  const std::string name = Bytes(spec.GetFileName());
  Require(spec.Up() && Bytes(spec.GetPath()) == "\\root\\Classes.zep\\",
          "what is found lies in the folder itself");
  return name;
}

void CheckRecording(const FuzzSite& site, const std::string& base, const std::string& extension,
                    const std::string& otherExtension) {
  const std::string name = base + "." + extension;
  const std::string before = site.Stored(kFile);
  const std::string lastBefore = Last(extension);
  const std::string otherBefore = Last(otherExtension);
  Require(site.Stored(kFile) == before, "looking changes nothing");
  RecordLastFile(nullptr, nullptr, TextOf(name), TextOf(extension));
  const std::string after = site.Stored(kFile);
  if (after == before) {
    Require(Last(extension) == lastBefore, "a list that stays tells the same");
  } else if (IsSafeName(TextOf(name))) {
    Require(Last(extension) == name, "a name that was recorded is found");
  }
  if (TextOf(otherExtension).CompareNoCase(TextOf(extension)) != 0 && otherBefore != "(none)" &&
      otherExtension.size() >= extension.size()) {
    Require(Last(otherExtension) == otherBefore, "other types keep their file");
  }
  RecordLastFile(nullptr, nullptr, TextOf(name), TextOf(extension));
  Require(site.Stored(kFile) == after, "recording again changes nothing");
}

void Run(FuzzInput input) {
  const std::string extension = Without(input.Text(), std::string(".\0", 2));
  const std::string otherExtension = Without(input.Text(), std::string(".\0", 2));
  const std::string base = Without(input.Text(), std::string("\0", 1));
  FuzzSite site;
  const LocalApp app;
  site.FileOf(input.Rest(), kFile);
  CheckRecording(site, base, extension, otherExtension);
}

}  // namespace
}  // namespace kivtest

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  kivtest::Run({data, size});
  return 0;
}
