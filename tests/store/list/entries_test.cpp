#include "store/list/entries.h"

#include "tests/support/site_fixture.h"

using namespace kivstore;
using namespace kivtest;

namespace {

TEST(Entries, OfEqualNamesTheDefaultEntryComesFirst) {
  const SLoginNameObj ann("Ann", "", "Ann"), byDefault("Default", "", "DEFAULT"),
      lower("default", "", "Defaul0"), other("Default", "", "Other");
  EXPECT_LT(CompareByDisplayName(ann, byDefault), 0);
  EXPECT_LT(CompareByDisplayName(byDefault, lower), 0);
  EXPECT_GT(CompareByDisplayName(lower, byDefault), 0);
  EXPECT_EQ(CompareByDisplayName(lower, other), 0);
}

TEST(Entries, SortByFolderIgnoringCasePastEightLettersWithEqualsInOrder) {
  SLoginList logins;
  for (const char* const folder :
       {"room2", "Room", "averylongname", "AVERYLONG", "b", "B", "\xE9", ""}) {
    const SString number(std::to_string(logins.GetSize()).c_str());
    logins.Add(std::make_unique<SLoginNameObj>(number, "", folder));
  }
  SortByFolder(logins);
  std::string folders;
  for (const SLoginNameObj& entry : logins) {
    folders += Bytes(entry.folderName + ":" + entry.firstName) + " ";
  }
  EXPECT_EQ(folders, ":7 AVERYLONG:3 averylongname:2 b:4 B:5 Room:1 room2:0 \xE9:6 ");
  EXPECT_EQ(FindLogin(logins, {"1", "", "ROOM"}), 5);
  EXPECT_EQ(FindLogin(logins, {"1", "", "Room2"}), -1);
  EXPECT_EQ(FindLogin(logins, {"0", "", "Room"}), -1);
}

}  // namespace
