#include "hosts/kivadmin/backups/backup_writer.h"

#include <algorithm>

#include "foundation/files/file_finder.h"
#include "hosts/common/failure_text.h"
#include "hosts/common/store_text.h"
#include "hosts/kivadmin/session/action_log.h"
#include "hosts/kivadmin/session/who_and_when.h"
#include "platform/base/bytes.h"
#include "store/list/file_extension.h"
#include "store/list/listing.h"
#include "store/place/placing.h"
#include "store/place/store_names.h"

namespace kivadmin {
namespace {

using namespace kivstore;

bool IsLockFile(const SFileSpec& file) {
  return HasExtension(file.GetFileName().View(), "lok");
}

bool IsNamed(const SFileSpec& folder, const SString& name) {
  return EqualBytesNoCase(folder.GetFileName().View(), name.View());
}

// The folder of an entry that is a list of its own.
SString ListNameBelow(ListKind kind) {
  return kind == ListKind::kTeachers ? ClassesName() : CachedText<kTextStudents>();
}

bool IsGone() {
  const SystemError error = LastFileFailure().error;
  return error == SystemError::kFileNotFound || error == SystemError::kPathNotFound;
}

void SortByName(std::vector<SFileSpec>& specs) {
  std::sort(specs.begin(), specs.end(), [](const SFileSpec& a, const SFileSpec& b) {
    return CompareBytesNoCase(a.GetFileName().View(), b.GetFileName().View()) < 0;
  });
}

}  // namespace

BackupWriter::BackupWriter(const Session& session, kivhost::ZipWriter& zip, bool goesOn,
                           std::function<void()> classDone)
    : session(session),
      zip(zip),
      goesOn(goesOn),
      classDone(std::move(classDone)),
      rootLength(static_cast<size_t>(session.DataRoot().GetPath().GetLength())),
      now(std::time(nullptr)) {
  manifest.kind = session.Kind();
  manifest.charset = session.CharsetName();
  manifest.when = NowText();
  manifest.by = UserName();
  manifest.version = KIVSTORE_VERSION;
}

BackupManifest BackupWriter::Run() {
  CopyAtRoot("kivstore.conf");
  CopyLists();
  isSecondLook = true;
  CopyLists();
  CopyAtRoot("Deleted");
  CopyAtRoot(kActionLog);
  CopyAtRoot(kActionLogLock);
  manifest.checksum = kivhost::ChecksumOf(zip.GetEntries());
  zip.Add(kManifestName, manifest.Text(), now);
  return manifest;
}

void BackupWriter::CopyLists() {
  CopyList(session.TopFolder(), session.HasTeachers() ? ListKind::kTeachers : ListKind::kClasses);
}

void BackupWriter::CopyList(const SFileSpec& list, ListKind kind) {
  for (SFileSpec& entry : CopyUnderLock(list, kind)) {
    if (!entry.Down(ListNameBelow(kind)) || !entry.Exists()) {
      continue;
    }
    if (entry.IsFolder()) {
      CopyList(entry, kind == ListKind::kTeachers ? ListKind::kClasses : ListKind::kStudents);
    } else if (!IsCopied(entry)) {
      Miss(entry, session.NoFolder(entry, {kNoStore, session.Show(entry) + " is no folder"}));
    }
  }
  if (kind == ListKind::kStudents && !isSecondLook) {
    classDone();
  }
}

bool BackupWriter::Lock(SLockFile& lock, const SFileSpec& list, ListKind kind) {
  try {
    session.TakeIndexLock(lock, list, kind);
    return true;
  } catch (const HostError& why) {
    Miss(list, why);
    return false;
  }
}

// The entries that have a list of their own.
std::vector<SFileSpec> BackupWriter::CopyUnderLock(const SFileSpec& list, ListKind kind) {
  SLockFile lock(session.Site());
  if (!Lock(lock, list, kind)) {
    return {};
  }
  CountEntries(list, kind);
  Add(list, "");
  const Contents contents = Look(list);
  CopyFiles(contents.files);
  for (const SFileSpec& folder : contents.folders) {
    if (!IsCopied(folder)) {
      kind == ListKind::kStudents ? CopyStudent(folder) : CopyEntry(folder, kind);
      CountOf(kind) += isSecondLook ? 1 : 0;
    }
  }
  return kind == ListKind::kStudents ? std::vector<SFileSpec>() : contents.folders;
}

void BackupWriter::CopyEntry(const SFileSpec& folder, ListKind kind) {
  Add(folder, "");
  const Contents contents = Look(folder);
  CopyFiles(contents.files);
  for (const SFileSpec& below : contents.folders) {
    if (!IsNamed(below, ListNameBelow(kind))) {
      CopyTree(below, 0);
    }
  }
}

void BackupWriter::CopyStudent(const SFileSpec& folder) {
  SFileSpec lockFile(folder);
  SFile lock;
  int32_t error = SFile::kSuccess;
  if (session.HasLocks() && lockFile.Down("index.lok") && lockFile.Exists() &&
      !lock.Open(SFile::kWrite, lockFile, &error) && error == SFile::kSharingViolation) {
    ++atWork;
  }
  CopyTree(folder, 0);
}

void BackupWriter::CopyTree(const SFileSpec& folder, int depth) {
  constexpr int kMostDepth = 16;  // deeper than any store
  Add(folder, "");
  const Contents contents = Look(folder);
  CopyFiles(contents.files);
  if (depth == kMostDepth && !contents.folders.empty()) {
    Miss(folder, {kNoStore, session.Show(folder) + " is deeper than any store"});
    return;
  }
  for (const SFileSpec& below : contents.folders) {
    CopyTree(below, depth + 1);
  }
}

void BackupWriter::CopyFiles(const std::vector<SFileSpec>& files) {
  for (const SFileSpec& file : files) {
    CopyFile(file);
  }
}

void BackupWriter::CopyFile(const SFileSpec& file) {
  if (IsCopied(file)) {
    return;
  }
  SFile open;
  std::string bytes;
  if (IsLockFile(file)) {
    Add(file, bytes);
  } else if (!kivhost::OpenToRead(open, file)) {
    MissLast(file);
  } else if (open.Size() > kLargestFile) {
    Miss(file, {kNoStore, session.Show(file) + ": too large for a file of a store"});
  } else {
    bytes.resize(static_cast<size_t>(std::max(open.Size(), 0)));
    const auto count = static_cast<int32_t>(bytes.size());
    const bool isRead = open.Read(count, bytes.data()) == count;
    isRead ? Add(file, bytes) : MissLast(file);
  }
}

void BackupWriter::CopyAtRoot(const char* name) {
  SFileSpec spec = session.DataRoot();
  spec.Down(name);
  if (spec.IsExistingFolder()) {
    CopyTree(spec, 0);
  } else if (spec.IsExistingFile()) {
    CopyFile(spec);
  }
}

BackupWriter::Contents BackupWriter::Look(const SFileSpec& folder) {
  Contents contents;
  SFileFinder finder(folder, SFileFinder::kEverything);
  for (FolderEntry entry; finder.NextEntry(entry);) {
    SFileSpec spec;
    spec.SetFromEntry(folder.GetPath(), entry);
    if (!spec.IsFolder()) {
      contents.files.push_back(spec);
    } else if (!entry.attributes.hidden) {
      contents.folders.push_back(spec);
    }
  }
  if (finder.HasFailed()) {
    MissLast(folder);
  }
  SortByName(contents.files);
  SortByName(contents.folders);
  return contents;
}

void BackupWriter::Add(const SFileSpec& what, const std::string& bytes) {
  const std::string name = NameInZip(what);
  if (name.empty()) {
    Miss(what, {kNoStore, session.Show(what) + ": no zip file can hold its name"});
  } else if (copied.emplace(FoldedName(name), name).second) {
    zip.Add(name, bytes, now);
    manifest.files += what.IsFolder() ? 0 : 1;
    manifest.bytes += bytes.size();
  }
}

bool BackupWriter::IsCopied(const SFileSpec& what) {
  const std::string name = NameInZip(what);
  const auto found = copied.find(FoldedName(name));
  if (found != copied.end() && found->second != name) {
    Miss(what, {kNoStore, session.Show(what) + ": has the name of another, letter case ignored"});
  }
  return found != copied.end();
}

// Empty if it has none there.
std::string BackupWriter::NameInZip(const SFileSpec& what) const {
  std::string name = session.Show(SString(what.GetPath().View().substr(rootLength)));
  std::replace(name.begin(), name.end(), '\\', '/');
  const bool isWhole = name.find("\xEF\xBF\xBD") == name.npos;
  return isWhole && kivhost::ZipWriter::Takes(name) ? name : "";
}

uint64_t& BackupWriter::CountOf(ListKind kind) {
  return kind == ListKind::kTeachers  ? manifest.teachers
         : kind == ListKind::kClasses ? manifest.classes
                                      : manifest.students;
}

// As every listing tells them, under the list's lock.
void BackupWriter::CountEntries(const SFileSpec& list, ListKind kind) {
  if (!isSecondLook) {
    SLoginList entries;
    LoadLoginsAt(session.Site(), entries, list, kind, true, false);
    CountOf(kind) += static_cast<uint64_t>(entries.GetSize());
  }
}

void BackupWriter::MissLast(const SFileSpec& what) {
  if (!IsGone()) {
    const SFailure failure = FailureOfLastFile(ListKind::kFiles);
    Miss(what, {kivhost::ExitCodeOf(failure), kivhost::ReasonText(failure)});
  }
}

void BackupWriter::Miss(const SFileSpec& what, const HostError& why) {
  if (!goesOn) {
    throw HostError(why.exitCode,
                    std::string(why.what()) + "; --incomplete makes a backup without it");
  }
  const std::string path = session.Show(what);
  const auto isSame = [&](const BackupManifest::Unread& one) { return one.path == path; };
  if (std::none_of(manifest.unread.begin(), manifest.unread.end(), isSame)) {
    manifest.unread.push_back({path, why.what()});
  }
}

}  // namespace kivadmin
