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
  const auto& stated = facts["stated"];
  EXPECT_EQ(0u, table.find("kivadmin " + facts["version"].get<std::string>() + "\n\nstated\n"));
  EXPECT_EQ(stated.size() + facts["measured"].size() + 5,
            static_cast<size_t>(std::count(table.begin(), table.end(), '\n')));
  for (const auto& [key, value] : stated.items()) {
    // On many machines two readings of the speed are not the same.
    if (value.is_string() || (value.is_number() && key != "processorMhz")) {
      ExpectIn("  " + (value.is_string() ? value.get<std::string>() : value.dump()), table);
    }
  }
  EXPECT_EQ(std::min(64u, std::thread::hardware_concurrency()),
            stated["processorCount"].get<unsigned>());
  EXPECT_GT(stated["memoryMegabytes"].get<int64_t>(), 16);
#ifndef _WIN32
  EXPECT_TRUE(stated["colorDepth"].is_null());
  EXPECT_TRUE(stated["fontSmoothing"].is_null());
  ExpectIn("  not known\n", table);
#endif
#if defined(__x86_64__) || defined(__i386__)
  EXPECT_TRUE(stated["hasCpuid"].get<bool>());
  EXPECT_GT(facts["measured"]["processorMhz"].get<int>(), 100);
#endif
}

}  // namespace
}  // namespace kivtest
