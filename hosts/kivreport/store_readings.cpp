#include "hosts/kivreport/store_readings.h"

#include <algorithm>
#include <string_view>
#include <system_error>
#include <utility>

#include "hosts/common/csv_text.h"
#include "hosts/common/host_error.h"
#include "hosts/common/whole_file.h"

namespace kivreport {
namespace {

using kivhost::ChildResult;
using kivhost::CsvRow;
using kivhost::HostError;
using kivhost::ReadCsv;
using enum kivhost::ExitCode;

constexpr size_t kLongestList = 16 << 20;

// As long as one store is slow, the others are read so far ahead of it.
constexpr size_t kAheadByJob = 8;

}  // namespace

std::vector<StoreOfList> ReadStoreList(const std::string& path) {
  const std::string text =
      kivhost::ReadWholeFile(path, kLongestList, "a list of stores", kWrongUsage);
  const std::string name = kivhost::NameOfFile(path);
  std::vector<StoreOfList> stores;
  bool isHeading = true;
  ReadCsv({name, std::string_view(text).substr(text.starts_with("\xEF\xBB\xBF") ? 3 : 0)},
          [&](const CsvRow& row) {
            if (std::exchange(isHeading, false)) {
              return true;
            }
            if (row.fields.size() < 2 || row.fields[0].empty() || row.fields[1].empty()) {
              throw HostError(kWrongUsage, name + ':' + std::to_string(row.number) +
                                               ": a school's name and its data root are wanted");
            }
            stores.push_back({row.fields[0], row.fields[1]});
            return true;
          });
  if (stores.empty()) {
    throw HostError(kWrongUsage, name + ": no store below the heading name,data root");
  }
  return stores;
}

StoreReadings::StoreReadings(const std::vector<StoreOfList>& stores,
                             const std::vector<std::string>& arguments, size_t jobs)
    : stores(stores), arguments(arguments), ahead(jobs * kAheadByJob), results(stores.size()) {
  while (threads.size() < std::clamp<size_t>(jobs, 1, stores.size()) && Begin()) {
  }
}

StoreReadings::~StoreReadings() {
  {
    const std::lock_guard lock(mutex);
    isOver = true;
  }
  taken.notify_all();
  for (std::thread& thread : threads) {
    thread.join();
  }
}

ChildResult StoreReadings::Take(size_t place) {
  std::unique_lock lock(mutex);
  arrived.wait(lock, [&] { return results[place].has_value(); });
  wanted = place + 1;
  taken.notify_all();
  return *std::exchange(results[place], std::nullopt);
}

// Fewer threads than asked for do as well.
bool StoreReadings::Begin() {
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

void StoreReadings::Work() {
  for (;;) {
    std::unique_lock lock(mutex);
    taken.wait(lock, [&] { return isOver || next < wanted + ahead; });
    if (isOver || next == stores.size()) {
      return;
    }
    const size_t place = next++;
    lock.unlock();
    ChildResult result = Read(stores[place]);
    lock.lock();
    results[place] = std::move(result);
    arrived.notify_all();
  }
}

ChildResult StoreReadings::Read(const StoreOfList& store) const {
  std::vector<std::string> words = arguments;
  words.insert(words.end(), {"--", store.root});
  try {
    return kivhost::RunSelf(words);
  } catch (const std::exception& error) {
    return {kNoStore, "", std::string("kivreport: ") + error.what() + '\n'};
  }
}

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

bool IsIncomplete(const ChildResult& result) {
  return result.exitCode > kRefused;
}

bool IsUnread(const ChildResult& result) {
  return IsIncomplete(result) && result.output.empty();
}

}  // namespace kivreport
