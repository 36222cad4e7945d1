#include "tests/fuzz/store_rules.h"

#include <algorithm>
#include <optional>
#include <set>

#include "platform/base/bytes.h"
#include "tests/fuzz/require.h"

namespace kivtest {

using kivstore::EqualBytesNoCase;

namespace {

// Only an options file that no version of ours has written may go.
bool MayGo(const MemoryFiles::Entry& entry) {
  return EqualBytesNoCase(entry.name, "options.kiv") && !entry.attributes.folder &&
         !entry.bytes.starts_with(std::string("BIN\x01\x00\x01\x00\x00", 8));
}

bool IsRepaired(const MemoryFiles::Entry& entry) {
  return EqualBytesNoCase(entry.name, "index.kiv") || EqualBytesNoCase(entry.name, "longname.kiv");
}

// An index as its bytes tell it.
struct Index {
  std::set<std::string> folders;  // of the logins, folded
  std::string files;              // the file half
};

std::string Folded(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return text;
}

class IndexReader {
 public:
  explicit IndexReader(const std::string& bytes) : bytes(bytes) {}

  // None for one that is torn, or goes on behind its end.
  std::optional<Index> Read() {
    Index index;
    for (int64_t logins = Count(); logins > 0 && !torn; --logins) {
      index.folders.insert(Folded(Text()));
      Text();
      Text();
    }
    const size_t start = at;
    for (int64_t files = Count(); files > 0 && !torn; --files) {
      Text();
      Text();
      Text();
    }
    index.files = bytes.substr(std::min(start, bytes.size()));
    return torn || at != bytes.size() ? std::nullopt : std::optional(index);
  }

 private:
  // As many texts as a count may claim, and no negative ones.
  int64_t Count() {
    int64_t value = 0;
    torn = torn || at + 4 > bytes.size();
    for (int i = 0; i < 4 && !torn; ++i) {
      value = value << 8 | static_cast<unsigned char>(bytes[at++]);
    }
    torn = torn || value > INT32_MAX;
    return value;
  }
  std::string Text() {
    const size_t end = bytes.find('\0', std::min(at, bytes.size()));
    torn = torn || end == std::string::npos;
    const std::string text = torn ? std::string() : bytes.substr(at, end - at);
    at = torn ? at : end + 1;
    return text;
  }

  const std::string& bytes;
  size_t at = 0;
  bool torn = false;
};

bool IsVisibleFolder(const MemoryFiles::Tree& tree, const std::string& place) {
  const auto found = tree.find(place);
  return found != tree.end() && found->second.attributes.folder && !found->second.attributes.hidden;
}

void CheckIndex(const MemoryFiles::Tree& tree, const std::string& folder, const Index& before,
                const std::string& bytesAfter) {
  const std::optional<Index> after = IndexReader(bytesAfter).Read();
  Require(after.has_value(), "an index that is written is whole");
  Require(after->files == before.files, "the file half stays");
  for (const std::string& login : before.folders) {
    Require(!IsVisibleFolder(tree, folder + login) || after->folders.count(login) != 0,
            "who has a folder stays in the list");
  }
}

}  // namespace

void CheckFiles(const MemoryFiles::Tree& before, const MemoryFiles::Tree& after) {
  for (const auto& [place, entry] : before) {
    const auto found = after.find(place);
    if (found == after.end()) {
      Require(MayGo(entry), "nothing goes but an options file of another kind or version");
      continue;
    }
    const MemoryFiles::Entry& now = found->second;
    Require(now.bytes == entry.bytes || IsRepaired(entry),
            "nothing is written but indexes and long names");
    Require(now.attributes.hidden == entry.attributes.hidden &&
                now.attributes.readOnly == entry.attributes.readOnly,
            "attributes stay");
  }
  for (const auto& [place, entry] : after) {
    Require(before.count(place) != 0, "nothing is made");
  }
}

void CheckIndexes(const MemoryFiles::Tree& before, const MemoryFiles::Tree& after) {
  for (const auto& [place, entry] : before) {
    const auto now = after.find(place);
    if (now == after.end() || now->second.bytes == entry.bytes ||
        !EqualBytesNoCase(entry.name, "index.kiv")) {
      continue;
    }
    if (const std::optional<Index> index = IndexReader(entry.bytes).Read()) {
      CheckIndex(before, place.substr(0, place.rfind('/') + 1), *index, now->second.bytes);
    }
  }
}

void CheckSame(const MemoryFiles::Tree& before, const MemoryFiles::Tree& after) {
  Require(before.size() == after.size(), "a store that was put right keeps its files");
  for (const auto& [place, entry] : before) {
    const auto now = after.find(place);
    Require(now != after.end() && now->second.bytes == entry.bytes,
            "a store that was put right stays as it is");
  }
}

}  // namespace kivtest
