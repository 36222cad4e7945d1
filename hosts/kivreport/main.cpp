// kivreport: prints the rosters and the progress of a store. It stands on the store's classes with
// the file services that make nothing.
#include <iostream>
#include <sstream>
#include <utility>

#include "hosts/common/console.h"
#include "hosts/common/counted.h"
#include "hosts/common/host_error.h"
#include "hosts/common/store_conf.h"
#include "hosts/common/whole_file.h"
#include "hosts/kivreport/command_line.h"
#include "hosts/kivreport/comparison.h"
#include "hosts/kivreport/kept_report.h"
#include "hosts/kivreport/many_stores.h"
#include "hosts/kivreport/report_reader.h"
#include "hosts/kivreport/report_writer.h"
#include "hosts/kivreport/store_arguments.h"
#include "kivstore/general_proc.h"

namespace kivreport {
namespace {

using kivhost::HostError;
using enum kivhost::ExitCode;

std::string VersionText() {
  SGeneralParams params{};
  params.command = KIV_PRODUCT_ID;
  params.productIdSize = sizeof params.productId;
  GeneralProc(&params);
  return std::string("kivreport " KIVSTORE_VERSION ", product ") + params.productId +
         ", generation " + std::to_string(params.productGeneration);
}

// What could be read has been reported all the same.
void RequireAll(const Report& report) {
  const std::vector<std::string> reasons = ReasonsOf(report);
  if (reasons.empty()) {
    return;
  }
  const size_t more = reasons.size() - 1;
  throw HostError(kNoStore,
                  "incomplete: " + reasons[0] +
                      (more > 0 ? ", and " + std::to_string(more) + " more reasons" : ""));
}

kivhost::KindWanted WantedBy(const CommandLine& line) {
  using enum kivhost::SiteKind;
  kivhost::KindWanted wanted;
  wanted.force = line.force;
  if (line.mode == Mode::kLocal) {
    wanted.kinds = {kLocal};
  } else if (line.mode == Mode::kNetwork) {
    wanted.kinds = {kTeachers, kShared};
  }
  return wanted;
}

Selection SelectionOf(const CommandLine& line) {
  return {Selector(line.teacher), Selector(line.group), Selector(line.student),
          line.lowestMission,     line.highestMission,  line.sort};
}

// What a report that is kept will say of itself.
std::vector<std::pair<std::string, std::string>> PartOf(const CommandLine& line) {
  const auto number = [](const std::optional<int>& value) {
    return value ? std::to_string(*value) : std::string();
  };
  std::vector<std::pair<std::string, std::string>> part{
      {"teacher", line.teacher},
      {"class", line.group},
      {"student", line.student},
      {"min_mission", number(line.lowestMission)},
      {"max_mission", number(line.highestMission)}};
  std::erase_if(part, [](const auto& option) { return option.second.empty(); });
  return part;
}

std::optional<size_t> WidthOf(const CommandLine& line) {
  if (line.width) {
    return *line.width > 0 ? std::optional(static_cast<size_t>(*line.width)) : std::nullopt;
  }
  return line.output == "-" ? kivhost::OutputColumns() : std::nullopt;
}

// By itself a file has none.
bool HasColor(const CommandLine& line) {
  const bool isWished = line.color == kivhost::ColorWish::kAlways;
  return isWished || (line.output == "-" && kivhost::HasColor(line.color));
}

Form FormOf(const CommandLine& line) {
  Form form;
  form.format = line.format;
  if (!line.columns.empty()) {
    form.columns = ParseColumns(line.columns);
    NeedKnown(*form.columns, !line.roster, !line.since.empty());
  }
  form.raw = line.raw;
  const bool isTable = line.format == Format::kTable;
  form.sheets = !line.student.empty() && !line.roster && !(isTable && form.columns);
  form.width = WidthOf(line);
  form.showsUnicode = kivhost::ShowsUnicode();
  form.language = line.language;
  form.marksStanding = line.idleDays.has_value();
  form.hasColor = isTable && HasColor(line);
  return form;
}

// A page and a workbook have their own layout, and a workbook is no text.
void NeedFitting(const CommandLine& line) {
  const bool isWorkbook = line.format == Format::kXlsx;
  if (!line.columns.empty() && HasOwnLayout(line.format)) {
    throw HostError(kWrongUsage, "--columns: a page and a workbook have columns of their own");
  }
  if (isWorkbook && line.byteOrderMark) {
    throw HostError(kWrongUsage, "--bom: a workbook has none");
  }
  if (isWorkbook && line.output == "-" && kivhost::OutputColumns()) {
    throw HostError(kWrongUsage, "a workbook is nothing for a terminal; name a file by --output");
  }
}

// What one run needs.
struct Task {
  const CommandLine& line;
  const kivhost::OpenStore& store;
  const kivhost::Charset& charset;
  const Request request;
  const Selection selection;
  const Form form;
  const std::optional<KeptReport>& before;
};

std::string Opening(const CommandLine& line) {
  return line.byteOrderMark ? "\xEF\xBB\xBF" : "";
}

// Whether the rows can be written as they are read. Who has left is known only at the end, and so
// is which class of a roster has nobody who was asked for.
bool CanStream(const Task& task) {
  return RowFormOf(task.form.format) != nullptr && !task.before &&
         (task.request.progress || !task.selection.LimitsStudents());
}

Report StreamReport(const Task& task, Sought& sought) {
  const RowForm& rows = *RowFormOf(task.form.format);
  kivhost::WholeFile file(task.line.output, task.line.force);
  std::ostringstream text;
  text << Opening(task.line);
  bool hasHead = false;
  const auto writeHead = [&](const Report& report) {
    if (!std::exchange(hasHead, true)) {
      rows.writeHead(text, report, task.form);
    }
  };
  const auto writeClass = [&](const Report& report, const Teacher& teacher, Class* group) {
    writeHead(report);
    if (group != nullptr) {
      Arrange(*group, task.selection, sought);
    }
    rows.writeClass(text, report, teacher, group, task.form);
    file.Write(std::exchange(text, {}).str());
  };
  Report report = VisitReport(task.store, task.request, task.charset, sought, writeClass);
  writeHead(report);
  file.Write(text.str());
  file.Finish();
  return report;
}

// A folder may hold anything; what is no report of another day is told.
void AddKeptReports(Report& report, const std::string& folder) {
  std::vector<std::string> passed;
  AddHistory(report, folder, passed);
  for (const std::string& reason : passed) {
    std::cerr << "kivreport: passed over: " << reason << '\n';
  }
}

Report ReadWhole(const Task& task, Sought& sought) {
  Report report = ReadReport(task.store, task.request, task.charset, sought);
  if (task.before) {
    CompareWith(report, *task.before, task.line.since, task.selection);
  }
  if (!task.line.history.empty()) {
    AddKeptReports(report, task.line.history);
  }
  Arrange(report, task.selection, sought);
  return report;
}

void WriteOut(const Task& task, const Report& report) {
  std::ostringstream text;
  text << Opening(task.line);
  WriteReport(text, report, task.form);
  kivhost::WriteWholeFile(task.line.output, text.str(), task.line.force);
}

bool FoundNothing(const Task& task, const Report& report, const Sought& sought) {
  const bool hasLeft = report.since && !report.since->left.empty();
  return sought.FoundNothing(task.selection) && ListUnread(report).empty() && !hasLeft;
}

void WriteReportOf(const Task& task) {
  Sought sought;
  const bool streams = CanStream(task);
  const Report report = streams ? StreamReport(task, sought) : ReadWhole(task, sought);
  const bool isNothing = FoundNothing(task, report, sought);
  // An empty table tells nothing that the message does not tell better; what a program reads stays
  // what it can read.
  if (!streams && !(isNothing && task.form.format == Format::kTable)) {
    WriteOut(task, report);
  }
  kivhost::TellUnshown("kivreport", task.charset);
  if (isNothing) {
    throw HostError(kRefused, task.store.Root() + ": " + NothingText(task.selection, sought));
  }
  RequireAll(report);
}

// A bar and a report on the same terminal would run into each other.
bool ShowsNoBar(const CommandLine& line) {
  return line.quiet || (line.output == "-" && kivhost::OutputIsTerminal());
}

// What is not read is told behind all that is.
int RunMany(const CommandLine& line) {
  ManyStores task;
  task.list = line.stores;
  task.jobs = static_cast<size_t>(line.jobs);
  task.form = FormOf(line);
  task.arguments = ArgumentsForEach(line, task.form);
  task.quiet = ShowsNoBar(line);
  task.idleDays = line.idleDays.value_or(task.idleDays);
  task.part = PartOf(line);
  task.progress = !line.roster;
  kivhost::WholeFile file(line.output, line.force);
  file.Write(Opening(line));
  const SchoolsRead read = ReportManyStores(task, [&](std::string_view text) { file.Write(text); });
  file.Finish();
  if (read.unread > 0) {
    throw HostError(kNoStore, "incomplete: " + kivhost::Counted(read.unread, "school") +
                                  " could not be read, or not all of it");
  }
  if (read.with == 0) {
    throw HostError(kRefused, line.stores + ": no school has what was asked for");
  }
  return kDone;
}

int Run(const CommandLine& line) {
  NeedFitting(line);
  kivhost::NeedTarget(line.output, line.force);
  if (!line.stores.empty()) {
    return RunMany(line);
  }
  const Selection selection = SelectionOf(line);
  const Form form = FormOf(line);
  const std::optional<KeptReport> before =
      line.since.empty() ? std::nullopt : std::optional(ReadKeptReport(line.since));
  const kivhost::OpenStore store(line.root, WantedBy(line));
  const auto charset = kivhost::NeedCharset(kivhost::CharsetOf(store, line.charset));
  if (!store.HasTeachers() && !line.teacher.empty()) {
    throw HostError(kWrongUsage, "--teacher: " + store.Root() + " is a store without teachers");
  }
  const Request request{selection.teacher,          selection.group, !line.roster, line.quiet,
                        line.idleDays.value_or(14), PartOf(line)};
  WriteReportOf({line, store, *charset, request, selection, form, before});
  return kDone;
}

int Main(int argc, char** argv) {
  kivhost::Console console(argc, argv);
  const auto line = ParseCommandLine(console.GetCount(), console.GetArguments(), VersionText);
  return line ? Run(*line) : kDone;
}

}  // namespace
}  // namespace kivreport

int main(int argc, char** argv) {
  return kivhost::RunHost("kivreport", [&] { return kivreport::Main(argc, argv); });
}
