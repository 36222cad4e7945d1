#include "hosts/kivreport/workbook_writer.h"

#include <fstream>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "hosts/common/host_error.h"
#include "hosts/common/scratch_folder.h"
#include "hosts/kivreport/class_figures.h"
#include "hosts/kivreport/page/change_cells.h"
#include "hosts/kivreport/schools_form.h"
#include "hosts/kivreport/sheet_names.h"
#include "hosts/kivreport/workbook_sheet.h"

namespace kivreport {
namespace {

[[noreturn]] void ThrowUnwritten(lxw_error error) {
  throw kivhost::HostError(
      kivhost::kNoStore, std::string("the workbook could not be written: ") + lxw_strerror(error));
}

// The library writes to a named file alone.
class BookFile {
 public:
  BookFile()
      : folder(scratch.Path()), path(scratch.PathOf("report.xlsx")), book(Open(path, folder)) {}
  ~BookFile() {
    if (book != nullptr) {
      workbook_close(book);
    }
  }
  BookFile(const BookFile&) = delete;
  BookFile& operator=(const BookFile&) = delete;

  lxw_workbook* Book() const { return book; }

  void WriteTo(const WriteText& write) {
    if (const lxw_error error = workbook_close(std::exchange(book, nullptr));
        error != LXW_NO_ERROR) {
      ThrowUnwritten(error);
    }
    std::ifstream file(path, std::ios::binary);
    scratch.WriteFrom(file, write);
  }

 private:
  static lxw_workbook* Open(const std::string& path, std::string& folder) {
    lxw_workbook_options options{};
    options.tmpdir = folder.data();
    lxw_workbook* const book = workbook_new_opt(path.c_str(), &options);
    if (book == nullptr) {
      ThrowUnwritten(LXW_ERROR_MEMORY_MALLOC_FAILED);
    }
    return book;
  }

  const kivhost::ScratchFolder scratch;
  std::string folder;
  const std::string path;
  lxw_workbook* book;
};

// The summary's head stands at a fixed row, so that what is above it may be written last.
class Workbook : public SchoolsForm {
 public:
  // `whole` is the one school, or what many are of.
  Workbook(const Report& whole, Language language, bool ofMany)
      : whole(whole),
        words(language),
        indent(ofMany ? 1 : 0),
        changeHead(words.Filled(Word::kChangeSince, {SinceWhen()})),
        formats(file.Book(), language),
        summary(file.Book(), names.NameFor(std::string(words[Word::kSummary]), ""), indent) {
    summary.Head(kHeadRow, Headed(SummaryHead()), formats);
  }

  void Add(const Report& school) override {
    for (const Teacher& teacher : school.teachers) {
      for (const Class& group : teacher.classes) {
        const std::string name = indent > 0 ? names.NameAmongSchools(group.name, school.school)
                                            : names.NameFor(group.name, teacher.name);
        WriteClass({school, teacher, group, name});
        WriteSummary({school, teacher, group, name});
      }
    }
    for (const UnreadPlace& place : ListUnread(school)) {
      unread.push_back(
          {school.school, place.group, place.teacher, place.student, place.unread->reason});
    }
  }

  void AddUnread(const std::string& school, const std::string& reason) override {
    summary.Lead(row, school);
    summary.Text(row++, 0, words.Filled(Word::kNotRead, {reason}));
    unread.push_back({school, "", "", "", reason});
  }

  void Finish(const WriteText& write) override {
    if (whole.progress) {
      summary.ScaleMissions(kHeadRow + 1, row, kMedianColumn);
    }
    WriteFacts();
    summary.Finish(kHeadRow, row - 1);
    WriteLeft();
    WriteUnread();
    file.WriteTo(write);
  }

 private:
  static constexpr lxw_row_t kHeadRow = 5;
  static constexpr lxw_col_t kMissionColumn = 1;  // of a class
  static constexpr lxw_col_t kMedianColumn = 3;   // of the summary

  struct ClassSheet {
    const Report& school;
    const Teacher& teacher;
    const Class& group;
    const std::string& name;
  };
  struct UnreadLine {
    std::string school, group, teacher, student, reason;
  };

  void WriteFacts() {
    summary.Indent(0);
    summary.Text(0, 0, whole.school, formats.title);
    summary.Text(1, 0, std::string(words[Word::kWritten]));
    summary.Time(1, 1, whole.when, formats.moment);
    summary.Text(2, 0, std::string(words[Word::kStore]));
    summary.Text(2, 1, whole.root);
    summary.Text(3, 0, std::string(words[unread.empty() ? Word::kComplete : Word::kIncomplete]));
    summary.Indent(indent);
  }

  std::vector<ColumnTitle> Headed(std::vector<ColumnTitle> head) const {
    if (indent > 0) {
      head.insert(head.begin(), {words[Word::kSchool]});
    }
    return head;
  }

  std::vector<ColumnTitle> SummaryHead() const {
    std::vector<ColumnTitle> head{{words[Word::kClass]}, {words[Word::kTeacher]}};
    head.push_back({words[Word::kHowMany], ColumnTitle::kNumber});
    if (whole.progress) {
      for (const Word word :
           {Word::kMedian, Word::kFrom, Word::kTo, Word::kNotBegun, Word::kIdle}) {
        head.push_back({words[word], ColumnTitle::kNumber});
      }
    }
    return head;
  }

