#include "hosts/kivadmin/session/session.h"

#include <algorithm>
#include <iostream>

#include "hosts/common/console.h"
#include "hosts/common/failure_text.h"
#include "hosts/common/store_conf.h"
#include "hosts/common/unicode.h"
#include "hosts/kivadmin/session/action_log.h"
#include "hosts/kivadmin/session/looking_services.h"
#include "store/list/entry_lock.h"
#include "store/place/display_name.h"

namespace kivadmin {
namespace {

using namespace kivstore;

std::unique_ptr<IFileServices> ServicesForLooking(bool isWanted) {
  return isWanted ? std::make_unique<LookingServices>(CreatingFileServices()) : nullptr;
}

kivhost::KindWanted WantedBy(const CommonOptions& options) {
  kivhost::KindWanted wanted;
  if (options.kind) {
    wanted.kinds.push_back(*options.kind);
  }
  wanted.force = options.force;
  return wanted;
}

bool HasIndexLock(SFileSpec folder) {
  return folder.Down("index.lok") && folder.Exists();
}

}  // namespace

Session::Session(const CommonOptions& options, Access access)
    : dryRun(options.dryRun),
      keepsLog(!options.noLog),
      notingServices(CreatingFileServices()),
      lookingServices(ServicesForLooking(dryRun || access == Access::kLook)),
      services(lookingServices != nullptr ? *lookingServices : notingServices),
      store(options.root, WantedBy(options), access == Access::kLayOut),
      charsetName(kivhost::CharsetOf(store, options.charset)),
      charset(kivhost::NeedCharset(charsetName)) {
  if (options.charset && !IsLooking()) {
    kivhost::SettleCharset(store, charsetName);
  }
}

Session::~Session() {
  kivhost::TellUnshown("kivadmin", *charset);
}

SFileSpec Session::DataRoot() const {
  SFileSpec root = TopFolder();
  root.Up();
  return root;
}

SString Session::ToStore(const std::string& text, const std::string& what) const {
  const auto bytes = charset->FromUtf8(text);
  if (!bytes) {
    throw HostError(kWrongUsage, what + " \"" + text + "\": \"" + charset->FirstWithoutPlace(text) +
                                     "\" has no place in " + charsetName +
                                     ", the character set of the store");
  }
  return SString(std::string_view(*bytes));
}

SString Session::NewName(const std::string& text, const std::string& what) const {
  constexpr size_t kLongest = 255;
  if (kivhost::HasHiddenCharacter(text)) {
    throw HostError(kWrongUsage, what +
                                     ": a control character, or one that turns the direction of "
                                     "writing, in the name");
  }
  if (text.find_first_not_of(' ') == std::string::npos) {
    throw HostError(kWrongUsage, what + ": the name is empty");
  }
  if (PlaceOf(text)) {
    throw HostError(kWrongUsage, what + " \"" + text + "\": would be taken for a place in a list");
  }
  const SString name = ToStore(text, what);
  if (static_cast<size_t>(name.GetLength()) > kLongest) {
    throw HostError(kWrongUsage, what + ": longer than " + std::to_string(kLongest));
  }
  return name;
}

std::string Session::Show(const SString& text) const {
  return charset->ToUtf8(text.View());
}

std::string Session::Show(const SLoginNameObj& entry) const {
  return '"' + Show(DisplayName(entry)) + '"';
}

std::string Session::Show(const SFileSpec& spec) const {
  return kivhost::FromLibraryPath(spec.GetPathText());
}

void Session::Change(const std::string& what, const std::function<bool()>& operation) const {
  Site().ClearFailure();
  if (!dryRun && !operation()) {
    throw kivhost::Unable(what, Site().GetFailure());
  }
  if (shortfall.empty() && Site().GetShortfall()) {
    shortfall = what + ": " + kivhost::ReasonText(Site().GetShortfall());
  }
}

void Session::Need(const std::string& what, const SFileSpec& file,
                   const std::function<bool()>& operation) const {
  const uint32_t known = SFileSpec::LastFailure().number;
  if (operation()) {
    return;
  }
  Site().ClearFailure();
  if (SFileSpec::LastFailure().number == known) {
    SFileSpec(file).Refresh();  // tells of a link in the way
  }
  if (SFileSpec::LastFailure().number != known) {
    Site().NoteFileFailure(ListKind::kFiles);
  } else {
    Site().NoteFailure(FailureKind::kDamaged, file.GetPath(), ListKind::kFiles);
  }
  throw kivhost::Unable(what, Site().GetFailure());
}

HostError Session::NoFolder(SFileSpec folder, const HostError& otherwise) const {
  const uint32_t known = SFileSpec::LastFailure().number;
  folder.Refresh();
  return SFileSpec::LastFailure().number == known
             ? otherwise
             : HostError(kNoStore, kivhost::ReasonText(FailureOfLastFile(ListKind::kClasses)));
}

void Session::TakeLock(SLockFile& lock, const std::string& what) const {
  Site().ClearFailure();
  if (!lock.Lock()) {
    throw kivhost::Unable("lock " + what, Site().GetFailure());
  }
}

void Session::TakeIndexLock(SLockFile& lock, const SFileSpec& folder, ListKind list) const {
  if (!folder.IsExistingFolder()) {
    throw NoFolder(folder, {kNoStore, Show(folder) + ": no such folder"});
  }
  AimAtIndex(lock, folder, list, true);
  // A dry run cannot make the lock file and looks at the list without it.
  if (HasIndexLock(folder) || !IsLooking()) {
    TakeLock(lock, "the list");
  }
}

void Session::NeedEntry(SLockFile& lock, const SFileSpec& folder,
                        const SLoginNameObj& student) const {
  Site().ClearFailure();
  if (!HoldsEntry(Site(), lock, folder, student, ListKind::kStudents)) {
    throw kivhost::Unable("work on student " + Show(student), Site().GetFailure());
  }
}

void Session::Say(const std::string& line) const {
  std::cout << (dryRun ? "dry run: " : "") << line << '\n';
  Log(line);
  TellShortfall();
}

void Session::TellShortfall() const {
  if (!shortfall.empty()) {
    throw HostError(kNoStore, "not all of it is written: " + shortfall +
                                  "; kivadmin check --repair mends the rest");
  }
}

// Once it could not be written the rest of the command waits for it no more.
void Session::Log(const std::string& line) const {
  if (IsLooking() || !keepsLog || !notingServices.HasChanged()) {
    return;
  }
  const std::string why = AppendAction(Site(), DataRoot(), line);
  notingServices.Forget();
  if (!why.empty()) {
    keepsLog = false;
    std::cout << std::flush;
    std::cerr << "kivadmin: not in the log: " << why << '\n';
  }
}

std::optional<long> PlaceOf(const std::string& name) {
  constexpr size_t kMostDigits = 9;
  const bool isPlace =
      name.size() > 1 && name[0] == '#' &&
      std::all_of(name.begin() + 1, name.end(), [](char c) { return c >= '0' && c <= '9'; });
  if (!isPlace) {
    return std::nullopt;
  }
  return name.size() - 1 > kMostDigits ? 0 : std::stol(name.substr(1));
}

}  // namespace kivadmin
