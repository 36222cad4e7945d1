#include "hosts/kivreport/schools_text.h"

#include <sstream>
#include <utility>

#include "hosts/common/csv_text.h"
#include "hosts/common/host_error.h"
#include "hosts/kivreport/cells.h"
#include "hosts/kivreport/json_value.h"
#include "hosts/kivreport/store_readings.h"

namespace kivreport {
namespace {

using kivhost::ChildResult;
using kivhost::CsvRow;
using kivhost::FormatCsv;

Json UnreadJson(const std::string& school, const ChildResult& result) {
  return {{"school", school}, {"complete", false}, {"reason", ReasonOf(result)}};
}

// Behind its last line a process that was ended may have left a part of one.
std::string WholeLines(const ChildResult& result) {
  return result.output.substr(0, result.output.rfind('\n') + 1);
}

std::string NdjsonOf(const std::string& school, const ChildResult& result) {
  std::istringstream lines(WholeLines(result));
  std::string text;
  std::string name = Dumped(school);
  name.pop_back();  // its end of line
  for (std::string line; std::getline(lines, line);) {
    text += "{\"school\":" + name + ',' + line.substr(line.find('{') + 1) + '\n';
  }
  return IsIncomplete(result) ? text + Dumped(UnreadJson(school, result)) : text;
}

std::string JsonOf(const std::string& school, const ChildResult& result) {
  const Json own = Json::parse(result.output, nullptr, false);
  if (!own.is_object()) {
    return Dumped(UnreadJson(school, result), 2);
  }
  Json json{{"school", school}};
  for (const auto& [key, value] : own.items()) {
    if (key != "school") {
      json[key] = value;
    }
  }
  return Dumped(json, 2);
}

std::string TableOf(const std::string& school, const ChildResult& result, bool hasColor) {
  if (IsUnread(result)) {
    return Printable(school) + '\n' + ColoredNote("not read, " + ReasonOf(result), hasColor) + '\n';
  }
  return Printable(school) + '\n' +
         (result.output.empty() ? ReasonOf(result) + '\n' : result.output);
}

}  // namespace

std::string SchoolsText::Of(const std::string& school, const ChildResult& result) {
  const bool isBegin = std::exchange(isFirst, false);
  switch (form.format) {
    case Format::kCsv:
      return CsvRows(school, WholeLines(result)) + (IsIncomplete(result) ? CsvUnread(school) : "");
    case Format::kNdjson:
      return NdjsonOf(school, result);
    case Format::kJson:
      return (isBegin ? "{\"schools\":[\n" : ",\n") + JsonOf(school, result);
    default:
      return (isBegin ? "" : "\n") + TableOf(school, result, form.hasColor);
  }
}

// Where no school was read CSV's heading is still wanted.
std::string SchoolsText::End(bool isComplete) {
  if (form.format == Format::kCsv && columns == 0) {
    return CsvHeading({"school", "teacher", "class", "student"});
  }
  return form.format != Format::kJson ? ""
         : isComplete                 ? "\n],\"complete\":true}\n"
                                      : "\n],\"complete\":false}\n";
}

// The rows of all schools stand below one heading, which is the first one's that was read. A school
// that was not, or not to its end, has a row without values.
std::string SchoolsText::CsvRows(const std::string& school, const std::string& text) {
  std::string rows;
  bool isHeading = true;
  const auto take = [&](CsvRow& row) {
    const bool isHead = std::exchange(isHeading, false);
    row.fields.insert(row.fields.begin(), isHead ? "school" : GuardedName(school, form.raw));
    rows += !isHead ? FormatCsv(row.fields) : columns == 0 ? CsvHeading(row.fields) : "";
    return true;
  };
  try {
    kivhost::ReadCsv({school, text}, take);
  } catch (const kivhost::HostError&) {
    // Likewise within a text of several lines; the rows ahead of it are whole.
  }
  return rows;
}

std::string SchoolsText::CsvHeading(const std::vector<std::string>& heading) {
  columns = heading.size();
  std::string text = FormatCsv(heading);
  for (const std::string& school : ahead) {
    text += CsvUnread(school);
  }
  return text;
}

std::string SchoolsText::CsvUnread(const std::string& school) {
  if (columns == 0) {
    ahead.push_back(school);
    return "";
  }
  std::vector<std::string> fields(columns);
  fields[0] = GuardedName(school, form.raw);
  return FormatCsv(fields);
}

}  // namespace kivreport
