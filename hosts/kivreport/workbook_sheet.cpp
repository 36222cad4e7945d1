#include "hosts/kivreport/workbook_sheet.h"

#include <algorithm>
#include <cstdio>

#include "hosts/common/host_error.h"
#include "hosts/common/unicode.h"
#include "hosts/kivreport/model.h"
#include "hosts/kivreport/page/markup.h"

namespace kivreport {
namespace {

constexpr double kNarrowest = 9, kWidest = 48;  // columns, in characters

}  // namespace

SheetFormats::SheetFormats(lxw_workbook* book, Language language)
    : title(workbook_add_format(book)),
      head(workbook_add_format(book)),
      numberHead(workbook_add_format(book)),
      dateHead(workbook_add_format(book)),
      date(workbook_add_format(book)),
      moment(workbook_add_format(book)),
      idle(workbook_add_format(book)),
      unbegun(workbook_add_format(book)),
      link(workbook_get_default_url_format(book)) {
  format_set_bold(title);
  format_set_font_size(title, 14);
  for (lxw_format* const format : {head, numberHead, dateHead}) {
    format_set_bold(format);
    format_set_text_wrap(format);
    format_set_align(format, LXW_ALIGN_VERTICAL_TOP);
    format_set_bottom(format, LXW_BORDER_THIN);
    format_set_bg_color(format, 0xE8EEF5);
  }
  format_set_align(numberHead, LXW_ALIGN_RIGHT);
  const bool german = language == Language::kGerman;
  format_set_num_format(date, german ? "dd.mm.yyyy" : "d mmm yyyy");
  format_set_num_format(moment, german ? "dd.mm.yyyy hh:mm" : "d mmm yyyy hh:mm");
  for (lxw_format* const format : {date, moment}) {
    format_set_align(format, LXW_ALIGN_LEFT);
  }
  for (lxw_format* const format : {date, dateHead}) {
    format_set_indent(format, 1);
  }
  format_set_bg_color(idle, 0xFDEEC9);
  format_set_bg_color(unbegun, 0xFCE4E2);
}

Sheet::Sheet(lxw_workbook* book, const std::string& name, lxw_col_t indent)
    : sheet(workbook_add_worksheet(book, name.c_str())), indent(indent) {
  if (sheet == nullptr) {
    throw kivhost::HostError(kivhost::kNoStore, name + ": the workbook takes no such sheet");
  }
}

void Sheet::Lead(lxw_row_t row, const std::string& text) {
  if (indent > 0) {
    worksheet_write_string(sheet, row, 0, Presentable(text).c_str(), nullptr);
    Widen(0, static_cast<double>(kivhost::CountCells(text)));
  }
}

void Sheet::Text(lxw_row_t row, lxw_col_t column, const std::string& text, lxw_format* format) {
  worksheet_write_string(sheet, row, At(column), Presentable(text).c_str(), format);
  Widen(At(column), static_cast<double>(kivhost::CountCells(text)));
}

void Sheet::Number(lxw_row_t row, lxw_col_t column, double number) {
  worksheet_write_number(sheet, row, At(column), number, nullptr);
}

void Sheet::Time(lxw_row_t row, lxw_col_t column, const std::string& time, lxw_format* format) {
  lxw_datetime parts{};
  if (std::sscanf(time.c_str(), "%4d-%2d-%2dT%2d:%2d", &parts.year, &parts.month, &parts.day,
                  &parts.hour, &parts.min) == 5) {
    worksheet_write_datetime(sheet, row, At(column), &parts, format);
    Widen(At(column), 12);
  }
}

void Sheet::Link(lxw_row_t row, lxw_col_t column, const std::string& sheetName,
                 const std::string& text, lxw_format* format) {
  std::string quoted;
  for (const char c : sheetName) {
    quoted += c == '\'' ? "''" : std::string(1, c);
  }
  const lxw_error error =
      worksheet_write_url_opt(sheet, row, At(column), ("internal:'" + quoted + "'!A1").c_str(),
                              format, Presentable(text).c_str(), nullptr);
  if (error != LXW_NO_ERROR) {
    Text(row, column, text);
  }
  Widen(At(column), static_cast<double>(kivhost::CountCells(text)));
}

void Sheet::Head(lxw_row_t row, const std::vector<ColumnTitle>& titles,
                 const SheetFormats& formats) {
  lxw_format* const looks[] = {formats.head, formats.numberHead, formats.dateHead};
  lxw_col_t column = 0;
  for (const ColumnTitle& title : titles) {
    worksheet_write_string(sheet, row, column, std::string(title.text).c_str(), looks[title.kind]);
    Widen(column++, kNarrowest);
  }
  worksheet_set_row(sheet, row, 2 * LXW_DEF_ROW_HEIGHT, nullptr);
}

void Sheet::ScaleMissions(lxw_row_t first, lxw_row_t last, lxw_col_t column) {
  lxw_conditional_format scale{};
  scale.type = LXW_CONDITIONAL_3_COLOR_SCALE;
  scale.min_rule_type = scale.mid_rule_type = scale.max_rule_type =
      LXW_CONDITIONAL_RULE_TYPE_NUMBER;
  scale.min_value = 1;
  scale.mid_value = (1 + kMissions) / 2.0;
  scale.max_value = kMissions;
  scale.min_color = 0xF8A7A0;
  scale.mid_color = 0xFFF0B3;
  scale.max_color = 0x9AD6A5;
  worksheet_conditional_format_range(sheet, first, At(column), last, At(column), &scale);
}

void Sheet::Finish(lxw_row_t head, lxw_row_t last) {
  const auto lastColumn = static_cast<lxw_col_t>(widths.size() - 1);
  worksheet_freeze_panes(sheet, head + 1, At(1));
  worksheet_autofilter(sheet, head, 0, std::max(last, head), lastColumn);
  worksheet_repeat_rows(sheet, head, head);
  worksheet_fit_to_pages(sheet, 1, 0);
  worksheet_set_paper(sheet, 9);  // A4
  worksheet_set_footer(sheet, "&L&A&R&P / &N");
  for (size_t i = 0; i < widths.size(); ++i) {
    const auto column = static_cast<lxw_col_t>(i);
    worksheet_set_column(sheet, column, column, std::min(widths[i] + 2, kWidest), nullptr);
  }
}

void Sheet::Widen(lxw_col_t column, double width) {
  widths.resize(std::max<size_t>(widths.size(), column + 1u), kNarrowest);
  widths[column] = std::max(widths[column], width);
}

}  // namespace kivreport
