// Command 6 on a disk that fails at any one operation, and with any bytes in the store: an answer,
// no open handle, nobody lost. And any path from the host.
#include <functional>

#include "platform/platform.h"
#include "tests/app/call_fixture.h"
#include "tests/support/fault_file_services.h"
#include "tests/support/test_clock.h"

namespace kivtest {
namespace {

using namespace kivstore;

class HostileStore : public AnnsStore {
 protected:
  HostileStore() : AnnsStore(Kind::kTeachers) {
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

TEST_F(HostileStore, AFailureAtAnyOperationLosesNobody) {
  for (const SystemError error : {SystemError::kSharingViolation, SystemError::kFileNotFound}) {
    StrikeEveryOperation([&](auto& faults, int n) { faults.FailAt(n, error); });
  }
  StrikeEveryOperation(
      [](auto& faults, int n) { faults.FailAt(n, SystemError::kPathNotFound, true); });
  StrikeEveryOperation([](auto& faults, int n) { faults.FallShortAt(n, 3); });
}

TEST_F(HostileStore, ARepairThatIsCutOffLosesNobody) {
  for (const bool dies : {true, false}) {
    StrikeEveryOperation([&](auto& faults, int n) {
      store.WriteFile(students + "/index.kiv", IndexBytes({}));
      dies ? faults.DieAt(n) : faults.FallShortAt(n, 5);
    });
  }
}

TEST_F(HostileStore, NothingIsAskedTwiceAndNothingGrowsWithTheClass) {
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

TEST_F(HostileStore, PathsThatLeadNowhereFailEveryCommand) {
  folder.WriteFile("plain", "a file");
  for (const std::string& path : std::vector<std::string>{
           "", "/", "\\\\server\\share", "X:\\", "..", folder.Path("missing"), folder.Path("plain"),
           folder.Path("plain/"), folder.Path("a\nb"), std::string(300, 'x'),
           std::string(32000, 'x'), std::string(32766, '/'), std::string(70000, 'x'),
           "/" + std::string(32000, 'y') + "/Classes.zep/"}) {
    for (const uint8_t mode : {kNetworkedMode, kLocalMode}) {
      Host lost(path, mode);
      for (int command = 1; command <= 8; ++command) {
        EXPECT_FALSE(lost.Teacher(1).Class(1).Student(1).Call(command))
            << path.substr(0, 40) << " command " << command;
      }
    }
  }
}

TEST_F(HostileStore, TornFilesLoseNobodyAtAnyLength) {
  using Row = std::tuple<std::string, size_t>;
  for (const auto& [file, step] :
       {Row{ann + "/autogame.zep", 7}, Row{ann + "/options.kiv", 23}, Row{ann + "/longname.kiv", 1},
        Row{students + "/index.kiv", 1}, Row{classes + "/index.kiv", 1},
        Row{"Classes.zep/index.kiv", 1}}) {
    const std::string whole = store.ReadFile(file);
    for (size_t length = 0; length < whole.size(); length += step) {
      store.WriteFile(file, whole.substr(0, length));
      AskForAnn();  // repairs, and comes in the order of the names
      EXPECT_TRUE(AskForAnn()) << file << " of " << length;
      if (length == 0 && step == 1) {
        ExpectAnnAtSeven(0);
      }
    }
    store.WriteFile(file, whole);
  }
}

TEST_F(HostileStore, LongNamesAreCutToTheField) {
  store.SetLongName(ann, std::string(5000, 'A'), std::string(32766, 'L'));
  store.DropIndexLine(ann);
  EXPECT_TRUE(host.Teacher(1).Class(1).Student(1).Call(KIV_STUDENT_PROGRESS));
  EXPECT_EQ(host.block.studentName, std::string(51, 'A'));
  EXPECT_EQ(host.block.studentNameSize, 52);
}

}  // namespace
}  // namespace kivtest
