// kivreport: prints the rosters and the progress of a store. It knows the system through the public
// header and the shared library and nothing else.
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

#include "hosts/common/charset.h"
#include "hosts/common/console.h"
#include "hosts/kivreport/command_line.h"
#include "hosts/kivreport/report_reader.h"
#include "hosts/kivreport/report_writer.h"
#include "hosts/kivreport/store_look.h"

namespace kivreport {
namespace {

int Fail(ExitCode code, const std::string& message) {
  std::cerr << "kivreport: " << message << '\n';
  return code;
}

std::string VersionText() {
  const Product product = StoreHost("", false).GetProduct();
  return "kivreport " KIVSTORE_VERSION ", product " + product.id + ", generation " +
         std::to_string(product.generation);
}

// The library takes a path that ends in the classes folder only with a separator behind it.
std::string WithSeparator(const std::string& root) {
  return root.empty() || root.back() == '/' || root.back() == '\\' ? root : root + '/';
}

int WriteOut(const CommandLine& line, const Report& report) {
  std::ostringstream text;
  if (line.byteOrderMark) {
    text << "\xEF\xBB\xBF";
  }
  WriteReport(text, report, line.format);
  if (line.output.empty()) {
    std::cout << text.str() << std::flush;
    return std::cout ? kGood : Fail(kWrongUsage, "standard output could not be written");
  }
  std::ofstream file(std::filesystem::path(line.output), std::ios::binary);
  file << text.str() << std::flush;
  return file ? kGood : Fail(kWrongUsage, line.output + ": could not be written");
}

int Run(const CommandLine& line) {
  const auto charset = kivhost::Charset::Open(line.charset);
  if (!charset) {
    return Fail(kWrongUsage, "--charset " + line.charset + ": no such character set");
  }
  const auto teacher = Selector::Parse(line.teacher);
  const auto group = Selector::Parse(line.group);
  if (!teacher || !group) {
    return Fail(kWrongUsage, "a place in a list is # and a number from 1, as in #2");
  }

  const StoreLook look = LookAtStore(line.root);
  if (!look.trouble.empty()) {
    return Fail(kNoStore, look.trouble);
  }
  const bool network = line.mode == Mode::kAuto ? look.network : line.mode == Mode::kNetwork;
  if (!network && !line.teacher.empty()) {
    return Fail(kWrongUsage, "--teacher: " + line.root + " is a local store, without teachers");
  }

  StoreHost host(kivhost::ToLibraryPath(WithSeparator(line.root)), network);
  const Request request{*teacher, *group, network, !line.roster, line.quiet};
  const Reading reading = ReadReport(host, request, *charset);
  const auto trouble =
      reading.emptyList || reading.failed ? FindTrouble(line.root, network) : std::nullopt;
  if (reading.failed) {
    return Fail(kNoStore,
                trouble.value_or(line.root + ": the store changed while it was read, or a "
                                             "list was locked; try again"));
  }
  if (trouble && reading.report.CountStudents() == 0) {
    return Fail(kNoStore, *trouble);
  }
  if (reading.report.CountClasses() == 0) {
    return Fail(kNothing, line.root + ": the store has nothing of what was asked for");
  }
  const int written = WriteOut(line, reading.report);
  // What could be read is reported all the same.
  return trouble && written == kGood ? Fail(kNoStore, *trouble) : written;
}

}  // namespace
}  // namespace kivreport

int main(int argc, char** argv) {
  kivhost::Console console(argc, argv);
  int exitCode = kivreport::kGood;
  const auto line = kivreport::ParseCommandLine(console.GetCount(), console.GetArguments(),
                                                kivreport::VersionText(), exitCode);
  return line ? kivreport::Run(*line) : exitCode;
}
