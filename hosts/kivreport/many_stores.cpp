#include "hosts/kivreport/many_stores.h"

#include <iostream>
#include <memory>
#include <utility>

#include "hosts/common/host_error.h"
#include "hosts/common/iso_time.h"
#include "hosts/common/progress_bar.h"
#include "hosts/kivreport/cells.h"
#include "hosts/kivreport/json_report.h"
#include "hosts/kivreport/schools_form.h"
#include "hosts/kivreport/schools_text.h"
#include "hosts/kivreport/store_readings.h"

namespace kivreport {
namespace {

using kivhost::ChildResult;
using enum kivhost::ExitCode;

using TakeSchool = std::function<void(const std::string& school, const ChildResult& result)>;

SchoolsRead ReadAll(const ManyStores& task, const TakeSchool& take) {
  const std::vector<StoreOfList> stores = ReadStoreList(task.list);
  StoreReadings readings(stores, task.arguments, task.jobs);
  SchoolsRead read;
  std::string told;
  kivhost::ProgressBar bar("schools", stores.size(), task.quiet);
  for (size_t i = 0; i < stores.size(); ++i) {
    const ChildResult result = readings.Take(i);
    ++(result.exitCode == kDone      ? read.with
       : result.exitCode == kRefused ? read.without
                                     : read.unread);
    if (result.exitCode != kDone) {
      told += "kivreport: " + Printable(stores[i].school) + ": " + ReasonOf(result) + '\n';
    }
    take(stores[i].school, result);
    bar.Advance();
  }
  bar.Clear();
  std::cerr << told;
  return read;
}

SchoolsRead WriteTexts(const ManyStores& task, const WriteText& write) {
  SchoolsText text(task.form);
  const SchoolsRead read = ReadAll(task, [&](const std::string& school, const ChildResult& result) {
    write(text.Of(school, result));
  });
  write(text.End(read.unread == 0));
  return read;
}

// "north" of ".../north.csv".
std::string NameOf(const std::string& list) {
  const std::string file = list.substr(list.find_last_of("/\\") + 1);
  return file.substr(0, file.rfind('.'));
}

// What all of the schools are of.
Report WholeOf(const ManyStores& task) {
  Report whole;
  whole.school = NameOf(task.list);
  whole.root = task.list;
  whole.when = kivhost::IsoTime(kivstore::SDateTime());
  whole.idleDays = task.idleDays;
  whole.part = task.part;
  whole.progress = task.progress;
  return whole;
}

SchoolsRead WriteModels(const ManyStores& task, const WriteText& write) {
  const Report whole = WholeOf(task);
  const std::unique_ptr<SchoolsForm> form = task.form.format == Format::kHtml
                                                ? SchoolsPage(whole, task.form)
                                                : SchoolsWorkbook(whole, task.form);
  const SchoolsRead read = ReadAll(task, [&](const std::string& school, const ChildResult& result) {
    if (auto report = ReportOfJson(result.output, whole)) {
      report->school = school;
      form->Add(*report);
    } else {
      form->AddUnread(school, ReasonOf(result));
    }
  });
  form->Finish(write);
  return read;
}

}  // namespace

SchoolsRead ReportManyStores(const ManyStores& task,
                             const std::function<void(std::string_view)>& write) {
  return HasOwnLayout(task.form.format) ? WriteModels(task, write) : WriteTexts(task, write);
}

}  // namespace kivreport
