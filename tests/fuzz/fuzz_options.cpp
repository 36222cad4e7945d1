// "options.kiv" of any bytes.
#include "records/tutor_options_dob.h"
#include "tests/fuzz/fuzz_site.h"

namespace kivtest {
namespace {

using namespace kivstore;

void CheckWriting(FuzzSite& site, SFileSpec& file, STeacherOptionsDob& options) {
  STeacherOptionsDob again;
  Require(options.SaveToFile(file), "options that were read can be written");
  Require(again.LoadFromFile(file) && again.IsEqual(options),
          "what was read survives being written");
  const std::string written = site.Stored("options.kiv");
  Require(again.SaveToFile(file) && site.Stored("options.kiv") == written,
          "writing again changes nothing");
}

void CheckMerging(const SFileSpec& file, const STeacherOptionsDob& options) {
  STeacherOptionsDob merged(options);
  Require(merged.IsEqual(options), "a copy is equal");
  Require(merged.MergeFromFile(file) && merged.IsEqual(options),
          "options merged with themselves stay as they are");
  STeacherOptionsDob defaults;
  defaults.Merge(options);
  defaults.MarkDifferences(options);
  defaults.ClearStamps();
}

void Run(const std::string& bytes) {
  FuzzSite site;
  SFileSpec file = site.FileOf(bytes, "options.kiv");
  STeacherOptionsDob options;
  int32_t status = SDob::kVersionEqual;
  const bool headFits = SDob::CheckFileVersion(status, file, gFileVersion);
  const bool loaded = options.LoadFromFile(file);
  Require(headFits || !loaded, "a file of another kind or version is not read");
  Require(site.Stored("options.kiv") == bytes, "reading changes nothing");
  if (loaded) {
    CheckMerging(file, options);
    CheckWriting(site, file, options);
  }
}

}  // namespace
}  // namespace kivtest

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  kivtest::Run({reinterpret_cast<const char*>(data), size});
  return 0;
}
