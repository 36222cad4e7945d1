// Four processes at work on one networked store, as four workstations are (workstation.cpp). Each
// student they add belongs to one of them, so that what it was told is the whole truth about that
// student; the lists they stand in are everyone's.
#include <future>
#include <sstream>

#include "tests/store/change/transactions.h"
#include "tests/support/run_program.h"

using namespace kivstore;
using namespace kivtest;

namespace {

constexpr int kProcesses = 4;

class ConcurrencyTest : public TransactionFixture {
 protected:
  // "First Last list" of each student they have.
  Lines RunAll() const {
    std::vector<std::future<RunResult>> workstations;
    for (int i = 0; i < kProcesses; ++i) {
      workstations.push_back(std::async(
          std::launch::async, RunProgram,
          Lines{KIVSTORE_BINARY_DIR "/bin/workstation", temp.Path(), std::to_string(i)}));
    }
    Lines told;
    for (std::future<RunResult>& workstation : workstations) {
      const RunResult result = workstation.get();
      EXPECT_EQ(result.exitCode, 0) << result.errors;
      std::istringstream lines(result.output);
      for (std::string line; std::getline(lines, line);) {
        std::erase(line, '\r');
        told.push_back(line);
      }
      EXPECT_FALSE(told.empty()) << "nothing was done";
    }
    return told;
  }
};

TEST_F(ConcurrencyTest, WhatAProcessWasToldIsTrueIsSoOnDisk) {
  Lines told = RunAll();
  const StoreImage image = ListAll();
  CheckStore({}, image, false);
  Lines listed;
  for (const ListedEntry& student : image.entries) {
    const std::string name = temp.ReadFile(student.Path() + "/longname.kiv");
    EXPECT_EQ(name.substr(0, student.first.size()), student.first);
    if (student.IsStudent() && !temp.Exists(student.Path() + "/mark")) {
      listed.push_back(student.Name() + " " + student.list);
    }
  }
  std::sort(told.begin(), told.end());
  std::sort(listed.begin(), listed.end());
  EXPECT_EQ(listed, told);
}

}  // namespace
