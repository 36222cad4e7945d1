#include "hosts/kivadmin/roster_files/named_columns.h"

#include <algorithm>
#include <optional>

#include "hosts/common/csv_text.h"
#include "hosts/common/host_error.h"
#include "hosts/common/whole_file.h"
#include "hosts/kivadmin/roster_files/cell_text.h"
#include "hosts/kivadmin/roster_files/file_text.h"
#include "hosts/kivadmin/roster_files/plain_file.h"

namespace kivadmin {
namespace {

using kivhost::CsvRow;
using kivhost::CsvText;
using kivhost::HostError;
using kivhost::kWrongUsage;
using kivhost::ReadCsv;

// The place of each wanted column; nothing for one that is not there.
using Places = std::vector<std::optional<size_t>>;

Places PlacesIn(const CsvRow& heading, const std::vector<WantedColumn>& wanted) {
  Places places;
  for (const WantedColumn& column : wanted) {
    const std::string key = HeadingKey(column.name);
    const auto found =
        std::find_if(heading.fields.begin(), heading.fields.end(),
                     [&](const std::string& field) { return HeadingKey(field) == key; });
    places.push_back(found == heading.fields.end()
                         ? std::nullopt
                         : std::optional<size_t>(found - heading.fields.begin()));
  }
  return places;
}

std::string NamesOf(const std::vector<WantedColumn>& wanted) {
  std::string names;
  for (const WantedColumn& column : wanted) {
    if (column.isNeeded) {
      names += (names.empty() ? "" : ",") + std::string(column.name);
    }
  }
  return names;
}

bool HasNeeded(const Places& places, const std::vector<WantedColumn>& wanted) {
  for (size_t i = 0; i < wanted.size(); ++i) {
    if (wanted[i].isNeeded && !places[i]) {
      return false;
    }
  }
  return true;
}

NamedRow Take(const CsvRow& row, const Places& places) {
  NamedRow named{row.number, {}};
  for (const auto& place : places) {
    named.fields.push_back(place && *place < row.fields.size() ? CellText(row.fields[*place]) : "");
  }
  return named;
}

bool IsEmpty(const NamedRow& row) {
  return std::all_of(row.fields.begin(), row.fields.end(),
                     [](const std::string& field) { return field.empty(); });
}

// The rows, if the heading has what is needed by this separator.
std::optional<std::vector<NamedRow>> ReadSeparated(const CsvText& csv,
                                                   const std::vector<WantedColumn>& wanted) {
  std::optional<Places> places;
  std::vector<NamedRow> rows;
  ReadCsv(csv, [&](const CsvRow& row) {
    if (!places) {
      places = PlacesIn(row, wanted);
      return HasNeeded(*places, wanted);
    }
    NamedRow named = Take(row, *places);
    if (!IsEmpty(named)) {
      rows.push_back(std::move(named));
    }
    return true;
  });
  return places && HasNeeded(*places, wanted) ? std::optional(std::move(rows)) : std::nullopt;
}

}  // namespace

std::vector<NamedRow> ReadNamedColumns(const std::string& path,
                                       const std::vector<WantedColumn>& wanted) {
  const std::string name = kivhost::NameOfFile(path);
  const FileText file = DecodeFile(ReadPlainFile(path, "a table"), name, "");
  for (const char separator : {',', ';', '\t'}) {
    if (auto rows = ReadSeparated({name, file.text, separator}, wanted)) {
      return *std::move(rows);
    }
  }
  throw HostError(kWrongUsage, name + ": the first line has not the columns " + NamesOf(wanted));
}

}  // namespace kivadmin
