// "longname.kiv" of any bytes, and what is made of the two names in it.
#include <algorithm>

#include "platform/base/bytes.h"
#include "store/list/name_derivation.h"
#include "tests/fuzz/fuzz_site.h"

namespace kivtest {
namespace {

using namespace kivstore;

bool IsPlain(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

int SignOf(int order) {
  return (order > 0) - (order < 0);
}

void CheckWriting(FuzzSite& site, const SFileSpec& file, const SLoginNameObj& names) {
  SLoginNameObj again;
  WriteLongName(site.Root(), names.firstName, names.lastName);
  Require(ReadLongName(file, again.firstName, again.lastName) &&
              again.firstName == names.firstName && again.lastName == names.lastName,
          "what was read survives being written");
}

void CheckFolderName(FuzzSite& site, const SLoginNameObj& names) {
  SFileSpec spec = site.Root();
  bool exists = true;
  const SString derived = DeriveFolderName(spec, names.firstName, names.lastName, exists);
  const std::string_view text = derived.View();
  Require(!text.empty() && text.size() <= static_cast<size_t>(kNameWidth) &&
              std::all_of(text.begin(), text.end(), IsPlain),
          "a folder's name is one to eight letters and digits");
  Require(!exists && spec.IsEqual(site.Root()), "a free name belongs to nobody");
}

void CheckOrder(const SLoginNameObj& a, const SLoginNameObj& b) {
  const SString nameA = DisplayName(a);
  const SString nameB = DisplayName(b);
  Require(
      SignOf(CompareDisplayNames(a, b)) == SignOf(CompareBytesNoCase(nameA.View(), nameB.View())),
      "names compare as they are shown");
}

void Run(const std::string& bytes) {
  FuzzSite site;
  const SFileSpec file = site.FileOf(bytes, "longname.kiv");
  SLoginNameObj names;
  Require(ReadLongName(file, names.firstName, names.lastName), "a file that can be opened is read");
  CheckWriting(site, file, names);
  CheckFolderName(site, names);
  CheckOrder(names, {names.lastName, names.firstName, SString()});
  CheckOrder(names, {DisplayName(names), SString(), SString()});
  CheckOrder(names, {names.firstName, SString(), SString()});
}

}  // namespace
}  // namespace kivtest

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  kivtest::Run({reinterpret_cast<const char*>(data), size});
  return 0;
}
