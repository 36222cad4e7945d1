// kivadmin's account of itself and the workstation.
#include <algorithm>
#include <thread>

#include "tests/hosts/host_programs.h"

namespace kivtest {
namespace {

TEST(KivAdminAbout, TellsWhatCanBeToldInBothFormsAndNullForTheRest) {
  const RunResult json = Admin({"about", "--format", "json"});
  const auto facts = nlohmann::ordered_json::parse(json.output, nullptr, false);
  ASSERT_TRUE(facts.is_object()) << json.output << json.errors;
  const std::string table = Admin({"about"}).output;
  EXPECT_EQ(0u, table.find("kivadmin " + facts["version"].get<std::string>() + "\n\nstated\n"));
  const size_t rows = facts["stated"].size() + facts["measured"].size();
  EXPECT_EQ(static_cast<ptrdiff_t>(rows) + 5, std::count(table.begin(), table.end(), '\n'));
  for (const auto& [key, value] : facts["stated"].items()) {
    // On many machines two readings of the speed are not the same.
    if (value.is_string() || (value.is_number() && key != "processorMhz")) {
      const std::string shown = value.is_string() ? value.get<std::string>() : value.dump();
      EXPECT_NE(std::string::npos, table.find("  " + shown)) << key << table;
    }
  }
  const auto& stated = facts["stated"];
  EXPECT_EQ(std::min(64u, std::thread::hardware_concurrency()),
            stated["processorCount"].get<unsigned>());
  EXPECT_GT(stated["memoryMegabytes"].get<int64_t>(), 16);
#ifndef _WIN32
  EXPECT_TRUE(stated["colorDepth"].is_null());
  EXPECT_TRUE(stated["fontSmoothing"].is_null());
  EXPECT_NE(std::string::npos, table.find("  not known\n"));
#endif
#if defined(__x86_64__) || defined(__i386__)
  EXPECT_TRUE(stated["hasCpuid"].get<bool>());
  EXPECT_GT(facts["measured"]["processorMhz"].get<int>(), 100);
#endif
}

}  // namespace
}  // namespace kivtest
