#include "hosts/kivadmin/rosters/csv_reader.h"

#include <csv.h>

#include <algorithm>

namespace kivadmin {
namespace {

struct Reading {
  std::vector<CsvLine> lines;
  CsvLine current{1, {}};
};

void TakeField(void* field, size_t length, void* data) {
  auto& reading = *static_cast<Reading*>(data);
  reading.current.fields.emplace_back(static_cast<const char*>(field), length);
}

void TakeRow(int, void* data) {
  auto& reading = *static_cast<Reading*>(data);
  reading.lines.push_back(std::move(reading.current));
  reading.current.fields.clear();
}

std::string Quoted(const std::string& field) {
  if (field.find_first_of(",\"\r\n") == std::string::npos) {
    return field;
  }
  std::string quoted = "\"";
  for (const char c : field) {
    quoted.append(c == '"' ? 2 : 1, c);
  }
  return quoted + '"';
}

}  // namespace

// Line by line, because only so it can be told where a record begins: one may go over several.
std::vector<CsvLine> ReadCsv(const std::string& text) {
  constexpr std::string_view kMark = "\xEF\xBB\xBF";
  constexpr int kBetweenRecords = 0;
  csv_parser parser;
  if (csv_init(&parser, 0) != 0) {
    return {};
  }
  Reading reading;
  size_t number = 1;
  for (size_t at = text.starts_with(kMark) ? kMark.size() : 0; at < text.size(); ++number) {
    if (parser.pstate == kBetweenRecords) {
      reading.current.number = number;
    }
    const size_t end = std::min(text.find('\n', at), text.size() - 1) + 1;
    csv_parse(&parser, text.data() + at, end - at, TakeField, TakeRow, &reading);
    at = end;
  }
  csv_fini(&parser, TakeField, TakeRow, &reading);
  csv_free(&parser);
  return std::move(reading.lines);
}

std::string FormatCsv(const std::vector<std::string>& fields) {
  std::string line;
  for (const std::string& field : fields) {
    line += (line.empty() && &field == &fields.front() ? "" : ",") + Quoted(field);
  }
  return line + "\r\n";
}

}  // namespace kivadmin
