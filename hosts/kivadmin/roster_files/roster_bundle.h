// The files of a bundle, in a folder or a zip, and their rows by the names of the columns.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "hosts/kivadmin/roster_files/roster_file.h"

namespace kivadmin {

// A column that a table is asked for, and what it is for, in the error where it is missing; null:
// it may be. Where bundles call it differently the names stand beside each other: "code|classCode".
struct BundleColumn {
  const char* names;
  const char* isFor;
};

struct BundleRow {
  size_t number;                   // of its line
  std::vector<std::string> cells;  // as the columns were asked for; what is missing is empty
};

class RosterBundle {
 public:
  // Both throw wrong usage if there is nothing of a bundle in it.
  static RosterBundle OpenFolder(const std::string& path);
  static RosterBundle OpenZip(const std::string& path);

  bool Has(const std::string& file) const { return paths.contains(file); }
  // "1.1"; empty if it does not tell.
  const std::string& GetVersion() const { return version; }
  // The character sets of what was read so far: "utf-8".
  std::string Charsets() const;

  // The rows of a file: of none where the manifest says that there are none. Throws wrong usage
  // with the file's name where it, or one of the columns, is missing. What is no row is refused.
  void Read(const std::string& file, const char* isFor, const std::vector<BundleColumn>& columns,
            const std::string& charset, RosterFile& roster,
            const std::function<void(const BundleRow& row)>& take);

 private:
  using Contents = std::function<std::string(const std::string& path)>;

  RosterBundle(std::string name, std::vector<std::string> all, Contents contents);
  void ReadManifest();

  std::string name;
  std::map<std::string, std::string> paths;  // by the file's name in small letters
  Contents contents;
  std::string version;
  std::map<std::string, std::string> modes;  // by file, as the manifest tells: "bulk"
  std::vector<std::string> charsets;
};

}  // namespace kivadmin
