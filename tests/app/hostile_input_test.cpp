// Any bytes in the store and any path from the host: an answer, and no harm.
#include "tests/app/call_fixture.h"
#include "tests/support/test_clock.h"

namespace kivtest {
namespace {

using namespace kivstore;

class HostileInput : public AnnsStore {
 protected:
  HostileInput() : AnnsStore(Kind::kTeachers) {
    store.WriteOptions(classes, OptionsBytes().Set("VocabLevel", 2));
    Learn(ann, 7);
  }
  // No wait takes real time.
  TestClock clock{1000};
};

TEST_F(HostileInput, PathsThatLeadNowhereFailEveryCommand) {
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

TEST_F(HostileInput, TornFilesLoseNobodyAtAnyLength) {
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
        EXPECT_STREQ(host.block.studentName, "Ann Lee") << file;
        EXPECT_EQ(host.block.currentMission, 7) << file;
      }
    }
    store.WriteFile(file, whole);
  }
}

TEST_F(HostileInput, LongNamesAreCutToTheField) {
  store.SetLongName(ann, std::string(5000, 'A'), std::string(32766, 'L'));
  store.DropIndexLine(ann);
  EXPECT_TRUE(host.Teacher(1).Class(1).Student(1).Call(KIV_STUDENT_PROGRESS));
  EXPECT_EQ(host.block.studentName, std::string(51, 'A'));
  EXPECT_EQ(host.block.studentNameSize, 52);
}

}  // namespace
}  // namespace kivtest
