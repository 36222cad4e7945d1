#include "hosts/kivadmin/session/session.h"

#include <algorithm>
#include <filesystem>
#include <iostream>

#include "foundation/application.h"
#include "foundation/files/file_finder.h"
#include "foundation/site_mode.h"
#include "hosts/common/console.h"
#include "hosts/kivadmin/session/looking_services.h"
#include "platform/platform.h"
#include "store/change/transaction.h"
#include "store/list/listing.h"
#include "store/list/name_derivation.h"
#include "store/place/layout.h"

namespace kivadmin {
namespace {

namespace fs = std::filesystem;
using namespace kivstore;

constexpr SiteKind kKindOfNewStore = SiteKind::kTeachers;

int32_t SiteModeOf(SiteKind kind) {
  switch (kind) {
    case SiteKind::kLocal:
      return kSiteLocal;
    case SiteKind::kShared:
      return kSiteShared;
    case SiteKind::kTeachers:
      break;
  }
  return kSiteSharedTeachers;
}

bool Has(SFileSpec folder, const SString& name) {
  return folder.Down(name) && folder.Exists();
}

SString IndexLockName() {
  return "index.lok";
}

// The N of "#N"; nothing for a plain name.
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

bool IsNamed(const SLoginNameObj& entry, const SString& display) {
  return kivhost::EqualNoCase(DisplayName(entry).View(), display.View());
}

enum class FileState { kFree, kHeld, kRefused, kMissing };

// What opening the file alone meets.
FileState Probe(const SFileSpec& spec) {
  SystemError error = SystemError::kNone;
  IFileServices& files = *Platform().files;
  if (const FileHandle file = files.Open(spec.GetPathText(), FileAccess::kReadWrite, error)) {
    files.Close(file);
    return FileState::kFree;
  }
  if (error == SystemError::kSharingViolation) {
    return FileState::kHeld;
  }
  const bool isMissing = error == SystemError::kFileNotFound || error == SystemError::kPathNotFound;
  return isMissing ? FileState::kMissing : FileState::kRefused;
}

// The first file below the folder that is not free.
std::optional<std::pair<SFileSpec, FileState>> FindHeldFile(const SFileSpec& folder, int depth) {
  constexpr int kDeepest = 8;
  if (depth > kDeepest) {
    return std::nullopt;
  }
  SFileFinder finder(folder, SFileFinder::kEverything);
  for (SFileSpec spec; finder.Next(spec);) {
    if (spec.IsFolder()) {
      if (auto held = FindHeldFile(spec, depth + 1)) {
        return held;
      }
    } else if (const FileState state = Probe(spec);
               state == FileState::kHeld || state == FileState::kRefused) {
      return std::pair(spec, state);
    }
  }
  return std::nullopt;
}

AdminError ErrorFor(FileState state, const std::string& what, const std::string& path) {
  switch (state) {
    case FileState::kHeld:
      return {kRefused, what + ": " + path + " is locked or in use by someone else; try again"};
    case FileState::kMissing:
      return {kNoStore, what + ": " + path + " is missing and could not be made"};
    case FileState::kRefused:
    case FileState::kFree:
      break;
  }
  return {kNoStore, what + ": no permission to write " + path};
}

}  // namespace

const char* NameOf(SiteKind kind) {
  switch (kind) {
    case SiteKind::kLocal:
      return "local";
    case SiteKind::kShared:
      return "shared";
    case SiteKind::kTeachers:
      break;
  }
  return "teachers";
}

std::unique_ptr<kivhost::Charset> OpenCharset(const std::string& name) {
  auto charset = kivhost::Charset::Open(name);
  if (!charset) {
    throw AdminError{kWrongUsage, "--charset " + name + ": no such character set"};
  }
  return charset;
}

Session::Session(const CommonOptions& options, Access access)
    : charset(OpenCharset(options.charset)),
      previousServices(Platform().files),
      dryRun(options.dryRun) {
  Platform().files = &CreatingFileServices();
  if (dryRun || access == Access::kLook) {
    lookingServices = std::make_unique<LookingServices>(*Platform().files);
    Platform().files = lookingServices.get();
  }
  try {
    SetDataPath(options.root, access == Access::kLayOut);
    SetSite(options.kind);
  } catch (...) {
    Platform().files = previousServices;
    throw;
  }
}

Session::~Session() {
  call.reset();
  Platform().files = previousServices;
}

void Session::SetDataPath(const std::string& root, bool layOut) {
  std::error_code error;
  const bool isThere = fs::exists(root, error);
  if (isThere ? !fs::is_directory(root, error) : !layOut) {
    throw AdminError{kNoStore, root + (isThere ? ": is no folder" : ": no such folder") +
                                   "; give the data root of the store"};
  }
  const std::string path = kivhost::ToLibraryPath((fs::absolute(root, error) / "").string());
  SGeneralParams params{};
  params.dataPath = path.c_str();
  call = std::make_unique<SGeneralCall>(params);
  if (layOut || TopFolder().IsExistingFolder()) {
    return;
  }
  throw AdminError{kNoStore, root + ": no folder " + Show(ClassesName()) +
                                 " in it that can be read; kivadmin init lays out a store"};
}

void Session::SetSite(std::optional<SiteKind> given) {
  kind = given ? *given : ReadKind();
  SetSiteMode(SiteModeOf(kind));
  gTeacherTier = HasTeachers() ? 1 : 0;
}

// A teacher's folder holds a classes folder and a class's holds the students, which a shared store
// locks like every list. Without either only the top list's options tell: a store with teachers has
// none there.
SiteKind Session::ReadKind() const {
  const SFileSpec top = TopFolder();
  if (!top.IsExistingFolder()) {
    return kKindOfNewStore;
  }
  bool hasClasses = false;
  bool isShared = Has(top, IndexLockName());
  SFileFinder finder(top, SFileFinder::kVisibleFolders);
  for (SFileSpec entry; finder.Next(entry);) {
    if (Has(entry, ClassesName())) {
      return SiteKind::kTeachers;
    }
    SFileSpec students(entry);
    if (students.Down(SString::FromResource(kTextStudents)) && students.Exists()) {
      hasClasses = true;
      isShared = isShared || Has(students, IndexLockName());
    }
  }
  if (!isShared) {
    return SiteKind::kLocal;
  }
  const bool hasOptions =
      Has(top, "options.lok") || Has(top, SString::FromResource(kTextOptionsFile));
  return hasClasses || hasOptions ? SiteKind::kShared : SiteKind::kTeachers;
}

SString Session::ToStore(const std::string& text, const std::string& what) const {
  const auto bytes = charset->FromUtf8(text);
  if (!bytes) {
    throw AdminError{kWrongUsage,
                     what + " \"" + text + "\": a character that the character set lacks"};
  }
  return SString(std::string_view(*bytes));
}

SString Session::NewName(const std::string& text, const std::string& what) const {
  constexpr size_t kLongest = 255;
  const auto isControl = [](char c) { return static_cast<unsigned char>(c) < ' ' || c == 0x7F; };
  if (std::any_of(text.begin(), text.end(), isControl)) {
    throw AdminError{kWrongUsage, what + ": a control character in the name"};
  }
  if (text.find_first_not_of(' ') == std::string::npos) {
    throw AdminError{kWrongUsage, what + ": the name is empty"};
  }
  if (PlaceOf(text)) {
    throw AdminError{kWrongUsage, what + " \"" + text + "\": would be taken for a place in a list"};
  }
  const SString name = ToStore(text, what);
  if (static_cast<size_t>(name.GetLength()) > kLongest) {
    throw AdminError{kWrongUsage, what + ": longer than " + std::to_string(kLongest)};
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

SFileSpec Session::TopFolder() const {
  SFileSpec spec(gApp->GetProperty("Data"));
  spec.Down(ClassesName(kTextTeacherClasses));
  return spec;
}

SFileSpec Session::ClassesFolder() const {
  if (!HasTeachers()) {
    return TopFolder();
  }
  SFileSpec spec;
  if (gCurrentTeacher != nullptr) {
    TeacherFolder(spec, gCurrentTeacher);
    if (spec.Down(ClassesName()) && !spec.Exists()) {
      spec.CreateFolder(0);
    }
  }
  return spec;
}

SFileSpec Session::StudentsFolder(const SLoginNameObj& classEntry) const {
  SFileSpec spec = ClassesFolder();
  if (DownToEntry(spec, classEntry) && spec.Down(SString::FromResource(kTextStudents)) &&
      !spec.Exists()) {
    spec.CreateFolder(0);
  }
  return spec;
}

std::unique_ptr<Roster> Session::Teachers() const {
  return Load(TopFolder(), LockKind::kTeachers);
}

std::unique_ptr<Roster> Session::Classes() const {
  return Load(ClassesFolder(), LockKind::kClasses);
}

std::unique_ptr<Roster> Session::Students(const SLoginNameObj& classEntry) const {
  return Load(StudentsFolder(classEntry), LockKind::kStudents);
}

std::unique_ptr<Roster> Session::Load(const SFileSpec& folder, LockKind lockKind) const {
  auto roster = std::make_unique<Roster>();
  roster->folder = folder;
  // A folder that would be made, if anything could change, is an empty list.
  if (!folder.IsExistingFolder() && lookingServices != nullptr) {
    return roster;
  }
  SLockFile lock;
  TakeIndexLock(lock, folder, lockKind);
  SFileSpec indexFile(folder);
  if (indexFile.DownAssumed(SString::FromResource(kTextIndexFile).GetText())) {
    ReadLogins(roster->list.Array(), indexFile, true);
  }
  return roster;
}

SLoginNameObj* Session::Find(const Roster& roster, const std::string& name,
                             const std::string& level) const {
  if (const auto place = PlaceOf(name)) {
    if (*place < 1) {
      throw AdminError{kWrongUsage, name + ": a place in a list is # and a number from 1"};
    }
    if (*place > roster.list.GetSize()) {
      throw AdminError{kRefused, "no " + level + ' ' + name + ": the list has " +
                                     std::to_string(roster.list.GetSize())};
    }
    return roster.list.At(static_cast<int32_t>(*place - 1));
  }
  const SString display = ToStore(name, level);
  SLoginNameObj* found = nullptr;
  for (int32_t i = 0; i < roster.list.GetSize(); ++i) {
    if (!IsNamed(*roster.list.At(i), display)) {
      continue;
    }
    if (found != nullptr) {
      throw AdminError{kRefused, "more than one " + level + " \"" + name + "\": say which by #N"};
    }
    found = roster.list.At(i);
  }
  if (found == nullptr) {
    throw AdminError{kRefused, "no " + level + " \"" + name + '"'};
  }
  return found;
}

SLoginNameObj* Session::FindName(const Roster& roster, const SString& first, const SString& last) {
  const SString display = DisplayName(first, last);
  for (int32_t i = 0; i < roster.list.GetSize(); ++i) {
    if (IsNamed(*roster.list.At(i), display)) {
      return roster.list.At(i);
    }
  }
  return nullptr;
}

void Session::ChooseTeacher(const std::string& name) {
  if (HasTeachers()) {
    const SLoginNameObj teacher = FindTeacher(name);
    SelectTeacher(&teacher);
  } else if (!name.empty()) {
    throw AdminError{kWrongUsage, std::string("--teacher: a store of the kind ") + NameOf(kind) +
                                      " has no teachers"};
  }
}

SLoginNameObj Session::FindTeacher(const std::string& name) const {
  const auto roster = Teachers();
  if (!name.empty()) {
    return *Find(*roster, name, "teacher");
  }
  if (roster->list.GetSize() == 0) {
    throw AdminError{kRefused, "the store has no teacher yet"};
  }
  if (roster->list.GetSize() > 1) {
    throw AdminError{kWrongUsage, "--teacher is needed: the store has " +
                                      std::to_string(roster->list.GetSize()) + " teachers"};
  }
  return *roster->list.At(0);
}

SLoginNameObj Session::FindClass(const std::string& name) const {
  return *Find(*Classes(), name, "class");
}

SLoginNameObj Session::FindStudent(const SLoginNameObj& classEntry, const std::string& name) const {
  return *Find(*Students(classEntry), name, "student");
}

void Session::TakeIndexLock(SLockFile& lock, const SFileSpec& folder, LockKind lockKind) const {
  if (!folder.IsExistingFolder()) {
    throw AdminError{kNoStore, Show(folder) + ": no such folder"};
  }
  // A dry run cannot make the lock file and looks at the list without it.
  if (LockIndex(lock, folder, lockKind, true) ||
      (lookingServices != nullptr && !Has(folder, IndexLockName()))) {
    return;
  }
  throw WhyRefused("the list could not be read", folder);
}

AdminError Session::WhyRefused(const std::string& what, const SFileSpec& listFolder,
                               const SFileSpec* entryFolder) const {
  if (HasLocks()) {
    SFileSpec lockFile(listFolder);
    lockFile.Down(IndexLockName());
    const FileState state = Probe(lockFile);
    if (state != FileState::kFree) {
      return ErrorFor(state, what, Show(lockFile));
    }
  }
  if (entryFolder != nullptr && entryFolder->IsExistingFolder()) {
    if (const auto held = FindHeldFile(*entryFolder, 0)) {
      return ErrorFor(held->second, what, Show(held->first));
    }
  }
  return {kNoStore, what + ": " + Show(listFolder) +
                        " could not be written, or someone changed it at the same time; look at "
                        "permissions and free space, and try again"};
}

void Session::Say(const std::string& line) const {
  std::cout << (dryRun ? "dry run: " : "") << line << '\n';
}

}  // namespace kivadmin
