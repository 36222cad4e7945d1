// One file of the store, of any bytes. The first byte says which, the rest is its content.
#include <algorithm>
#include <iterator>

#include "archive/dob_binary_archive.h"
#include "platform/base/bytes.h"
#include "store/change/last_file.h"
#include "store/list/index_file.h"
#include "store/list/long_name.h"
#include "store/list/name_derivation.h"
#include "store/place/display_name.h"
#include "store/place/store_names.h"
#include "tests/fuzz/fuzz_site.h"
#include "tests/fuzz/fuzz_target.h"
#include "tests/support/record_bytes.h"
#include "tests/support/test_game.h"

namespace kivtest {
namespace {

using namespace kivstore;

void RunIndex(FuzzInput input) {
  constexpr size_t kLeastRecord = 3;
  const std::string bytes = input.Rest();
  FuzzSite site;
  SFileSpec file = site.FileOf(bytes, "index.kiv"), again = file;
  SIndexObj index, loginsOnly;
  index.NeedLogins();
  index.NeedFiles();
  Require(ReadIndex(file, index), "a file that can be opened is read");
  const auto entries = static_cast<size_t>(index.logins->GetSize() + index.files->GetSize());
  Require(entries <= bytes.size() / kLeastRecord + 2, "no more entries than the file can hold");
  Require(WriteIndex(site.Root(), index), "an index that was read can be written");
  if (index.incomplete) {
    Require(site.Stored("index.kiv") == bytes,
            "a file that was not read to its end is not written over");
    return;
  }
  if (index.torn) {
    SIndexObj torn;
    SFileSpec spec = again;
    Require(ReadIndex(spec, torn) && torn.torn, "torn is torn until the folders were asked");
    index.torn = false;
    WriteIndex(site.Root(), index);
  }
  const std::string written = site.Stored("index.kiv");
  const IndexImage before = ReadIndexBytes(bytes), after = ReadIndexBytes(written);
  Require(before.isTorn || (after.logins == before.logins && after.files == before.files),
          "what was read survives being written");
  Require(!after.isTorn && after.length == written.size(), "an index that is written is whole");
  loginsOnly.NeedLogins();
  Require(ReadIndex(again, loginsOnly) &&
              (loginsOnly.torn ||
               (WriteIndex(site.Root(), loginsOnly) && site.Stored("index.kiv") == written)),
          "a half that is not held stays in the file");
}

int SignOf(int order) {
  return (order > 0) - (order < 0);
}

void CheckFolderName(const FuzzSite& site, const SLoginNameObj& names) {
  SFileSpec spec = site.Root();
  bool exists = true;
  const SString derived = DeriveFolderName(spec, names.firstName, names.lastName, exists);
  const std::string_view text = derived.View();
  const auto isPlain = [](char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
  };
  Require(!text.empty() && text.size() <= static_cast<size_t>(kNameWidth) &&
              std::all_of(text.begin(), text.end(), isPlain),
          "a folder's name is one to eight letters and digits");
  Require(!exists && spec.IsEqual(site.Root()), "a free name belongs to nobody");
}

void CheckOrder(const SLoginNameObj& a, const SLoginNameObj& b) {
  const SString nameA = DisplayName(a), nameB = DisplayName(b);
  Require(
      SignOf(CompareDisplayNames(a, b)) == SignOf(CompareBytesNoCase(nameA.View(), nameB.View())),
      "names compare as they are shown");
}

void RunLongName(FuzzInput input) {
  FuzzSite site;
  const SFileSpec file = site.FileOf(input.Rest(), "longname.kiv");
  SLoginNameObj names, again;
  ReadLongName(file, names.firstName, names.lastName);  // also what is left of a torn one
  WriteLongName(site.Root(), names.firstName, names.lastName);
  Require(ReadLongName(file, again.firstName, again.lastName) &&
              again.firstName == names.firstName && again.lastName == names.lastName,
          "what was read survives being written");
  CheckFolderName(site, names);
  CheckOrder(names, {names.lastName, names.firstName, SString()});
  CheckOrder(names, {DisplayName(names), SString(), SString()});
  CheckOrder(names, {names.firstName, SString(), SString()});
}

// A record that was read: what `save` writes reads back as it was, and writing again changes
// nothing.
template <class Record, class Save, class Load>
void CheckWriting(const FuzzSite& site, const char* name, Record& record, Record& again, Save save,
                  Load load) {
  Require(save(record) && load(again) && again.IsEqual(record),
          "what was read survives being written");
  const std::string written = site.Stored(name);
  Require(save(again) && site.Stored(name) == written, "writing again changes nothing");
}

void RunOptions(FuzzInput input) {
  const std::string bytes = input.Rest();
  FuzzSite site;
  SFileSpec file = site.FileOf(bytes, "options.kiv");
  STeacherOptionsDob options, again, defaults;
  int32_t status = SDob::kVersionEqual;
  const bool headFits = SDob::CheckFileVersion(status, file, gFileVersion);
  const bool loaded = options.LoadFromFile(file);
  Require(headFits || !loaded, "a file of another kind or version is not read");
  Require(site.Stored("options.kiv") == bytes, "reading changes nothing");
  if (!loaded) {
    return;
  }
  STeacherOptionsDob merged(options);
  Require(merged.MergeFromFile(file) && merged.IsEqual(options),
          "options merged with themselves stay as they are");
  defaults.Merge(options);
  defaults.MarkDifferences(options);
  defaults.ClearStamps();
  CheckWriting(
      site, "options.kiv", options, again, [&](SDob& dob) { return dob.SaveToFile(file); },
      [&](SDob& dob) { return dob.LoadFromFile(file); });
}

bool Write(SGameDob& game, const SFileSpec& file) {
  SDobBinaryArchive archive(SDobBinaryArchive::kWrite, file);
  archive.WriteTag(FindFileType(kFileTypeGame).GetCode());
  uint32_t version = gFileVersion;
  archive.TransferULong(nullptr, version);
  game.Serialize(archive);
  archive.Finish();
  return !archive.HasError();
}

void RunGame(FuzzInput input) {
  const std::string bytes = input.Rest();
  FuzzSite site;
  const SFileSpec file = site.FileOf(bytes, "autogame.zep");
  const auto game = MakeTestGame(), again = MakeTestGame();
  const bool loaded = game->LoadGame(file);
  Require(site.Stored("autogame.zep") == bytes, "reading changes nothing");
  Require(loaded || SKivGameDob::IsGameFile(file) || game->IsEqual(*again),
          "a file that is no game leaves the record as it was");
  if (loaded) {
    again->Copy(*game);
    Require(again->IsEqual(*game), "a copy is equal");
    CheckWriting(
        site, "autogame.zep", *game, *again, [&](SGameDob& dob) { return Write(dob, file); },
        [&](SGameDob& dob) { return dob.LoadGame(file); });
  }
}

constexpr const char* kLastFile = "Classes.zep/last.kiv";
constexpr const char* kNoFile = "(none)";

std::string Without(std::string text, std::string_view signs) {
  std::erase_if(text, [&](char c) { return signs.find(c) != std::string_view::npos; });
  return text;
}

// A local store, as the library sees it during a call.
struct LocalSite {
  explicit LocalSite(const FuzzSite& root) {
    site.SetSiteMode(kSiteLocal);
    app.SetProperty("Data", Text(root.folder.Path()));
  }
  std::string FoundLast(const FuzzSite& root, const std::string& extension) {
    SFileSpec spec;
    if (!FindLastFile(site, spec, nullptr, nullptr, Text(extension), false)) {
      return kNoFile;
    }
    const SString name = spec.GetFileName();
    SFileSpec folder = root.Root();
    Require(folder.Down("Classes.zep") && spec.Up() && spec.IsEqual(folder),
            "what is found lies in the folder itself");
    return Bytes(name);
  }

