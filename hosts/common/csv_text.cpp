#include "hosts/common/csv_text.h"

#include <csv.h>

#include <new>
#include <optional>

#include "hosts/common/host_error.h"

namespace kivhost {
namespace {

// The states of the parser that show between two lines.
constexpr int kBetweenRows = 0;
constexpr int kInField = 2;

// Line by line, because only so it can be told where a row, or a quotation, begins.
class Parsing {
 public:
  explicit Parsing(const CsvText& csv) : csv(csv), number(csv.firstNumber) {
    csv_init(&parser, CSV_STRICT);
    csv_set_delim(&parser, static_cast<unsigned char>(csv.separator));
  }
  ~Parsing() { csv_free(&parser); }
  Parsing(const Parsing&) = delete;
  Parsing& operator=(const Parsing&) = delete;

  // The row that the line ends, if it ends one.
  std::optional<CsvRow> TakeLine(std::string_view line);
  // The row that the file ends without an end of line.
  std::optional<CsvRow> Finish();

 private:
  static void TakeField(void* field, size_t length, void* data);
  static void EndRow(int, void* data);
  void Feed(std::string_view text);
  void FeedLiterally(char c);
  std::optional<CsvRow> TakeEnded();
  bool IsInQuotes() const { return parser.pstate == kInField && parser.quoted != 0; }
  // The line where the quotation begins that the parser is in.
  size_t LineOfQuote() const { return wasInQuotes && fieldsBefore == fields ? quoteLine : number; }

  const CsvText& csv;
  csv_parser parser;
  CsvRow row{0, 0, {}};
  bool hasEnded = false;
  size_t number;
  size_t fields = 0;  // so far
  // As the line began.
  bool wasInQuotes = false;
  size_t fieldsBefore = 0;
  size_t quoteLine = 0;
};

void Parsing::TakeField(void* field, size_t length, void* data) {
  auto& parsing = *static_cast<Parsing*>(data);
  parsing.row.fields.emplace_back(static_cast<const char*>(field), length);
  ++parsing.fields;
}

void Parsing::EndRow(int, void* data) {
  static_cast<Parsing*>(data)->hasEnded = true;
}

std::optional<CsvRow> Parsing::TakeLine(std::string_view line) {
  if (parser.pstate == kBetweenRows) {
    row.number = number;
  }
  Feed(line);
  quoteLine = LineOfQuote();
  wasInQuotes = IsInQuotes();
  fieldsBefore = fields;
  row.lastNumber = number++;
  return TakeEnded();
}

// Strict, so that text behind a closing quotation mark shows. A mark within a field that has none
// around it is one of its characters.
void Parsing::Feed(std::string_view text) {
  while (true) {
    text.remove_prefix(csv_parse(&parser, text.data(), text.size(), TakeField, EndRow, this));
    if (text.empty()) {
      return;
    }
    if (csv_error(&parser) != CSV_EPARSE) {
      throw std::bad_alloc();
    }
    if (parser.quoted != 0) {
      throw HostError(kWrongUsage, csv.name + ':' + std::to_string(number) +
                                       ": text behind a closing quotation mark; the quotation "
                                       "begins in line " +
                                       std::to_string(LineOfQuote()));
    }
    FeedLiterally(text.front());
    text.remove_prefix(1);
  }
}

void Parsing::FeedLiterally(char c) {
  csv_set_opts(&parser, 0);
  csv_parse(&parser, &c, 1, TakeField, EndRow, this);
  csv_set_opts(&parser, CSV_STRICT);
}

std::optional<CsvRow> Parsing::Finish() {
  if (IsInQuotes()) {
    throw HostError(kWrongUsage, csv.name + ':' + std::to_string(quoteLine) +
                                     ": the quotation mark that opens here is never closed");
  }
  csv_fini(&parser, TakeField, EndRow, this);
  return TakeEnded();
}

std::optional<CsvRow> Parsing::TakeEnded() {
  if (!hasEnded) {
    return std::nullopt;
  }
  hasEnded = false;
  CsvRow ended = std::move(row);
  row.fields.clear();
  return ended;
}

// Behind the line's end, which is that of any system.
size_t EndOfLine(std::string_view text, size_t at) {
  const size_t end = text.find_first_of("\r\n", at);
  if (end == std::string_view::npos) {
    return text.size();
  }
  return end + (text.substr(end, 2) == "\r\n" ? 2 : 1);
}

std::string QuotedField(const std::string& field) {
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

void ReadCsv(const CsvText& csv, const std::function<bool(CsvRow& row)>& take) {
  constexpr size_t kMostRows = 1'000'000;
  Parsing parsing(csv);
  size_t rows = 0;
  for (size_t at = 0; at < csv.text.size();) {
    const size_t end = EndOfLine(csv.text, at);
    std::optional<CsvRow> row = parsing.TakeLine(csv.text.substr(at, end - at));
    rows += row.has_value();
    if (rows > kMostRows) {
      throw HostError(kWrongUsage, csv.name + ": more than 1,000,000 rows");
    }
    if (row && !take(*row)) {
      return;
    }
    at = end;
  }
  if (std::optional<CsvRow> row = parsing.Finish()) {
    take(*row);
  }
}

std::string FormatCsv(const std::vector<std::string>& fields) {
  std::string line;
  for (const std::string& field : fields) {
    line += (&field == &fields.front() ? "" : ",") + QuotedField(field);
  }
  return line + "\r\n";
}

}  // namespace kivhost
