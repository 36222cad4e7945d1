#include "hosts/kivreport/many_stores.h"

#include <algorithm>
#include <condition_variable>
#include <iostream>
#include <mutex>
#include <optional>
#include <sstream>
#include <system_error>
#include <thread>

#include "hosts/common/child_process.h"
#include "hosts/common/csv_text.h"
#include "hosts/common/host_error.h"
#include "hosts/common/whole_file.h"
#include "hosts/kivreport/json_value.h"

namespace kivreport {
namespace {

using kivhost::ChildResult;
using kivhost::CsvRow;
using kivhost::FormatCsv;
using kivhost::HostError;
using kivhost::ReadCsv;
using kivhost::RunSelf;
using enum kivhost::ExitCode;

struct StoreOfList {
  std::string school, root;
};

constexpr size_t kLongestList = 16 << 20;

std::vector<StoreOfList> ReadList(const std::string& path) {
  const std::string text =
      kivhost::ReadWholeFile(path, kLongestList, "a list of stores", kWrongUsage);
  std::vector<StoreOfList> stores;
  bool isHeading = true;
  ReadCsv({path, std::string_view(text).substr(text.starts_with("\xEF\xBB\xBF") ? 3 : 0)},
          [&](const CsvRow& row) {
            if (std::exchange(isHeading, false)) {
              return true;
            }
            if (row.fields.size() < 2 || row.fields[0].empty() || row.fields[1].empty()) {
              throw HostError(kWrongUsage, path + ':' + std::to_string(row.number) +
                                               ": a school's name and its data root are wanted");
            }
            stores.push_back({row.fields[0], row.fields[1]});
            return true;
          });
  if (stores.empty()) {
    throw HostError(kWrongUsage, path + ": no store below the heading name,data root");
  }
  return stores;
}

// The results in the order of the stores, as several threads bring them.
class Readings {
 public:
  Readings(const ManyStores& task, const std::vector<StoreOfList>& stores)
      : task(task), stores(stores), results(stores.size()) {
    const size_t jobs = std::clamp<size_t>(task.jobs, 1, stores.size());
    while (threads.size() < jobs && Begin()) {
    }
  }
  // What nobody waits for any more is not begun.
  ~Readings() {
    {
      const std::lock_guard lock(mutex);
      next = stores.size();
    }
    for (std::thread& thread : threads) {
      thread.join();
    }
  }
  Readings(const Readings&) = delete;
  Readings& operator=(const Readings&) = delete;

  ChildResult Take(size_t i) {
    std::unique_lock lock(mutex);
    arrived.wait(lock, [&] { return results[i].has_value(); });
    return *std::exchange(results[i], std::nullopt);
  }

 private:
  // Fewer threads than asked for do as well.
  bool Begin() {
    try {
      threads.emplace_back([this] { Work(); });
      return true;
    } catch (const std::system_error& error) {
      if (threads.empty()) {
        throw HostError(kNoStore, std::string("no thread can be started: ") + error.what());
      }
      return false;
    }
  }

  void Work() {
    for (;;) {
      std::unique_lock lock(mutex);
      if (next == stores.size()) {
        return;
      }
      const size_t i = next++;
      lock.unlock();
      ChildResult result = Read(stores[i]);
      lock.lock();
      results[i] = std::move(result);
      arrived.notify_all();
    }
  }

  ChildResult Read(const StoreOfList& store) const {
    std::vector<std::string> arguments = task.arguments;
    arguments.insert(arguments.end(), {"--", store.root});
    try {
      return RunSelf(arguments);
    } catch (const std::exception& error) {
      return {kNoStore, "", std::string("kivreport: ") + error.what() + '\n'};
    }
  }

  const ManyStores& task;
  const std::vector<StoreOfList>& stores;
  std::mutex mutex;
  std::condition_variable arrived;
  std::vector<std::optional<ChildResult>> results;
  size_t next = 0;
  std::vector<std::thread> threads;
};

// The last line of what a process said, without the program's name.
std::string ReasonOf(const ChildResult& result) {
  std::string_view said(result.errors);
  while (said.ends_with('\n')) {
    said.remove_suffix(1);
  }
  said.remove_prefix(std::min(said.rfind('\n') + 1, said.size()));
  constexpr std::string_view kProgram = "kivreport: ";
  if (said.starts_with(kProgram)) {
    said.remove_prefix(kProgram.size());
  }
  return said.empty() ? "ended with " + std::to_string(result.exitCode) : std::string(said);
}

bool IsUnread(const ChildResult& result) {
  return result.exitCode > kRefused && result.output.empty();
}

// The schools' rows below one heading, which is the first one's that was read. A school that was
// not is a row without values.
class CsvLines {
 public:
  explicit CsvLines(bool raw) : raw(raw) {}

