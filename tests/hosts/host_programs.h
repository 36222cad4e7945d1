// Runs the host programs on stores laid out by hand.
#pragma once

#include <gtest/gtest.h>

#include <future>
#include <nlohmann/json.hpp>

#include "tests/support/run_program.h"
#include "tests/support/store_builder.h"
#include "tests/support/temp_folder.h"

namespace kivtest {

using Json = nlohmann::json;
using Arguments = std::vector<std::string>;

constexpr const char* kAdmin = KIVSTORE_BINARY_DIR "/bin/kivadmin";
constexpr const char* kReport = KIVSTORE_BINARY_DIR "/bin/kivreport";

inline Arguments operator+(Arguments a, const Arguments& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}
inline RunResult Admin(const Arguments& arguments) {
  return RunProgram(Arguments{kAdmin} + arguments);
}
inline RunResult Report(const Arguments& arguments) {
  return RunProgram(Arguments{kReport} + arguments);
}
// What must be done, and what it says.
inline std::string Do(const Arguments& arguments) {
  const RunResult result = Admin(arguments);
  EXPECT_EQ(0, result.exitCode) << testing::PrintToString(arguments) << result.errors;
  return result.output;
}

inline void ExpectIn(const std::string& part, const std::string& text) {
  EXPECT_NE(std::string::npos, text.find(part)) << part << "\nis not in\n" << text;
}

// A line, how it ends, and what it tells on standard error.
struct Line {
  Arguments arguments;
  int exitCode;
  std::string told;
};

// All at once, since some wait for a lock.
inline void ExpectEach(const char* program, const std::vector<Line>& lines) {
  std::vector<std::future<RunResult>> results;
  for (const Line& line : lines) {
    results.push_back(std::async(RunProgram, Arguments{program} + line.arguments));
  }
  for (size_t i = 0; i < lines.size(); ++i) {
    const RunResult result = results[i].get();
    EXPECT_EQ(lines[i].exitCode, result.exitCode)
        << testing::PrintToString(lines[i].arguments) << result.errors;
    ExpectIn(lines[i].told, result.errors);
  }
}

// A teacher with two classes, whose folders are not in the order of their names; one student in
// the first.
class SchoolTest : public testing::Test {
 protected:
  TempFolder folder;
  const std::string root = folder.Path("store");
  StoreBuilder store{root, Kind::kTeachers};
  const std::string hill = store.AddTeacher("Ms Hill", "Hill");
  const std::string list = StoreBuilder::ClassList(hill);
  const std::string room = store.AddClass(hill, "Room 12", "Room12");
  const std::string other = store.AddClass(hill, "Empty", "Zempty");
  const std::string ann = store.AddStudent(room, "Ann", "Lee", "AnnLee");
  const Arguments inRoom{"--class", "room 12"}, inOther{"--class", "Empty"};
  const Arguments ofAnn{"--class", "Room 12", "--student", "Ann Lee"};

  void SetUp() override { store.Finish(); }
};

}  // namespace kivtest
