#include "hosts/kivadmin/roster_files/roster_bundle.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>

#include "hosts/common/charset.h"
#include "hosts/common/csv_text.h"
#include "hosts/common/host_error.h"
#include "hosts/common/whole_file.h"
#include "hosts/common/zip_file.h"
#include "hosts/kivadmin/roster_files/cell_text.h"
#include "hosts/kivadmin/roster_files/file_text.h"

namespace kivadmin {
namespace {

using kivhost::CsvRow;
using kivhost::ReadCsv;
namespace fs = std::filesystem;
using kivhost::HostError;
using kivhost::kWrongUsage;

constexpr const char* kFilesWanted[] = {"orgs.csv", "users.csv", "classes.csv", "enrollments.csv"};

std::string Small(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
  return text;
}

std::string FolderOf(const std::string& path) {
  return path.substr(0, path.rfind('/') + 1);
}

std::string NameOf(const std::string& path) {
  return Small(path.substr(path.rfind('/') + 1));
}

bool IsWanted(const std::string& path) {
  return std::find(std::begin(kFilesWanted), std::end(kFilesWanted), NameOf(path)) !=
         std::end(kFilesWanted);
}

// What else a zip may be that a spreadsheet writes.
std::string KindOfZip(const std::vector<std::string>& all) {
  const auto has = [&](const char* path) {
    return std::find(all.begin(), all.end(), path) != all.end();
  };
  return has("[Content_Types].xml") || has("content.xml")
             ? "a workbook; save its sheet as CSV and give that"
             : "no OneRoster bundle: none of orgs.csv, users.csv, classes.csv, enrollments.csv in "
               "it";
}

// Whatever is wrong with a zip, it is the file that is wrong.
template <class Function>
auto OfFile(Function function) {
  try {
    return function();
  } catch (const HostError& error) {
    throw HostError(kWrongUsage, OneLine(error.what()));
  }
}

// The place of each column that is asked for; nothing for one that may be missing.
std::vector<std::optional<size_t>> PlacesOf(const std::vector<BundleColumn>& columns,
                                            const std::vector<std::string>& heading,
                                            const std::string& file) {
  std::vector<std::optional<size_t>> places;
  for (const auto& [names, isFor] : columns) {
    std::optional<size_t> place;
    for (std::string_view rest = names; !rest.empty() && !place;) {
      const std::string_view name = rest.substr(0, rest.find('|'));
      rest.remove_prefix(std::min(name.size() + 1, rest.size()));
      const auto found = std::find_if(heading.begin(), heading.end(), [&](const std::string& one) {
        return kivhost::EqualNoCase(CellText(one), name);
      });
      if (found != heading.end()) {
        place = static_cast<size_t>(found - heading.begin());
      }
    }
    if (!place && isFor != nullptr) {
      throw HostError(kWrongUsage, file + ": no column " +
                                       std::string(names).substr(0, std::string(names).find('|')) +
                                       ", which tells " + isFor);
    }
    places.push_back(place);
  }
  return places;
}

std::vector<std::string> CellsOf(const std::vector<std::optional<size_t>>& places,
                                 const std::vector<std::string>& fields) {
  std::vector<std::string> cells;
  cells.reserve(places.size());
  for (const auto& place : places) {
    cells.push_back(place && *place < fields.size() ? CellText(fields[*place]) : "");
  }
  return cells;
}

}  // namespace

RosterBundle RosterBundle::OpenFolder(const std::string& path) {
  std::vector<std::string> all;
  std::error_code error;
  for (fs::directory_iterator entry(path, error), end; !error && entry != end;
       entry.increment(error)) {
    std::error_code unknown;
    if (entry->is_regular_file(unknown)) {
      all.push_back(entry->path().filename().string());
    }
  }
  if (error) {
    throw HostError(kWrongUsage, path + ": " + error.message());
  }
  if (std::none_of(all.begin(), all.end(), IsWanted)) {
    throw HostError(kWrongUsage, path +
                                     ": a folder, and none of orgs.csv, users.csv, classes.csv, "
                                     "enrollments.csv in it, as in one of OneRoster");
  }
  return {path, all, [path](const std::string& file) {
            return kivhost::ReadWholeFile((fs::path(path) / file).string(), kLongestRosterFile,
                                          "a file of a bundle", kWrongUsage);
          }};
}

RosterBundle RosterBundle::OpenZip(const std::string& path) {
  return OfFile([&]() -> RosterBundle {
    const auto zip = std::make_shared<kivhost::ZipReader>(path);
    std::vector<std::string> all;
    for (const kivhost::ZipEntry& entry : zip->GetEntries()) {
      all.push_back(entry.name);
    }
    if (std::none_of(all.begin(), all.end(), IsWanted)) {
      throw HostError(kWrongUsage, path + ": " + KindOfZip(all));
    }
    return {path, all, [zip](const std::string& file) {
              return OfFile([&] { return zip->Read(*zip->Find(file), kLongestRosterFile); });
            }};
  });
}

// They may stand in a folder of their own; what a system adds beside it stands deeper.
RosterBundle::RosterBundle(std::string name, std::vector<std::string> all, Contents contents)
    : name(std::move(name)), contents(std::move(contents)) {
  std::erase_if(all, [](const std::string& path) { return path.starts_with("__MACOSX/"); });
  const auto depth = [](const std::string& path) {
    return std::pair(!IsWanted(path), std::count(path.begin(), path.end(), '/'));
  };
  const std::string folder = FolderOf(*std::min_element(
      all.begin(), all.end(),
      [&](const std::string& a, const std::string& b) { return depth(a) < depth(b); }));
  for (const std::string& path : all) {
    if (FolderOf(path) == folder) {
      paths.emplace(NameOf(path), path);
    }
  }
  ReadManifest();
}

void RosterBundle::ReadManifest() {
  constexpr std::string_view kFileKey = "file.";
  if (!Has("manifest.csv")) {
    return;
  }
  RosterFile unused;
  Read("manifest.csv", "", {{"propertyName", "what it says"}, {"value", "what it says"}}, "",
       unused, [&](const BundleRow& row) {
         if (row.cells[0] == "oneroster.version") {
           version = Shown(row.cells[1]);
         } else if (row.cells[0].starts_with(kFileKey)) {
           modes[row.cells[0].substr(kFileKey.size()) + ".csv"] = row.cells[1];
         }
       });
  for (const char* const file : kFilesWanted) {
    if (modes[file] == "delta") {
      throw HostError(kWrongUsage, name + ": " + file +
                                       " tells only what changed (delta), and not who is there; "
                                       "have the whole exported (bulk)");
    }
  }
}

std::string RosterBundle::Charsets() const {
  std::string text;
  for (const std::string& charset : charsets) {
    text += (text.empty() ? "" : " and ") + charset;
  }
  return text;
}

void RosterBundle::Read(const std::string& file, const char* isFor,
                        const std::vector<BundleColumn>& columns, const std::string& charset,
                        RosterFile& roster, const std::function<void(const BundleRow& row)>& take) {
  if (!Has(file)) {
    if (modes[file] == "absent") {
      return;
    }
    throw HostError(kWrongUsage, name + ": no " + file + ", which tells " + isFor);
  }
  const std::string place = name + '/' + file;
  const FileText text = DecodeFile(contents(paths[file]), place, charset);
  if (std::find(charsets.begin(), charsets.end(), text.charset) == charsets.end()) {
    charsets.push_back(text.charset);
  }
  size_t fields = 0;
  std::vector<std::optional<size_t>> places;
  ReadCsv({place, text.text}, [&](const CsvRow& row) {
    if (places.empty()) {
      places = PlacesOf(columns, row.fields, place);
      fields = row.fields.size();
    } else if (row.fields.size() > fields) {
      roster.refused.push_back(
          {row.number, file,
           std::to_string(row.fields.size()) + " fields and not " + std::to_string(fields)});
    } else {
      take({row.number, CellsOf(places, row.fields)});
    }
    return true;
  });
  if (places.empty()) {
    throw HostError(kWrongUsage, place + ": empty, without a heading");
  }
}

}  // namespace kivadmin
