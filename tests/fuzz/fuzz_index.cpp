// "index.kiv" of any bytes.
#include "store/list/index_file.h"
#include "tests/fuzz/fuzz_site.h"

namespace kivtest {
namespace {

using namespace kivstore;

constexpr size_t kLeastRecord = 3;

bool IsEqual(const SLoginNameObj& a, const SLoginNameObj& b) {
  return a.folderName == b.folderName && a.firstName == b.firstName && a.lastName == b.lastName;
}

bool IsEqual(const SOurFileObj& a, const SOurFileObj& b) {
  return a.fileName == b.fileName && a.longName == b.longName && a.extension == b.extension;
}

bool IsEqual(const SIndexObj& a, const SIndexObj& b) {
  bool equal =
      a.logins->GetSize() == b.logins->GetSize() && a.files->GetSize() == b.files->GetSize();
  for (int32_t i = 0; equal && i < a.logins->GetSize(); ++i) {
    equal = IsEqual(*a.LoginAt(i), *b.LoginAt(i));
  }
  for (int32_t i = 0; equal && i < a.files->GetSize(); ++i) {
    equal = IsEqual(*a.FileAt(i), *b.FileAt(i));
  }
  return equal;
}

bool ReadWhole(SFileSpec file, SIndexObj& index) {
  index.NeedLogins();
  index.NeedFiles();
  return ReadIndex(file, &index);
}

void CheckWriting(FuzzSite& site, const SFileSpec& file, SIndexObj& index) {
  SIndexObj again;
  Require(WriteIndex(site.Root(), index), "an index that was read can be written");
  Require(ReadWhole(file, again) && IsEqual(index, again), "what was read survives being written");
  const std::string written = site.Stored("index.kiv");
  SIndexObj loginsOnly;
  SFileSpec spec(file);
  loginsOnly.NeedLogins();
  Require(ReadIndex(spec, &loginsOnly) && WriteIndex(site.Root(), loginsOnly) &&
              site.Stored("index.kiv") == written,
          "a half that is not held stays in the file");
}

void Run(const std::string& bytes) {
  FuzzSite site;
  const SFileSpec file = site.FileOf(bytes, "index.kiv");
  SIndexObj index;
  Require(ReadWhole(file, index), "a file that can be opened is read");
  const auto entries = static_cast<size_t>(index.logins->GetSize() + index.files->GetSize());
  Require(entries <= bytes.size() / kLeastRecord + 2, "no more entries than the file can hold");
  if (index.incomplete) {
    Require(WriteIndex(site.Root(), index) && site.Stored("index.kiv") == bytes,
            "a file that was not read to its end is not written over");
  } else {
    CheckWriting(site, file, index);
  }
}

}  // namespace
}  // namespace kivtest

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  kivtest::Run({reinterpret_cast<const char*>(data), size});
  return 0;
}
