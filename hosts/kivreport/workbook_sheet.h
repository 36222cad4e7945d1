// One sheet of a workbook, and the looks of its cells.
#pragma once

#include <xlsxwriter.h>

#include <string>
#include <string_view>
#include <vector>

#include "hosts/kivreport/texts.h"

namespace kivreport {

struct SheetFormats {
  SheetFormats(lxw_workbook* book, Language language);

  lxw_format *title, *head, *numberHead, *dateHead, *date, *moment, *idle, *unbegun, *link;
};

// A column's, which stands as what is below it.
struct ColumnTitle {
  enum Kind { kText, kNumber, kDate };
  std::string_view text;
  Kind kind = kText;
};

// Knows how wide each column has to be. Columns count from the indent on: where that is 1, Lead
// writes into the column ahead of them.
class Sheet {
 public:
  // Throws HostError if the workbook takes no sheet of that name.
  Sheet(lxw_workbook* book, const std::string& name, lxw_col_t indent = 0);

  void Indent(lxw_col_t columns) { indent = columns; }

  void Lead(lxw_row_t row, const std::string& text);
  void Text(lxw_row_t row, lxw_col_t column, const std::string& text, lxw_format* format = nullptr);
  void Number(lxw_row_t row, lxw_col_t column, double number);
  // "2026-11-20T10:15:00"; what is no time stays empty.
  void Time(lxw_row_t row, lxw_col_t column, const std::string& time, lxw_format* format);
  // To the sheet of that name; a plain text where a sheet takes no more links.
  void Link(lxw_row_t row, lxw_col_t column, const std::string& sheetName, const std::string& text,
            lxw_format* format);
  // From the very first column on.
  void Head(lxw_row_t row, const std::vector<ColumnTitle>& titles, const SheetFormats& formats);
  // Red at the course's begin, green at its end, whoever is in the class.
  void ScaleMissions(lxw_row_t first, lxw_row_t last, lxw_col_t column);
  // The head stays in sight, is repeated on paper, and filters the rows below it.
  void Finish(lxw_row_t head, lxw_row_t last);

 private:
  lxw_col_t At(lxw_col_t column) const { return static_cast<lxw_col_t>(indent + column); }
  void Widen(lxw_col_t column, double width);

  lxw_worksheet* const sheet;
  lxw_col_t indent;
  std::vector<double> widths;
};

}  // namespace kivreport
