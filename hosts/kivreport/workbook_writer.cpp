#include "hosts/kivreport/workbook_writer.h"

#include <xlsxwriter.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <initializer_list>
#include <string>
#include <vector>

#include "hosts/common/host_error.h"
#include "hosts/common/unicode.h"
#include "hosts/kivreport/page/change_cells.h"
#include "hosts/kivreport/page/class_figures.h"
#include "hosts/kivreport/page/markup.h"
#include "hosts/kivreport/scratch_folder.h"
#include "hosts/kivreport/sheet_names.h"

namespace kivreport {
namespace {

constexpr double kNarrowest = 9, kWidest = 48;  // columns, in characters

struct Formats {
  explicit Formats(lxw_workbook* book, Language language)
      : title(workbook_add_format(book)),
        head(workbook_add_format(book)),
        date(workbook_add_format(book)),
        moment(workbook_add_format(book)),
        idle(workbook_add_format(book)),
        unbegun(workbook_add_format(book)),
        link(workbook_get_default_url_format(book)) {
    format_set_bold(title);
    format_set_font_size(title, 14);
    format_set_bold(head);
    format_set_text_wrap(head);
    format_set_align(head, LXW_ALIGN_VERTICAL_TOP);
    format_set_bottom(head, LXW_BORDER_THIN);
    format_set_bg_color(head, 0xE8EEF5);
    const bool german = language == Language::kGerman;
    format_set_num_format(date, german ? "dd.mm.yyyy" : "d mmm yyyy");
    format_set_num_format(moment, german ? "dd.mm.yyyy hh:mm" : "d mmm yyyy hh:mm");
    for (lxw_format* const format : {date, moment}) {
      format_set_align(format, LXW_ALIGN_LEFT);
    }
    format_set_bg_color(idle, 0xFDEEC9);
    format_set_bg_color(unbegun, 0xFCE4E2);
  }

  lxw_format *title, *head, *date, *moment, *idle, *unbegun, *link;
};

// Writes one sheet, and knows how wide each column has to be.
class Sheet {
 public:
  Sheet(lxw_workbook* book, const std::string& name)
      : sheet(workbook_add_worksheet(book, name.c_str())) {
    if (sheet == nullptr) {
      throw kivhost::HostError(kivhost::kNoStore, name + ": the workbook takes no such sheet");
    }
  }

  void Text(lxw_row_t row, lxw_col_t column, const std::string& text,
            lxw_format* format = nullptr) {
    worksheet_write_string(sheet, row, column, Presentable(text).c_str(), format);
    Widen(column, static_cast<double>(kivhost::CountCells(text)));
  }

  void Number(lxw_row_t row, lxw_col_t column, double number) {
    worksheet_write_number(sheet, row, column, number, nullptr);
  }

  // "2026-11-20T10:15:00"; what is no time stays empty.
  void Time(lxw_row_t row, lxw_col_t column, const std::string& time, lxw_format* format) {
    lxw_datetime parts{};
    if (std::sscanf(time.c_str(), "%4d-%2d-%2dT%2d:%2d", &parts.year, &parts.month, &parts.day,
                    &parts.hour, &parts.min) == 5) {
      worksheet_write_datetime(sheet, row, column, &parts, format);
      Widen(column, 11);
    }
  }

  // To the sheet of that name.
  void Link(lxw_row_t row, lxw_col_t column, const std::string& sheetName, const std::string& text,
            lxw_format* format) {
    std::string quoted;
    for (const char c : sheetName) {
      quoted += c == '\'' ? "''" : std::string(1, c);
    }
    worksheet_write_url_opt(sheet, row, column, ("internal:'" + quoted + "'!A1").c_str(), format,
                            Presentable(text).c_str(), nullptr);
    Widen(column, static_cast<double>(kivhost::CountCells(text)));
  }

  void Head(lxw_row_t row, const std::vector<std::string_view>& texts, lxw_format* format) {
    for (size_t i = 0; i < texts.size(); ++i) {
      const std::string text(texts[i]);
      worksheet_write_string(sheet, row, static_cast<lxw_col_t>(i), text.c_str(), format);
      Widen(static_cast<lxw_col_t>(i), kNarrowest);
    }
    worksheet_set_row(sheet, row, 2 * LXW_DEF_ROW_HEIGHT, nullptr);
  }

