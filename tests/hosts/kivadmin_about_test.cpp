// kivadmin's account of itself and the workstation.
#include <gtest/gtest.h>

#ifndef _WIN32
#include <unistd.h>
#endif

#include <algorithm>
#include <nlohmann/json.hpp>
#include <sstream>
#include <thread>

#include "tests/support/run_program.h"

namespace kivtest {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kAdmin = KIVSTORE_BINARY_DIR "/bin/kivadmin";

// As the table has it, without its unit.
std::string Shown(const Json& value) {
  if (value.is_null()) {
    return "not known";
  }
  if (value.is_boolean()) {
    return value.get<bool>() ? "yes" : "no";
  }
  return value.is_string() ? value.get<std::string>() : value.dump();
}

TEST(KivAdminAbout, TheTableTellsTheFactsOfTheJsonUnderWhoSaysThem) {
  const RunResult json = RunProgram({kAdmin, "about", "--format", "json"});
  const Json facts = Json::parse(json.output, nullptr, false);
  ASSERT_EQ(0, json.exitCode) << json.errors;
  ASSERT_TRUE(facts.is_object()) << json.output;
  std::istringstream table(RunProgram({kAdmin, "about"}).output);
  std::string line;
  std::getline(table, line);
  EXPECT_EQ("kivadmin " + facts["version"].get<std::string>(), line);
  for (const std::string source : {"stated", "measured"}) {
    std::getline(table, line);
    EXPECT_EQ("", line);
    std::getline(table, line);
    EXPECT_EQ(source, line);
    for (const auto& [key, value] : facts[source].items()) {
      std::getline(table, line);
      ASSERT_GT(line.size(), 0u) << key;
      // Two measurements, and on many machines two readings of the speed, are not the same.
      if (source == "stated" && key != "processorMhz") {
        EXPECT_NE(std::string::npos, line.find("  " + Shown(value))) << key << line;
      }
    }
  }
  EXPECT_FALSE(std::getline(table, line)) << line;
}

TEST(KivAdminAbout, WhatCanBeToldIsAndWhatCannotIsNull) {
  const Json facts =
      Json::parse(RunProgram({kAdmin, "about", "--format", "json"}).output, nullptr, false);
  ASSERT_TRUE(facts.is_object());
  const unsigned processors = std::min(64u, std::thread::hardware_concurrency());
  EXPECT_EQ(processors, facts["stated"]["processorCount"].get<unsigned>());
  EXPECT_TRUE(facts["stated"].contains("fontSmoothing"));
#ifndef _WIN32
  const int64_t memory = int64_t{sysconf(_SC_PHYS_PAGES)} * sysconf(_SC_PAGESIZE);
  EXPECT_EQ((memory + 0xFFFFF) >> 20, facts["stated"]["memoryMegabytes"].get<int64_t>());
  EXPECT_TRUE(facts["stated"]["colorDepth"].is_null());
  EXPECT_TRUE(facts["stated"]["fontSmoothing"].is_null());
#endif
#if defined(__x86_64__) || defined(__i386__)
  EXPECT_TRUE(facts["stated"]["hasCpuid"].get<bool>());
  EXPECT_GT(facts["measured"]["processorMhz"].get<int>(), 100);
#endif
}

}  // namespace
}  // namespace kivtest