  SSite site;
  SZEPApp app{site};
};

// A file of some type is recorded.
void RunLast(FuzzInput input) {
  const std::string type = Without(input.Text(), {".\0", 2});
  const std::string other = Without(input.Text(), {".\0", 2});
  const std::string name = Without(input.Text(), {"\0", 1}) + "." + type;
  FuzzSite site;
  site.FileOf(input.Rest(), kLastFile);
  LocalSite local(site);
  const std::string before = site.Stored(kLastFile), last = local.FoundLast(site, type);
  const std::string otherLast = local.FoundLast(site, other);
  Require(site.Stored(kLastFile) == before, "looking changes nothing");
  RecordLastFile(local.site, nullptr, nullptr, Text(name), Text(type));
  const std::string after = site.Stored(kLastFile);
  const std::string now = local.FoundLast(site, type);
  Require(after == before ? now == last : now == name || !IsSafeName(Text(name)),
          "a name that was recorded is found, and a list that stays tells the same");
  if (Text(other).CompareNoCase(Text(type)) != 0 && otherLast != kNoFile &&
      other.size() >= type.size()) {
    Require(local.FoundLast(site, other) == otherLast, "other types keep their file");
  }
  RecordLastFile(local.site, nullptr, nullptr, Text(name), Text(type));
  Require(site.Stored(kLastFile) == after, "recording again changes nothing");
}

// In the order of the first byte.
constexpr void (*kFormats[])(FuzzInput) = {RunIndex, RunLongName, RunOptions, RunGame, RunLast};

}  // namespace

void FuzzFormat(FuzzInput input) {
  kFormats[input.Byte() % std::size(kFormats)](input);
}

}  // namespace kivtest