  std::string Of(const std::string& school, const ChildResult& result) {
    if (IsUnread(result)) {
      return columns == 0 ? (ahead.push_back(school), "") : Empty(school);
    }
    std::string text;
    bool isHeading = true;
    ReadCsv({school, result.output}, [&](CsvRow& row) {
      const bool isHead = std::exchange(isHeading, false);
      row.fields.insert(row.fields.begin(), isHead ? "school" : GuardedName(school, raw));
      text += !isHead ? FormatCsv(row.fields) : columns == 0 ? Begin(row.fields) : "";
      return true;
    });
    return text;
  }
  // Where none was read.
  std::string Rest() {
    return columns == 0 ? Begin({"school", "teacher", "class", "student"}) : "";
  }

 private:
  std::string Begin(const std::vector<std::string>& heading) {
    columns = heading.size();
    std::string text = FormatCsv(heading);
    for (const std::string& school : ahead) {
      text += Empty(school);
    }
    return text;
  }
  std::string Empty(const std::string& school) const {
    std::vector<std::string> fields(columns);
    fields[0] = GuardedName(school, raw);
    return FormatCsv(fields);
  }

  bool raw;
  size_t columns = 0;              // of the heading; 0 as long as there is none
  std::vector<std::string> ahead;  // schools that wait for it
};

// One school's part in the other forms; `isFirst` of those that are written.
class Part {
 public:
  Part(const ManyStores& task, const std::string& school, const ChildResult& result, bool isFirst)
      : task(task), school(school), result(result), isFirst(isFirst) {}

  std::string Text() const {
    switch (task.format) {
      case Format::kNdjson:
        return Ndjson();
      case Format::kJson:
        return (isFirst ? "{\"schools\":[\n" : ",\n") + JsonText();
      default:
        return (isFirst ? "" : "\n") + school + '\n' + Table();
    }
  }

 private:
  Json Unread() const {
    return {{"school", school}, {"complete", false}, {"reason", ReasonOf(result)}};
  }

  std::string Ndjson() const {
    if (IsUnread(result)) {
      return Dumped(Unread());
    }
    std::istringstream lines(result.output);
    std::string text;
    std::string name = Dumped(school);
    name.pop_back();  // its end of line
    for (std::string line; std::getline(lines, line);) {
      text += "{\"school\":" + name + ',' + line.substr(line.find('{') + 1) + '\n';
    }
    return text;
  }

  std::string JsonText() const {
    const Json own = Json::parse(result.output, nullptr, false);
    if (!own.is_object()) {
      return Dumped(Unread(), 2);
    }
    Json json{{"school", school}};
    for (const auto& [key, value] : own.items()) {
      if (key != "school") {
        json[key] = value;
      }
    }
    return Dumped(json, 2);
  }

  std::string Table() const {
    return IsUnread(result) ? "not read, " + ReasonOf(result) + '\n' : result.output;
  }

  const ManyStores& task;
  const std::string& school;
  const ChildResult& result;
  bool isFirst;
};

}  // namespace

size_t ReportManyStores(const ManyStores& task,
                        const std::function<void(std::string_view)>& write) {
  const std::vector<StoreOfList> stores = ReadList(task.list);
  Readings readings(task, stores);
  size_t unread = 0;
  CsvLines csv(task.raw);
  for (size_t i = 0; i < stores.size(); ++i) {
    const ChildResult result = readings.Take(i);
    if (result.exitCode != kDone) {
      unread += result.exitCode > kRefused;
      std::cerr << "kivreport: " << stores[i].school << ": " << ReasonOf(result) << '\n';
    }
    write(task.format == Format::kCsv ? csv.Of(stores[i].school, result)
                                      : Part(task, stores[i].school, result, i == 0).Text());
  }
  if (task.format == Format::kCsv) {
    write(csv.Rest());
  }
  if (task.format == Format::kJson) {
    write(unread == 0 ? "\n],\"complete\":true}\n" : "\n],\"complete\":false}\n");
  }
  return unread;
}

}  // namespace kivreport
