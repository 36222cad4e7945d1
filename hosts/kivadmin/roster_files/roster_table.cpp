#include "hosts/kivadmin/roster_files/roster_table.h"

#include <algorithm>
#include <optional>

#include "hosts/common/charset.h"
#include "hosts/common/counted.h"
#include "hosts/common/csv_text.h"
#include "hosts/common/host_error.h"
#include "hosts/common/unicode.h"
#include "hosts/kivadmin/roster_files/cell_text.h"
#include "hosts/kivadmin/roster_files/roster_columns.h"

namespace kivadmin {
namespace {

using kivhost::CsvRow;
using kivhost::CsvText;
using kivhost::HostError;
using kivhost::kWrongUsage;
using kivhost::ReadCsv;

bool IsBlank(const std::string& cell) {
  return CellText(cell).empty();
}

std::string NameOfSeparator(char separator) {
  return separator == '\t' ? "tab" : std::string(1, separator);
}

// Takes the line "sep=;" off the text, by which a spreadsheet tells its separator to itself.
std::optional<char> TakeSeparatorLine(CsvText& csv) {
  constexpr std::string_view kKey = "sep=";
  const size_t end = std::min(csv.text.find('\n'), csv.text.size());
  std::string line(csv.text.substr(0, end));
  std::erase_if(line, [](char c) { return c == '"' || c == '\r'; });
  if (line.size() != kKey.size() + 1 ||
      !kivhost::EqualNoCase(std::string_view(line).substr(0, kKey.size()), kKey)) {
    return std::nullopt;
  }
  csv.text.remove_prefix(std::min(end + 1, csv.text.size()));
  ++csv.firstNumber;
  return line.back();
}

bool IsBlankRow(const CsvRow& row) {
  return std::all_of(row.fields.begin(), row.fields.end(), IsBlank);
}

std::optional<CsvRow> FirstRow(CsvText csv, char separator) {
  std::optional<CsvRow> first;
  csv.separator = separator;
  ReadCsv(csv, [&](CsvRow& row) {
    if (!IsBlankRow(row)) {
      first = std::move(row);
    }
    return !first;
  });
  return first;
}

// The separator that makes most of the first row's headings known, or has most fields. A tab last:
// where nothing separates, a row is one field whatever else is in it.
char GuessSeparator(const CsvText& csv) {
  std::pair<size_t, size_t> most;
  char guess = '\t';
  for (const char separator : {',', ';', '\t'}) {
    std::optional<CsvRow> row;
    try {
      row = FirstRow(csv, separator);
    } catch (const HostError&) {
      continue;  // what this one leaves behind a quotation; the right one tells what is wrong
    }
    const size_t fields = row ? row->fields.size() : 0;
    const std::pair score{fields > 0 ? RosterColumns(row->fields).CountKnown() : 0, fields};
    if (fields > 1 && score > most) {
      most = score;
      guess = separator;
    }
  }
  return guess;
}

class TableReader {
 public:
  TableReader(const FileText& file, const RosterFormat& format, RosterFile& roster);

  void ReadAll();
  void Tell();

 private:
  void Take(const CsvRow& row);
  // What makes the row no roster's; empty if nothing.
  std::string Fault(const CsvRow& row) const;
  std::string Cell(const CsvRow& row, Part part) const;
  RosterLine LineOf(const CsvRow& row) const;
  void TakeStudent(const CsvRow& row, RosterLine& line) const;
  void NoteMisread(const RosterLine& line);

