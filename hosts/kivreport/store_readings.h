// The stores of a list, each read by a process of its own.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "hosts/common/child_process.h"

namespace kivreport {

struct StoreOfList {
  std::string school, root;
};

// A CSV file with the heading name,data root. Throws wrong usage for what is none.
std::vector<StoreOfList> ReadStoreList(const std::string& path);

// What the processes print, as several threads bring it.
class StoreReadings {
 public:
  // `jobs` at a time. Each process has the arguments and behind them the root. Both lists outlive
  // the readings.
  StoreReadings(const std::vector<StoreOfList>& stores, const std::vector<std::string>& arguments,
                size_t jobs);
  // What nobody waits for any more is not begun.
  ~StoreReadings();
  StoreReadings(const StoreReadings&) = delete;
  StoreReadings& operator=(const StoreReadings&) = delete;

  // Of the store at that place in the list, each once and in order.
  kivhost::ChildResult Take(size_t place);

 private:
  bool Begin();
  void Work();
  kivhost::ChildResult Read(const StoreOfList& store) const;

  const std::vector<StoreOfList>& stores;
  const std::vector<std::string>& arguments;
  const size_t ahead;  // so many results wait at most
  std::mutex mutex;
  std::condition_variable arrived, taken;
  std::vector<std::optional<kivhost::ChildResult>> results;
  size_t next = 0;      // to be begun
  size_t wanted = 0;    // to be taken
  bool isOver = false;  // nothing is begun any more
  std::vector<std::thread> threads;
};

// The last line of what a process said, without the program's name.
std::string ReasonOf(const kivhost::ChildResult& result);

// Not all of its store could be read; and it told nothing of it.
bool IsIncomplete(const kivhost::ChildResult& result);
bool IsUnread(const kivhost::ChildResult& result);

}  // namespace kivreport
