// One call: what it sets up, what it takes away, what it leaves, and how texts come back.
#include "app/general_call.h"

#include <vector>

#include "app/commands.h"
#include "foundation/application.h"
#include "foundation/file_type.h"
#include "records/game_dob.h"
#include "records/tutor_options_dob.h"
#include "tests/app/call_fixture.h"

namespace kivtest {
namespace {

using namespace kivstore;

class GeneralCall : public ProcessState {};

TEST_F(GeneralCall, StandsOnlyBetweenItsSetUpAndItsTearDown) {
  Host host("/nowhere/Classes.zep/", kNetworkedMode);
  EXPECT_EQ(gApp, nullptr);
  {
    const SGeneralCall call(host.block);
    ASSERT_NE(gApp, nullptr);
    EXPECT_TRUE(STeacherOptionsDob().IsA(*gApp->options));
    EXPECT_TRUE(SGameDob().IsA(*gApp->game));
    EXPECT_EQ(gApp->GetProperty("Data"), "/nowhere/");
    EXPECT_STREQ(call.GetDataPath(), "/nowhere/Classes.zep/");
    EXPECT_NE(call.GetDataPath(), host.block.dataPath);
    EXPECT_EQ(call.GetSeparator(), '\\');
    EXPECT_EQ(gFileVersion, 0x00010000u);
    EXPECT_EQ(FindFileType(kFileTypeGame).GetExtension(), "zep");
    EXPECT_EQ(FindFileType(kFileTypeGame).GetCode(), FourCharCode("Game"));
    SelectTeacher(&gApp->currentUser.classEntry);
  }
  EXPECT_EQ(gApp, nullptr);
  EXPECT_EQ(gCurrentTeacher, nullptr);
}

TEST_F(GeneralCall, AnyModeButZeroIsANetworkedStoreAndLatchesTheTeacherLevel) {
  struct Row {
    uint8_t mode;
    int32_t siteMode;
    uint8_t tierAfterwards;
  };
  for (const Row& row : {Row{0, 3, 0}, Row{1, 4, 1}, Row{0, 3, 1}, Row{255, 4, 1}}) {
    Host host("/nowhere", row.mode);
    const SGeneralCall call(host.block);
    EXPECT_EQ(gSiteMode, row.siteMode);
    EXPECT_EQ(gTeacherTier, row.tierAfterwards);
  }
}

TEST_F(GeneralCall, UnknownCommandsFailAndTouchNothing) {
  for (const int32_t command : {0, 7, 15, 77, 79, -1, INT32_MIN, INT32_MAX}) {
    Host host("/nowhere", kNetworkedMode);
    SGeneralParams expected = host.block;
    expected.command = command;
    EXPECT_FALSE(host.Call(command));
    EXPECT_EQ(std::memcmp(&host.block, &expected, sizeof expected), 0) << command;
  }
}

TEST_F(GeneralCall, ANullBlockDoesNothingAndANullPathIsAnEmptyOne) {
  GeneralProc(nullptr);
  Host host("", kLocalMode);
  host.block.dataPath = nullptr;
  EXPECT_FALSE(host.Call(KIV_COUNT_TEACHERS));
  EXPECT_TRUE(host.Call(KIV_PRODUCT_ID));
}

TEST_F(GeneralCall, TheProductIsNamedWithoutAStore) {
  struct Row {
    uint8_t mode;
    int16_t size;
    const char* id;
  };
  for (const Row& row : {Row{0, 10, "zep"}, Row{1, 10, "zep_net"}, Row{7, 10, "zep_net"},
                         Row{1, 4, "zep"}, Row{1, 8, "zep_net"}, Row{1, 7, "zep_ne"}}) {
    Host host("", row.mode);
    host.block.productIdSize = row.size;
    EXPECT_TRUE(host.Call(KIV_PRODUCT_ID));
    EXPECT_STREQ(host.block.productId, row.id);
    EXPECT_EQ(host.block.productGeneration, 3);
  }
}

TEST_F(GeneralCall, TextsAreCutAndPaddedToExactlyTheirSize) {
  struct Row {
    int32_t size;
    const char* text;
    std::string bytes;
  };
  const std::vector<Row> rows = {
      {6, "Alice", std::string("Alice\0", 6)},
      {5, "Alice", std::string("Alic\0", 5)},
      {10, "Alice", std::string("Alice\0\0\0\0\0", 10)},
      {1, "Alice", std::string("\0", 1)},
      {0, "Alice", ""},
      {-1, "Alice", ""},
      {INT32_MIN, "Alice", ""},
      {4, "", std::string(4, '\0')},
      {52, "Fran\xE7ois", "Fran\xE7ois" + std::string(44, '\0')},
  };
  for (const Row& row : rows) {
    SGeneralParams block;
    std::memset(static_cast<void*>(&block), '#', sizeof block);
    commands::ReturnText(block, block.studentName, row.size, row.text);
    const std::string field(block.studentName, sizeof block.studentName);
    EXPECT_EQ(field, row.bytes + std::string(52 - row.bytes.size(), '#')) << row.size;
    EXPECT_EQ(block.studentNameSize, 0x23232323);
  }
}

TEST_F(GeneralCall, ASizeBeyondTheFieldRunsIntoTheNextOnesButNotBeyondTheBlock) {
  SGeneralParams block;
  std::memset(static_cast<void*>(&block), '#', sizeof block);
  commands::ReturnText(block, block.teacherName, 56, "Ms Hill");
  EXPECT_EQ(block.teacherNameSize, 0);
  EXPECT_EQ(block.teacherIndex, 0x23232323);

  commands::ReturnText(block, block.productId, INT16_MAX, "zep");
  EXPECT_STREQ(block.productId, "zep");
  EXPECT_EQ(block.productIdSize, 0);
  EXPECT_EQ(block.gapF6[0], '#');
  EXPECT_EQ(block.gapF6[1], '#');
}

TEST_F(GeneralCall, NamesComeFirstNameFirst) {
  struct Row {
    const char* first;
    const char* last;
    const char* shown;
  };
  for (const Row& row : {Row{"Ann", "Lee", "Ann Lee"}, Row{"Room 12", "", "Room 12"},
                         Row{"", "Lee", " Lee"}, Row{"", "", ""}}) {
    SGeneralParams block{};
    commands::ReturnName(block, block.studentName, 52, SLoginNameObj(row.first, row.last, "x"));
    EXPECT_STREQ(block.studentName, row.shown);
  }
}

}  // namespace
}  // namespace kivtest
