#include "store/change/adding_many.h"

#include <map>
#include <set>
#include <vector>

#include "foundation/files/file_finder.h"
#include "foundation/time/ticks.h"
#include "platform/base/bytes.h"
#include "platform/platform.h"
#include "store/change/transaction.h"
#include "store/list/index_lookup.h"
#include "store/list/long_name.h"
#include "store/list/name_derivation.h"
#include "store/list/reconcile.h"
#include "store/place/display_name.h"
#include "store/place/placing.h"
#include "store/place/store_names.h"

namespace kivstore {
namespace {

constexpr uint32_t kLongestHold = 5000;  // ticks

struct NoCase {
  bool operator()(const SString& a, const SString& b) const {
    return CompareBytesNoCase(a.View(), b.View()) < 0;
  }
};

// One hold of the list.
class Hold {
 public:
  Hold(SSite& site, const SFileSpec& list, std::span<const NewFile> besides)
      : site(site), list(list), besides(besides) {}

  bool Begin();
  bool Take(SNewcomer& newcomer);
  // The lines of all who were added.
  void End();

 private:
  bool NoteNames();
  bool Fail();
  bool MakeFolder(const SNewcomer& newcomer);
  bool AddLine(const SNewcomer& newcomer);

  SSite& site;
  SFileSpec list;
  std::span<const NewFile> besides;
  SLockFile lock{site};
  SIndexObj index;
  std::map<SString, SString, NoCase> folderByName;  // by display name
  std::set<SString, NoCase> taken;                  // whatever stands in the folder
  bool isChanged = false;
};

bool Hold::Fail() {
  site.NoteFileFailure(ListKind::kStudents);
  return false;
}

bool Hold::Begin() {
  if (!LockList(site, lock, list, ListKind::kStudents, false)) {
    return false;
  }
  ReadWholeIndex(list, index);
  if (!ReconcileLogins(site, list, index) || index.incomplete || !NoteNames()) {
    return Fail();
  }
  for (const SLoginNameObj& line : *index.logins) {
    folderByName.emplace(DisplayName(line), line.folderName);
  }
  return true;
}

bool Hold::NoteNames() {
  SFileFinder finder(list, SFileFinder::kEverything);
  for (FolderEntry entry; finder.NextEntry(entry);) {
    taken.insert(SString(std::string_view(entry.name, static_cast<size_t>(entry.nameLength))));
  }
  return !finder.HasFailed();
}

bool Hold::Take(SNewcomer& newcomer) {
  const SString display = DisplayName(newcomer.first, newcomer.last);
  if (const auto known = folderByName.find(display); known != folderByName.end()) {
    newcomer.outcome = SNewcomer::kThere;
    newcomer.folderName = known->second;
    return true;
  }
  if (index.logins->GetSize() >= kMaxStudents) {
    newcomer.outcome = SNewcomer::kFull;
    return true;
  }
  // A rename that died half way has left the old name in the line of a folder that is its own.
  bool isOwn = false;
  newcomer.folderName = DeriveFolderName(
      newcomer.first, newcomer.last, [&](const SString& name) { return taken.contains(name); },
      [&](const SString& name) {
        return isOwn = BelongsTo(ListedFolder(list, name), newcomer.first, newcomer.last);
      });
  if ((!isOwn && !MakeFolder(newcomer)) || !AddLine(newcomer)) {
    return Fail();
  }
  folderByName.emplace(display, newcomer.folderName);
  taken.insert(newcomer.folderName);
  newcomer.outcome = SNewcomer::kAdded;
  return true;
}

bool Hold::MakeFolder(const SNewcomer& newcomer) {
  SComposedFile contents;
  ComposeLongName(contents, newcomer.first, newcomer.last);
  int32_t length = 0;
  const uint8_t* const bytes = contents.TakeBytes(length);
  std::vector<NewFile> files(besides.begin(), besides.end());
  files.push_back(
      {CachedText<kTextLongNameFile>().GetText(), reinterpret_cast<const char*>(bytes), length});
  const SString making = ReadyPath(list, newcomer.folderName);
  const SString place = list.GetPath() + newcomer.folderName;
  const auto make = [&](SystemError& error) {
    return Platform().files->MakeWhole(making.GetText(), place.GetText(), files.data(),
                                       static_cast<int>(files.size()), error);
  };
  SystemError error = SystemError::kNone;
  if (bytes == nullptr || make(error)) {
    return bytes != nullptr;
  }
  // A death has left one: only then is it looked for.
  if (error == SystemError::kAlreadyExists) {
    PlaceToMake(list, newcomer.folderName);
    if (make(error)) {
      return true;
    }
  }
  return NoteFileFailure(place, error);
}

bool Hold::AddLine(const SNewcomer& newcomer) {
  index.logins->RemoveIf(
      [&](const SLoginNameObj& other) { return IsInFolder(other, newcomer.folderName); });
  isChanged = true;
  return index.logins->Add(std::unique_ptr<SLoginNameObj>(
      new (std::nothrow) SLoginNameObj(newcomer.first, newcomer.last, newcomer.folderName)));
}

void Hold::End() {
  if (isChanged) {
    WriteIndexNoted(site, list, index, ListKind::kStudents);
  }
}

}  // namespace

bool AddStudentsAt(SSite& site, const SFileSpec& list, std::span<SNewcomer> newcomers,
                   std::span<const NewFile> besides) {
  Hold hold(site, list, besides);
  if (!hold.Begin()) {
    return false;
  }
  const uint32_t begun = GetTicks();
  bool isGood = true;
  for (SNewcomer& newcomer : newcomers) {
    if (!isGood || GetTicks() - begun >= kLongestHold) {
      break;
    }
    isGood = newcomer.outcome != SNewcomer::kWaiting || hold.Take(newcomer);
  }
  hold.End();
  return isGood;
}

}  // namespace kivstore