  const FileText& file;
  const RosterFormat& format;
  RosterFile& roster;
  CsvText csv;
  CsvRow first{0, 0, {}};  // the heading, if there is one
  RosterColumns columns;
  // For the notes: numbers of rows, and names.
  std::vector<std::string> nameless;
  std::vector<std::string> headingsAgain;
  std::vector<std::string> misread;
};

TableReader::TableReader(const FileText& file, const RosterFormat& format, RosterFile& roster)
    : file(file), format(format), roster(roster), csv{roster.name, file.text}, columns({}) {
  const std::optional<char> told = TakeSeparatorLine(csv);
  csv.separator = told ? *told : GuessSeparator(csv);
  std::optional<CsvRow> row = FirstRow(csv, csv.separator);
  const auto isSign = [](const std::string& cell) { return HeadingKey(cell).empty(); };
  if (!row || std::all_of(row->fields.begin(), row->fields.end(), isSign)) {
    throw HostError(kWrongUsage, roster.name + ": empty");
  }
  first = std::move(*row);
  columns = RosterColumns(format.noHeading ? std::vector<std::string>(first.fields.size())
                                           : first.fields);
  columns.Tell(format.columns, roster.name);
  columns.Settle();
  columns.Need(format, roster.name);
}

void TableReader::ReadAll() {
  const size_t skipped = format.noHeading ? 0 : first.number;
  size_t lastFields = 0;
  ReadCsv(csv, [&](CsvRow& row) {
    lastFields = row.fields.size();
    if (row.number > skipped && !IsBlankRow(row)) {
      Take(row);
    }
    return true;
  });
  roster.endsOpen = csv.text.back() != '\n' && csv.text.back() != '\r';
  roster.isTorn = roster.endsOpen && lastFields < columns.CountColumns();
}

void TableReader::Take(const CsvRow& row) {
  if (!format.noHeading && row.fields == first.fields) {
    headingsAgain.push_back(std::to_string(row.number));
    return;
  }
  if (const std::string fault = Fault(row); !fault.empty()) {
    roster.refused.push_back({row.number, "", fault});
    return;
  }
  RosterLine line = LineOf(row);
  if (line.teacher.empty() && line.group.empty() && line.first.empty() && line.last.empty()) {
    nameless.push_back(std::to_string(row.number));
    return;
  }
  NoteMisread(line);
  roster.lines.push_back(std::move(line));
}

std::string TableReader::Fault(const CsvRow& row) const {
  const auto& fields = row.fields;
  const size_t most = columns.CountColumns();
  if (fields.size() > most &&
      !std::all_of(fields.begin() + static_cast<std::ptrdiff_t>(most), fields.end(), IsBlank)) {
    return std::to_string(fields.size()) + " fields and not " + std::to_string(most);
  }
  for (const auto& [part, place] : columns.GetPlaces()) {
    const std::string cell = Cell(row, part);
    if (cell.find_first_of("\r\n") != std::string::npos) {
      return std::string(WordsOf(part)) + ": a line break in the name; the row ends in line " +
             std::to_string(row.lastNumber);
    }
    if (kivhost::HasHiddenCharacter(cell)) {
      return std::string(WordsOf(part)) + kHidden;
    }
  }
  return "";
}

std::string TableReader::Cell(const CsvRow& row, Part part) const {
  const auto found = columns.GetPlaces().find(part);
  const bool isThere = found != columns.GetPlaces().end() && found->second < row.fields.size();
  return isThere ? CellText(row.fields[found->second]) : "";
}

RosterLine TableReader::LineOf(const CsvRow& row) const {
  RosterLine line;
  line.number = row.number;
  line.teacher = Cell(row, Part::kTeacher);
  line.group = Cell(row, Part::kClass);
  TakeStudent(row, line);
  const bool isStudent = !line.first.empty() || !line.last.empty();
  if (isStudent && line.group.empty()) {
    line.group = format.group;
  }
  if (line.teacher.empty() && (isStudent || !line.group.empty())) {
    line.teacher = format.teacher;
  }
  return line;
}

std::string Joined(std::initializer_list<std::string> words) {
  std::string text;
  for (const std::string& word : words) {
    text += (text.empty() || word.empty() ? "" : " ") + word;
  }
  return text;
}

void TableReader::TakeStudent(const CsvRow& row, RosterLine& line) const {
  const std::string lastAndFirst = Cell(row, Part::kLastAndFirst);
  const std::string name = Cell(row, Part::kName) + Cell(row, Part::kFullName) + lastAndFirst;
  const FullName split = SplitName(name, !lastAndFirst.empty());
  line.first = Joined({Cell(row, Part::kFirst), split.first});
  line.last = Joined({Cell(row, Part::kBeforeLast), Cell(row, Part::kLast),
                      Cell(row, Part::kBehindLast), split.last});
}

void TableReader::NoteMisread(const RosterLine& line) {
  if (!file.isGuessed) {
    return;
  }
  for (const std::string* name : {&line.teacher, &line.group, &line.first, &line.last}) {
    if (LooksMisread(*name)) {
      misread.push_back(InQuotes(*name) + " in line " + std::to_string(line.number));
      return;
    }
  }
}

void TableReader::Tell() {
  const size_t rows = roster.lines.size() + roster.refused.size();
  roster.readAs =
      file.charset +
      (columns.CountColumns() > 1 ? ", separator " + NameOfSeparator(csv.separator) : "") +
      ", columns " + columns.Text() + "; " + kivhost::Counted(rows, "row");
  const auto note = [&](const char* what, const std::vector<std::string>& which) {
    if (!which.empty()) {
      roster.notes.push_back(what + Listed(which));
    }
  };
  note("columns ignored: ", columns.Ignored());
  note("rows without any name skipped: line ", nameless);
  note("the heading again, skipped: line ", headingsAgain);
  note("signs that no name has, if another set is meant --file-charset tells it: ", misread);
  if (roster.isTorn) {
    roster.notes.emplace_back("the last row breaks off with the file: is all of it there?");
  }
}

}  // namespace

void ReadRosterTable(const FileText& file, const RosterFormat& format, RosterFile& roster) {
  TableReader reader(file, format, roster);
  reader.ReadAll();
  reader.Tell();
}

}  // namespace kivadmin
