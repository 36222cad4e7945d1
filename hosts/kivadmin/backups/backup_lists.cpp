#include "hosts/kivadmin/backups/backup_lists.h"

#include <algorithm>
#include <map>
#include <optional>

#include "hosts/common/unicode.h"
#include "hosts/kivadmin/session/session.h"
#include "platform/base/bytes.h"
#include "store/place/display_name.h"

namespace kivadmin {
namespace {

using namespace kivstore;

struct FullName {
  SString first, last;
};

// The text up to its NUL, which is taken out of `bytes`; nothing where there is none.
std::optional<SString> TakeText(std::string_view& bytes) {
  const size_t end = bytes.find('\0');
  if (end == bytes.npos) {
    return std::nullopt;
  }
  const SString text(bytes.substr(0, end));
  bytes.remove_prefix(end + 1);
  return text;
}

std::string BytesOf(const BackupReader& backup, const std::string& file) {
  const kivhost::ZipEntry* const entry = backup.Find(file);
  return entry != nullptr ? backup.Read(*entry) : "";
}

std::optional<FullName> LongNameOf(const BackupReader& backup, const std::string& folder) {
  const std::string bytes = BytesOf(backup, folder + "longname.kiv");
  std::string_view rest(bytes);
  const auto first = TakeText(rest);
  const auto last = TakeText(rest);
  const bool isWhole = first && last && rest.empty() && !first->IsEmpty();
  return isWhole ? std::optional<FullName>({*first, *last}) : std::nullopt;
}

// The names of an index by folder, as far as they are whole.
std::map<std::string, FullName> NamesOfIndex(const BackupReader& backup, const std::string& list) {
  constexpr size_t kCountSize = 4;
  const std::string bytes = BytesOf(backup, list + "index.kiv");
  std::string_view rest(bytes);
  rest.remove_prefix(std::min(kCountSize, rest.size()));
  uint32_t count = 0;
  for (size_t i = 0; i < kCountSize && i < bytes.size(); ++i) {
    count = count << 8 | static_cast<unsigned char>(bytes[i]);
  }
  std::map<std::string, FullName> names;
  for (; count > 0; --count) {
    const auto folder = TakeText(rest);
    const auto first = TakeText(rest);
    const auto last = TakeText(rest);
    if (!folder || !first || !last) {
      break;
    }
    names[std::string(folder->View())] = {*first, *last};
  }
  return names;
}

// The ways of the folders that stand directly in the list.
std::vector<std::string> FoldersOf(const BackupReader& backup, const std::string& list) {
  std::vector<std::string> folders;
  for (const kivhost::ZipEntry* entry : backup.Below(list)) {
    const size_t end = entry->name.find('/', list.size());
    if (end != std::string::npos) {
      folders.push_back(entry->name.substr(0, end + 1));
    }
  }
  std::sort(folders.begin(), folders.end(), [](const std::string& a, const std::string& b) {
    return CompareBytesNoCase(a, b) < 0;
  });
  folders.erase(std::unique(folders.begin(), folders.end()), folders.end());
  return folders;
}

}  // namespace

std::vector<BackupEntry> EntriesOf(const BackupReader& backup, const std::string& list) {
  const std::map<std::string, FullName> listed = NamesOfIndex(backup, list);
  std::vector<BackupEntry> entries;
  for (const std::string& folder : FoldersOf(backup, list)) {
    const SString name =
        backup.InStore(folder.substr(list.size(), folder.size() - list.size() - 1));
    auto full = LongNameOf(backup, folder);
    if (const auto line = listed.find(std::string(name.View())); !full && line != listed.end()) {
      full = line->second;
    }
    if (full) {
      entries.push_back({folder, {full->first, full->last, name}});
    }
  }
  return entries;
}

BackupEntry FindEntry(const BackupReader& backup, const std::string& list, const std::string& name,
                      const std::string& level) {
  const std::vector<BackupEntry> entries = EntriesOf(backup, list);
  const auto place = PlaceOf(name);
  std::vector<BackupEntry> found;
  for (size_t i = 0; i < entries.size(); ++i) {
    const std::string shown = backup.Show(DisplayName(entries[i].entry));
    if (place ? static_cast<size_t>(*place) == i + 1 : kivhost::EqualLetters(shown, name)) {
      found.push_back(entries[i]);
    }
  }
  if (found.empty()) {
    throw HostError(kRefused, backup.GetPath() + " has no " + level + " \"" + name + '"');
  }
  if (found.size() > 1) {
    throw HostError(kRefused, backup.GetPath() + " has more than one " + level + " \"" + name +
                                  "\": say which by #N");
  }
  return found.front();
}

}  // namespace kivadmin
