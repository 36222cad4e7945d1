// kivreport: prints the rosters and the progress of a store. It stands on the store's classes with
// the file services that make nothing.
#include <iostream>
#include <sstream>

#include "hosts/common/console.h"
#include "hosts/common/host_error.h"
#include "hosts/common/store_conf.h"
#include "hosts/common/whole_file.h"
#include "hosts/kivreport/command_line.h"
#include "hosts/kivreport/report_reader.h"
#include "hosts/kivreport/report_writer.h"
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

void WriteOut(const CommandLine& line, const Report& report) {
  std::ostringstream text;
  if (line.byteOrderMark) {
    text << "\xEF\xBB\xBF";
  }
  WriteReport(text, report, line.format);
  kivhost::WriteWholeFile(line.output, text.str(), line.force);
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

int Run(const CommandLine& line) {
  kivhost::NeedTarget(line.output, line.force);
  const Request request{Selector(line.teacher), Selector(line.group), !line.roster, line.quiet};
  const kivhost::OpenStore store(line.root, WantedBy(line));
  const auto charset = kivhost::NeedCharset(kivhost::CharsetOf(store, line.charset));
  if (!store.HasTeachers() && !line.teacher.empty()) {
    throw HostError(kWrongUsage, "--teacher: " + store.Root() + " is a store without teachers");
  }
  const Report report = ReadReport(store, request, *charset);
  if (report.CountClasses() == 0 && ListUnread(report).empty()) {
    throw HostError(kRefused, store.Root() + ": the store has nothing of what was asked for");
  }
  WriteOut(line, report);
  kivhost::TellUnshown("kivreport", *charset);
  RequireAll(report);
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
