// Command 6 on a disk that fails at any one operation: an answer, no open handle, nobody lost.
#include <functional>

#include "platform/platform.h"
#include "tests/app/call_fixture.h"
#include "tests/support/fault_file_services.h"
#include "tests/support/test_clock.h"

namespace kivtest {
namespace {

using namespace kivstore;

class FaultyDisk : public AnnsStore {
 protected:
  FaultyDisk() : AnnsStore(Kind::kTeachers) {
    store.WriteOptions(classes, OptionsBytes().Set("VocabLevel", 3, 3800000000));
    Learn(ann, 7);
  }

  void ExpectAnnAtSeven(int n) {
    EXPECT_TRUE(AskForAnn()) << n;
    EXPECT_STREQ(host.block.studentName, "Ann Lee") << n;
    EXPECT_EQ(std::pair(host.block.currentMission, host.block.vocabLevel), std::pair(7, 3)) << n;
  }
  // `plan` arms the fault at the n-th operation; n rises until the command runs untouched.
  void StrikeEveryOperation(const std::function<void(FaultFileServices&, int)>& plan) {
    bool struck = true;
    for (int n = 1; struck && !HasFailure(); ++n) {
      FaultFileServices faults(*Platform().files);
      {
        const SPlatformOverride<IFileServices> installed(Platform().files, &faults);
        plan(faults, n);
        AskForAnn();
        struck = faults.HasStruck();
      }
      EXPECT_EQ(faults.OpenPaths(), std::vector<std::string>()) << n;
      ExpectAnnAtSeven(n);
      ASSERT_LT(n, 5000) << "the command never ran untouched";
      EXPECT_TRUE(struck || n > 40) << "the command asks for more than that";
    }
  }

  // Waits end at once.
  TestClock clock{5000};
};

TEST_F(FaultyDisk, AFailureAtAnyOperationLosesNobody) {
  for (const SystemError error : {SystemError::kSharingViolation, SystemError::kFileNotFound}) {
    StrikeEveryOperation([&](auto& faults, int n) { faults.FailAt(n, error); });
  }
  StrikeEveryOperation(
      [](auto& faults, int n) { faults.FailAt(n, SystemError::kPathNotFound, true); });
  StrikeEveryOperation([](auto& faults, int n) { faults.FallShortAt(n, 3); });
}

TEST_F(FaultyDisk, ARepairThatIsCutOffLosesNobody) {
  for (const bool dies : {true, false}) {
    StrikeEveryOperation([&](auto& faults, int n) {
      store.WriteFile(students + "/index.kiv", IndexBytes({}));
      dies ? faults.DieAt(n) : faults.FallShortAt(n, 5);
    });
  }
}

TEST_F(FaultyDisk, NothingIsAskedTwiceAndNothingGrowsWithTheClass) {
  const auto operations = [this] {
    FaultFileServices faults(*Platform().files);
    const SPlatformOverride<IFileServices> installed(Platform().files, &faults);
    ExpectAnnAtSeven(0);
    EXPECT_EQ(faults.CountOf("Walk"), 3);
    EXPECT_EQ(faults.CountOf("OpenAlone"), 3);
    return std::ssize(faults.Log()) - faults.CountOf("Next");
  };
  const auto small = operations();
  EXPECT_LE(small, 31);
  for (int i = 0; i < 60; ++i) {
    store.AddStudent(room, "Student", std::to_string(i));
  }
  store.Finish();
  EXPECT_EQ(operations(), small);
}

}  // namespace
}  // namespace kivtest
