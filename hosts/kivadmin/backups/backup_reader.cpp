#include "hosts/kivadmin/backups/backup_reader.h"

#include <map>
#include <set>

#include "foundation/files/file.h"
#include "hosts/common/store_text.h"
#include "hosts/kivadmin/session/action_log.h"
#include "store/place/store_names.h"

namespace kivadmin {
namespace {

using namespace kivstore;
using kivhost::ZipEntry;

constexpr size_t kLongestManifest = 16 << 20;

BackupManifest ReadManifest(const kivhost::ZipReader& zip, const std::string& path) {
  const ZipEntry* const entry = zip.Find(kManifestName);
  if (entry == nullptr) {
    throw HostError(kWrongUsage,
                    path + ": is no backup of a store: no " + kManifestName + " in it");
  }
  return BackupManifest::Parse(zip.Read(*entry, kLongestManifest), path);
}

std::unique_ptr<kivhost::Charset> CharsetOf(const BackupManifest& manifest,
                                            const std::string& path) {
  auto charset = kivhost::Charset::Open(manifest.charset);
  if (charset == nullptr) {
    throw HostError(kWrongUsage, path + ": its names are in the character set " + manifest.charset +
                                     ", which is not known here");
  }
  return charset;
}

// What a data root has of a store; Deleted and the classes folder with all below.
bool IsOfStore(std::string_view name) {
  const std::string_view first = name.substr(0, name.find('/'));
  const bool isAlone = first.size() == name.size();
  for (const char* const file : {kManifestName, "kivstore.conf", kActionLog, kActionLogLock}) {
    if (name == file) {
      return true;
    }
  }
  return !isAlone && (first == "Deleted" || first == ClassesName().View());
}

SFileSpec Inside(SFileSpec folder, const SString& name) {
  folder.Down(name);
  return folder;
}

void WriteBytes(const Session& session, SFileSpec place, const std::string& bytes) {
  const auto count = static_cast<int32_t>(bytes.size());
  session.Need("write", place, [&] {
    SFile file;
    return !place.Exists() && place.CreateFile(0, 0, 0) && file.Open(SFile::kWrite, place) &&
           file.Write(count, bytes.data()) == count;
  });
  place.Refresh();
  if (kivhost::ReadStoreText(place, bytes.size(), "what was written") != bytes) {
    throw HostError(kNoStore, session.Show(place) + ": does not read back as it was written");
  }
}

// The folders of the ways that were gone, so that each is made once.
class FolderMaker {
 public:
  FolderMaker(const Session& session, const BackupReader& backup, const SFileSpec& target)
      : session(session), backup(backup) {
    made.emplace("", Made(target));
  }

  // `way` is empty, or ends with a slash.
  const SFileSpec& Need(const std::string& way) {
    const auto known = made.find(way);
    if (known != made.end()) {
      return known->second;
    }
    const size_t cut = way.substr(0, way.size() - 1).rfind('/') + 1;
    const std::string name = way.substr(cut, way.size() - 1 - cut);
    const SFileSpec folder = Inside(Need(way.substr(0, cut)), backup.InStore(name));
    return made.emplace(way, Made(folder)).first->second;
  }

 private:
  SFileSpec Made(SFileSpec folder) const {
    session.Need("make the folder", folder,
                 [&] { return folder.IsValid() && !folder.Exists() && folder.CreateFolder(0); });
    return folder;
  }

  const Session& session;
  const BackupReader& backup;
  std::map<std::string, SFileSpec> made;
};

}  // namespace

BackupReader::BackupReader(const std::string& path)
    : path(path), zip(path), manifest(ReadManifest(zip, path)), charset(CharsetOf(manifest, path)) {
  CheckList();
  CheckNames();
}

void BackupReader::NeedNamesOfStore() const {
  for (const ZipEntry& entry : zip.GetEntries()) {
    if (!IsOfStore(entry.name)) {
      throw zip.Refuse(entry, "is of no store");
    }
  }
}

std::string BackupReader::Read(const ZipEntry& file) const {
  return zip.Read(file, kLargestFile);
}

std::vector<const ZipEntry*> BackupReader::Below(const std::string& folder) const {
  std::vector<const ZipEntry*> all;
  for (const ZipEntry& entry : zip.GetEntries()) {
    if (entry.name.starts_with(folder) && entry.name != kManifestName) {
      all.push_back(&entry);
    }
  }
  return all;
}

SString BackupReader::InStore(std::string_view name) const {
  const auto bytes = charset->FromUtf8(name);
  if (!bytes) {
    throw HostError(kWrongUsage, path + ": " + std::string(name) +
                                     " in it is no name in the character set " + manifest.charset);
  }
  return SString(std::string_view(*bytes));
}

// Two names that a store takes for one, or a file that is to be a folder too, cannot be unpacked.
void BackupReader::CheckNames() const {
  std::set<std::string> folded;
  for (const ZipEntry* entry : Below("")) {
    const std::string name = FoldedName(entry->name);
    InStore(entry->name);
    if (!folded.insert(name).second) {
      throw zip.Refuse(*entry, "has the name of another, letter case ignored");
    }
  }
  for (const std::string& name : folded) {
    for (size_t end = name.find('/'); end != name.npos; end = name.find('/', end + 1)) {
      if (folded.count(name.substr(0, end)) > 0) {
        throw HostError(kWrongUsage, path + ": " + name + " in it stands in a file");
      }
    }
  }
}

void BackupReader::CheckList() const {
  std::vector<ZipEntry> entries = zip.GetEntries();
  std::erase_if(entries, [](const ZipEntry& entry) { return entry.name == kManifestName; });
  if (kivhost::ChecksumOf(entries) != manifest.checksum) {
    throw HostError(kWrongUsage, path + ": does not hold what it was made with");
  }
}

void Unpack(const Session& session, const BackupReader& backup, const std::string& folder,
            const SFileSpec& target, const std::function<void()>& fileDone) {
  FolderMaker folders(session, backup, target);
  for (const ZipEntry* entry : backup.Below(folder)) {
    const std::string way = entry->name.substr(folder.size());
    const size_t cut = way.rfind('/') + 1;
    const SFileSpec& place = folders.Need(way.substr(0, cut));
    if (!entry->IsFolder()) {
      WriteBytes(session, Inside(place, backup.InStore(way.substr(cut))), backup.Read(*entry));
      fileDone();
    }
  }
}

}  // namespace kivadmin
