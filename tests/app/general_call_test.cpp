// One call: what it sets up, what it takes away, what it leaves, and how texts come back.
#include "app/general_call.h"

#include <cstring>

#include "app/commands.h"
#include "game/game_dob.h"
#include "records/tutor_options_dob.h"
#include "tests/app/call_fixture.h"

namespace kivtest {
namespace {

using namespace kivstore;

class GeneralCall : public ProcessState {};

TEST_F(GeneralCall, StandsOnlyBetweenItsSetUpAndItsTearDown) {
  const Host host("/nowhere/Classes.zep/", kNetworkedMode);
  SSite& site = LibraryState().site;
  site.NoteFailure(FailureKind::kOther, "old", ListKind::kFiles);
  {
    const SGeneralCall call(host.block);
    EXPECT_EQ(&call.GetSite(), &site);
    EXPECT_EQ(site.GetOwner(), call.GetApp());
    EXPECT_FALSE(site.GetFailure());
    EXPECT_TRUE(STeacherOptionsDob().IsA(*call.GetApp()->options));
    EXPECT_TRUE(SGameDob().IsA(*call.GetApp()->game));
    EXPECT_EQ(site.GetDataRoot(), "/nowhere/");
    EXPECT_EQ(site.GetOptionsInForce(), call.GetApp()->options.get());
    site.SelectTeacher(&call.GetApp()->currentUser.classEntry);
  }
  EXPECT_EQ(site.GetOwner(), nullptr);
  EXPECT_EQ(site.GetCurrentTeacher(), nullptr);
}

TEST_F(GeneralCall, AnyModeButZeroIsANetworkedStoreAndLatchesTheTeacherLevel) {
  using Row = std::tuple<uint8_t, int32_t, bool>;
  for (const auto& [mode, siteMode, tier] :
       {Row{0, 3, false}, Row{1, 4, true}, Row{0, 3, true}, Row{255, 4, true}}) {
    const SGeneralCall call(Host("/nowhere", mode).block);
    EXPECT_EQ(call.GetSite().GetSiteMode(), siteMode);
    EXPECT_EQ(call.GetSite().HasTeacherTier(), tier);
  }
}

TEST_F(GeneralCall, UnknownCommandsFailAndTouchNothing) {
  GeneralProc(nullptr);
  for (const int32_t command : {0, 7, 15, 77, 79, -1, INT32_MIN, INT32_MAX}) {
    Host host("/nowhere", kNetworkedMode);
    SGeneralParams expected = host.block;
    expected.command = command;
    EXPECT_FALSE(host.Call(command));
    EXPECT_EQ(std::memcmp(&host.block, &expected, sizeof expected), 0) << command;
  }
}

TEST_F(GeneralCall, TheProductIsNamedWithoutAStore) {
  using Row = std::tuple<uint8_t, int16_t, const char*>;
  for (const auto& [mode, size, id] : {Row{0, 10, "zep"}, Row{7, 10, "zep_net"}, Row{1, 4, "zep"},
                                       Row{1, 8, "zep_net"}, Row{1, 7, "zep_ne"}}) {
    Host host("", mode);
    host.block.dataPath = nullptr;
    host.block.productIdSize = size;
    EXPECT_TRUE(host.Call(KIV_PRODUCT_ID));
    EXPECT_STREQ(host.block.productId, id);
    EXPECT_EQ(host.block.productGeneration, 3);
    EXPECT_FALSE(host.Call(KIV_COUNT_TEACHERS));
  }
}

TEST_F(GeneralCall, TextsAreCutAndPaddedToExactlyTheirSize) {
  using Row = std::tuple<int32_t, const char*, std::string>;
  for (const auto& [size, text, bytes] :
       {Row{6, "Alice", {"Alice\0", 6}}, Row{5, "Alice", {"Alic\0", 5}},
        Row{10, "Alice", {"Alice\0\0\0\0\0", 10}}, Row{1, "Alice", {"\0", 1}}, Row{0, "Alice", ""},
        Row{INT32_MIN, "Alice", ""}, Row{4, "", {"\0\0\0\0", 4}},
        Row{52, "Fran\xE7ois", "Fran\xE7ois" + std::string(44, '\0')}}) {
    SGeneralParams block;
    std::memset(static_cast<void*>(&block), '#', sizeof block);
    commands::ReturnText(block, block.studentName, size, text);
    const std::string field(block.studentName, sizeof block.studentName);
    EXPECT_EQ(field, bytes + std::string(52 - bytes.size(), '#')) << size;
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
}

}  // namespace
}  // namespace kivtest