  std::vector<ColumnTitle> ClassHead() const {
    std::vector<ColumnTitle> head{{words[Word::kStudent]}};
    if (whole.progress) {
      for (const Word word : {Word::kMission, Word::kPrevious, Word::kVocabulary, Word::kLessons}) {
        head.push_back({words[word], ColumnTitle::kNumber});
      }
      head.push_back({words[Word::kLastWork], ColumnTitle::kDate});
      head.push_back({words[Word::kRemark]});
    }
    if (whole.progress && whole.since) {
      head.push_back({changeHead, ColumnTitle::kNumber});
      head.push_back({words[Word::kChange]});
    }
    return head;
  }

  void WriteSummary(const ClassSheet& place) {
    summary.Lead(row, place.school.school);
    summary.Link(row, 0, place.name, place.group.name, formats.link);
    summary.Text(row, 1, place.teacher.name);
    if (place.group.IsKnown()) {
      summary.Number(row, 2, static_cast<double>(place.group.students.size()));
    }
    const ClassFigures figures = FiguresOf(place.school, place.group);
    if (figures.known > 0) {
      lxw_col_t column = kMedianColumn;
      for (const double number :
           {figures.median, static_cast<double>(figures.least), static_cast<double>(figures.most),
            static_cast<double>(figures.notBegun), static_cast<double>(figures.idle)}) {
        summary.Number(row, column++, number);
      }
    }
    ++row;
  }

  // Who is not there any more.
  void WriteLeft() {
    ++row;
    if (!whole.since || whole.since->left.empty()) {
      return;
    }
    summary.Text(row++, 0, words.Filled(Word::kLeftSince, {SinceWhen()}), formats.head);
    for (const Departed& departed : whole.since->left) {
      summary.Text(row, 0, departed.group);
      summary.Text(row, 1, departed.teacher);
      summary.Text(row, 2, departed.name);
      if (departed.mission) {
        summary.Number(row, 3, *departed.mission);
      }
      summary.Text(row++, 4, departed.note);
    }
  }

  std::string SinceWhen() const {
    return whole.since ? words.Date(whole.since->Name()) : std::string();
  }

  void WriteUnread() {
    ++row;
    for (const UnreadLine& line : unread) {
      summary.Lead(row, line.school);
      lxw_col_t column = 0;
      for (const std::string* text : {&line.group, &line.teacher, &line.student, &line.reason}) {
        summary.Text(row, column++, *text);
      }
      ++row;
    }
  }

  void WriteClass(const ClassSheet& place) {
    Sheet sheet(file.Book(), place.name, indent);
    sheet.Head(0, Headed(ClassHead()), formats);
    lxw_row_t last = 0;
    for (const Student& student : place.group.students) {
      sheet.Lead(++last, place.school.school);
      WriteStudent(sheet, last, place.school, student);
    }
    if (whole.progress && last > 0) {
      sheet.ScaleMissions(1, last, kMissionColumn);
    }
    sheet.Finish(0, last);
    if (place.group.unread) {
      const Word word = place.group.IsKnown() ? Word::kNotAllRead : Word::kNotRead;
      sheet.Text(last + 1, 0, words.Filled(word, {place.group.unread->what}));
    }
  }

  void WriteStudent(Sheet& sheet, lxw_row_t at, const Report& school, const Student& student) {
    sheet.Text(at, 0, student.name);
    lxw_col_t column = kMissionColumn;
    if (student.progress) {
      const Progress& progress = *student.progress;
      for (const int number : {progress.currentMission, progress.previousMission,
                               progress.vocabLevel, progress.lessonsDone}) {
        sheet.Number(at, column++, number);
      }
      sheet.Time(at, column++, progress.lastWork, formats.date);
      WriteRemark(sheet, at, column++, school, student);
      WriteChange(sheet, at, column, student);
    } else if (student.unread) {
      constexpr lxw_col_t kRemarkColumn = 6;
      sheet.Text(at, kRemarkColumn, words.Filled(Word::kNotRead, {student.unread->what}));
    }
  }

  void WriteChange(Sheet& sheet, lxw_row_t at, lxw_col_t column, const Student& student) {
    if (student.change && student.change->missions) {
      sheet.Number(at, column, *student.change->missions);
    }
    if (student.change) {
      sheet.Text(at, static_cast<lxw_col_t>(column + 1), ChangeInWords(*student.change, words));
    }
  }

  void WriteRemark(Sheet& sheet, lxw_row_t at, lxw_col_t column, const Report& school,
                   const Student& student) {
    const Standing standing = StandingOf(school, student);
    if (standing == Standing::kNotBegun) {
      sheet.Text(at, column, std::string(words[Word::kNever]), formats.unbegun);
    } else if (standing == Standing::kIdle) {
      const std::string days = std::to_string(DaysIdle(school, student).value_or(0));
      sheet.Text(at, column, words.Filled(Word::kIdleFor, {days}), formats.idle);
    }
  }

  const Report& whole;
  const Words words;
  const lxw_col_t indent;  // of the columns, behind the school's
  const std::string changeHead;
  BookFile file;
  SheetFormats formats;
  SheetNames names;
  Sheet summary;
  lxw_row_t row = kHeadRow + 1;  // of the summary, the next to be written
  std::vector<UnreadLine> unread;
};

}  // namespace

void WriteWorkbook(std::ostream& out, const Report& report, Language language) {
  Workbook book(report, language, false);
  book.Add(report);
  book.Finish([&out](std::string_view bytes) { out << bytes; });
}

std::unique_ptr<SchoolsForm> SchoolsWorkbook(const Report& whole, const Form& form) {
  return std::make_unique<Workbook>(whole, form.language, true);
}

}  // namespace kivreport
