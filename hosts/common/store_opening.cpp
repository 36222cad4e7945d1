#include "hosts/common/store_opening.h"

#include <algorithm>
#include <filesystem>
#include <new>

#include "foundation/files/file_finder.h"
#include "hosts/common/console.h"
#include "hosts/common/failure_text.h"
#include "hosts/common/host_error.h"
#include "store/place/placing.h"
#include "store/place/store_names.h"

namespace kivhost {
namespace {

namespace fs = std::filesystem;
using namespace kivstore;

// With a separator behind it: only so a trailing classes folder is recognised.
std::string DataPathOf(const std::string& root, bool mayBeMissing) {
  std::error_code error;
  const fs::file_status status = fs::status(root, error);
  if (status.type() == fs::file_type::not_found && !mayBeMissing) {
    throw HostError(kNoStore, root + ": no such folder; give the data root of the store");
  }
  if (fs::exists(status) && !fs::is_directory(status)) {
    throw HostError(kNoStore, root + ": is no folder; give the data root of the store");
  }
  return ToLibraryPath((fs::path(root) / "").string());
}

HostError NoClassesIn(const std::string& root) {
  std::error_code error;
  const fs::directory_iterator entries(root, error);
  if (error) {
    const bool isRefused = error == std::errc::permission_denied;
    return {kNoStore, root + ": " + error.message() + "; " +
                          (isRefused ? "ask for permission to read it"
                                     : "look at the disk or the network that it is on")};
  }
  return {kNoStore, root + ": no folder " + ClassesName().GetText() +
                        " in it that can be read; give the data root of a store, or let kivadmin "
                        "init lay one out"};
}

SGeneralParams ParamsFor(const std::string& dataPath) {
  SGeneralParams params{};
  params.dataPath = dataPath.c_str();
  return params;
}

bool Has(SFileSpec folder, const SString& name) {
  return folder.Down(name) && folder.Exists();
}

// A teacher's folder holds a classes folder and a class's holds the students, which a shared store
// locks like every list. Without either only the top list's options tell: a store with teachers has
// none there.
SiteKind ReadKind(const SFileSpec& top) {
  const SString indexLock("index.lok");
  bool hasClasses = false;
  bool isShared = Has(top, indexLock);
  SFileFinder finder(top, SFileFinder::kVisibleFolders);
  for (SFileSpec entry; finder.Next(entry);) {
    if (Has(entry, ClassesName())) {
      return SiteKind::kTeachers;
    }
    SFileSpec students(entry);
    if (students.Down(CachedText<kTextStudents>()) && students.Exists()) {
      hasClasses = true;
      isShared = isShared || Has(students, indexLock);
    }
  }
  if (!isShared) {
    return SiteKind::kLocal;
  }
  const bool hasOptions = Has(top, "options.lok") || Has(top, CachedText<kTextOptionsFile>());
  return hasClasses || hasOptions ? SiteKind::kShared : SiteKind::kTeachers;
}

// An empty folder may become the top of any store.
bool TellsKind(const SFileSpec& top) {
  if (!top.IsExistingFolder()) {
    return false;
  }
  SFileFinder finder(top, SFileFinder::kVisibleFolders);
  SFileSpec entry;
  return Has(top, CachedText<kTextIndexFile>()) || finder.Next(entry);
}

bool Contains(const std::vector<SiteKind>& kinds, SiteKind kind) {
  return std::find(kinds.begin(), kinds.end(), kind) != kinds.end();
}

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

std::string HeldRoot(const std::string& root) {
  const fs::path whole = fs::absolute(root).lexically_normal();
  return (whole.has_filename() ? whole : whole.parent_path()).string();
}

OpenStore::OpenStore(const std::string& givenRoot, const KindWanted& wanted, bool isToBeLaidOut)
    : root(HeldRoot(givenRoot)), call(ParamsFor(DataPathOf(root, isToBeLaidOut))) {
  if (call.GetApp() == nullptr) {
    throw std::bad_alloc();
  }
  SetKind(SiteKind::kTeachers);
  SetKind(Choose(wanted, isToBeLaidOut));
}

SiteKind OpenStore::Choose(const KindWanted& wanted, bool isToBeLaidOut) const {
  const SFileSpec top = TopFolder();
  if (top.Exists() && SFileSpec::GetLastError() != 0) {
    throw HostError(kNoStore, ReasonText(FailureOfLastFile(ListKind::kTeachers)));
  }
  if (!top.IsExistingFolder() && !isToBeLaidOut) {
    throw NoClassesIn(root);
  }
  const bool tells = TellsKind(top);
  const SiteKind told = top.IsExistingFolder() ? ReadKind(top) : SiteKind::kTeachers;
  if (wanted.kinds.empty() || (tells && Contains(wanted.kinds, told))) {
    return told;
  }
  if (tells && !wanted.force) {
    throw HostError(kWrongUsage, root + ": is a store of the kind " + NameOf(told) + ", not " +
                                     NameOf(wanted.kinds[0]) +
                                     "; leave the kind out, or say --force if you mean it");
  }
  return wanted.kinds[0];
}

void OpenStore::SetKind(SiteKind newKind) {
  kind = newKind;
  Site().SetSiteMode(SiteModeOf(kind));
  if (!HasTeachers()) {
    Site().ClearTeacherTier();
  }
}

SFileSpec OpenStore::TopFolder() const {
  SFileSpec spec;
  TeachersFolder(Site(), spec);
  return spec;
}

}  // namespace kivhost