  // Red at the course's begin, green at its end, whoever is in the class.
  void ScaleMissions(lxw_row_t first, lxw_row_t last, lxw_col_t column) {
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
    worksheet_conditional_format_range(sheet, first, column, last, column, &scale);
  }

  // The head stays in sight, is repeated on paper, and filters the rows below it.
  void Finish(lxw_row_t head, lxw_row_t last) {
    const auto lastColumn = static_cast<lxw_col_t>(widths.size() - 1);
    worksheet_freeze_panes(sheet, head + 1, 1);
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

 private:
  void Widen(lxw_col_t column, double width) {
    widths.resize(std::max<size_t>(widths.size(), column + 1u), kNarrowest);
    widths[column] = std::max(widths[column], width);
  }

  lxw_worksheet* const sheet;
  std::vector<double> widths;
};

class Workbook {
 public:
  Workbook(lxw_workbook* book, const Report& report, Language language)
      : book(book),
        report(report),
        words(language),
        changeHead(words.Filled(Word::kChangeSince, {SinceWhen()})),
        formats(book, language) {}

  void Write() {
    Sheet summary(book, names.NameFor(std::string(words[Word::kSummary]), ""));
    lxw_row_t row = WriteFacts(summary) + 1;
    const lxw_row_t head = row++;
    summary.Head(head, SummaryHead(), formats.head);
    for (const Teacher& teacher : report.teachers) {
      for (const Class& group : teacher.classes) {
        const std::string name = names.NameFor(group.name, teacher.name);
        WriteClass(name, group);
        WriteSummary(summary, row++, {teacher, group, name});
      }
    }
    if (report.progress) {
      summary.ScaleMissions(head + 1, row, kMedianColumn);
    }
    summary.Finish(head, row - 1);
    row = WriteLeft(summary, row + 1);
    WriteUnread(summary, row + 1);
  }

 private:
  static constexpr lxw_col_t kMissionColumn = 1;  // of a class
  static constexpr lxw_col_t kMedianColumn = 3;   // of the summary

  struct ClassSheet {
    const Teacher& teacher;
    const Class& group;
    const std::string& name;
  };

  // What the report is of; answers the row below.
  lxw_row_t WriteFacts(Sheet& sheet) {
    sheet.Text(0, 0, report.school, formats.title);
    lxw_row_t row = 1;
    sheet.Text(row, 0, std::string(words[Word::kWritten]));
    sheet.Time(row++, 1, report.when, formats.moment);
    sheet.Text(row, 0, std::string(words[Word::kStore]));
    sheet.Text(row++, 1, report.root);
    const bool isComplete = ListUnread(report).empty();
    sheet.Text(row++, 0, std::string(words[isComplete ? Word::kComplete : Word::kIncomplete]));
    return row;
  }

  std::vector<std::string_view> SummaryHead() const {
    std::vector<std::string_view> head{words[Word::kClass], words[Word::kTeacher],
                                       words[Word::kHowMany]};
    if (report.progress) {
      for (const Word word :
           {Word::kMedian, Word::kFrom, Word::kTo, Word::kNotBegun, Word::kIdle}) {
        head.push_back(words[word]);
      }
    }
    return head;
  }

  void WriteSummary(Sheet& sheet, lxw_row_t row, const ClassSheet& place) {
    sheet.Link(row, 0, place.name, place.group.name, formats.link);
    sheet.Text(row, 1, place.teacher.name);
    if (place.group.IsKnown()) {
      sheet.Number(row, 2, static_cast<double>(place.group.students.size()));
    }
    const ClassFigures figures = FiguresOf(report, place.group);
    if (figures.known > 0) {
      lxw_col_t column = kMedianColumn;
      for (const double number :
           {figures.median, static_cast<double>(figures.least), static_cast<double>(figures.most),
            static_cast<double>(figures.notBegun), static_cast<double>(figures.idle)}) {
        sheet.Number(row, column++, number);
      }
    }
  }

  // Who is not there any more; answers the row below.
  lxw_row_t WriteLeft(Sheet& sheet, lxw_row_t row) {
    if (!report.since || report.since->left.empty()) {
      return row;
    }
    sheet.Text(row++, 0, words.Filled(Word::kLeftSince, {SinceWhen()}), formats.head);
    for (const Departed& departed : report.since->left) {
      sheet.Text(row, 0, departed.group);
      sheet.Text(row, 1, departed.teacher);
      sheet.Text(row, 2, departed.name);
      if (departed.mission) {
        sheet.Number(row, 3, *departed.mission);
      }
      sheet.Text(row++, 4, departed.note);
    }
    return row;
  }

