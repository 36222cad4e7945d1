// What a backup tells of itself: `kivstore-backup.json` in its zip file, UTF-8:
//
//   {"format": 1, "kind": "teachers", "charset": "windows-1252", "when": "2026-11-21 23:55:01",
//    "by": "hill", "version": "1.0.0", "teachers": 1, "classes": 2, "students": 24,
//    "files": 190, "bytes": 51234, "checksum": 1234567890,
//    "unread": [{"path": "...", "why": "..."}]}
//
// Beside it stand the files and folders of the data root under their own paths: the classes folder,
// Deleted, kivstore.conf and kivadmin.log. Names are turned from the store's character set into
// UTF-8. A lock file is there without bytes.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "hosts/common/store_opening.h"

namespace kivadmin {

inline constexpr const char* kManifestName = "kivstore-backup.json";
// A file above that is none of a store's.
inline constexpr int32_t kLargestFile = 256 << 20;

// As the store compares names.
std::string FoldedName(std::string name);

struct BackupManifest {
  // What the store has that could not be read, and is not in the backup.
  struct Unread {
    std::string path;
    std::string why;
  };

  kivhost::SiteKind kind = kivhost::SiteKind::kTeachers;
  std::string charset;
  std::string when, by, version;
  uint64_t teachers = 0, classes = 0, students = 0;
  uint64_t files = 0;     // folders and this one not counted
  uint64_t bytes = 0;     // of all of them
  uint32_t checksum = 0;  // of the list of entries without this one; see zip_file.h
  std::vector<Unread> unread;

  std::string Text() const;
  // "1 teacher, 2 classes, 24 students", teachers only where there is a level of them.
  std::string Counts() const;
  // Throws HostError with `path` if the text is no manifest, or one of a later form.
  static BackupManifest Parse(const std::string& text, const std::string& path);
};

}  // namespace kivadmin