  std::string SinceWhen() const {
    return report.since ? words.Date(report.since->Name()) : std::string();
  }

  void WriteUnread(Sheet& sheet, lxw_row_t row) {
    for (const UnreadPlace& place : ListUnread(report)) {
      lxw_col_t column = 0;
      for (const std::string* text :
           {&place.group, &place.teacher, &place.student, &place.unread->reason}) {
        sheet.Text(row, column++, *text);
      }
      ++row;
    }
  }

  void WriteClass(const std::string& name, const Class& group) {
    Sheet sheet(book, name);
    std::vector<std::string_view> head{words[Word::kStudent]};
    if (report.progress) {
      for (const Word word : {Word::kMission, Word::kPrevious, Word::kVocabulary, Word::kLessons,
                              Word::kLastWork, Word::kRemark}) {
        head.push_back(words[word]);
      }
    }
    if (report.progress && report.since) {
      head.push_back(changeHead);
      head.push_back(words[Word::kChange]);
    }
    sheet.Head(0, head, formats.head);
    lxw_row_t row = 0;
    for (const Student& student : group.students) {
      WriteStudent(sheet, ++row, student);
    }
    if (report.progress && row > 0) {
      sheet.ScaleMissions(1, row, kMissionColumn);
    }
    sheet.Finish(0, row);
  }

  void WriteStudent(Sheet& sheet, lxw_row_t row, const Student& student) {
    sheet.Text(row, 0, student.name);
    lxw_col_t column = kMissionColumn;
    if (student.progress) {
      const Progress& progress = *student.progress;
      for (const int number : {progress.currentMission, progress.previousMission,
                               progress.vocabLevel, progress.lessonsDone}) {
        sheet.Number(row, column++, number);
      }
      sheet.Time(row, column++, progress.lastWork, formats.date);
      WriteRemark(sheet, row, column++, student);
      WriteChange(sheet, row, column, student);
    } else if (student.unread) {
      constexpr lxw_col_t kRemarkColumn = 6;
      sheet.Text(row, kRemarkColumn, words.Filled(Word::kNotRead, {student.unread->what}));
    }
  }

  void WriteChange(Sheet& sheet, lxw_row_t row, lxw_col_t column, const Student& student) {
    if (student.change && student.change->missions) {
      sheet.Number(row, column, *student.change->missions);
    }
    if (student.change) {
      sheet.Text(row, static_cast<lxw_col_t>(column + 1), ChangeInWords(*student.change, words));
    }
  }

  void WriteRemark(Sheet& sheet, lxw_row_t row, lxw_col_t column, const Student& student) {
    const Standing standing = StandingOf(report, student);
    if (standing == Standing::kNotBegun) {
      sheet.Text(row, column, std::string(words[Word::kNever]), formats.unbegun);
    } else if (standing == Standing::kIdle) {
      const std::string days = std::to_string(DaysIdle(report, student).value_or(0));
      sheet.Text(row, column, words.Filled(Word::kIdleFor, {days}), formats.idle);
    }
  }

  lxw_workbook* const book;
  const Report& report;
  const Words words;
  const std::string changeHead;
  Formats formats;
  SheetNames names;
};

[[noreturn]] void ThrowUnwritten(lxw_error error) {
  throw kivhost::HostError(
      kivhost::kNoStore, std::string("the workbook could not be written: ") + lxw_strerror(error));
}

}  // namespace

// The library writes to a named file alone.
void WriteWorkbook(std::ostream& out, const Report& report, Language language) {
  const ScratchFolder scratch;
  std::string folder = scratch.Path();
  const std::string path = scratch.PathOf("report.xlsx");
  lxw_workbook_options options{};
  options.tmpdir = folder.data();
  lxw_workbook* const book = workbook_new_opt(path.c_str(), &options);
  if (book == nullptr) {
    ThrowUnwritten(LXW_ERROR_MEMORY_MALLOC_FAILED);
  }
  Workbook(book, report, language).Write();
  if (const lxw_error error = workbook_close(book); error != LXW_NO_ERROR) {
    ThrowUnwritten(error);
  }
  out << std::ifstream(path, std::ios::binary).rdbuf();
}

}  // namespace kivreport
