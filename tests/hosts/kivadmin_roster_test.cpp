// kivadmin's commands on entries, from its command line, and the bytes that they leave.
#include <functional>

#include "tests/hosts/host_programs.h"
#include "tests/support/held_elsewhere.h"
#include "tests/support/wine.h"

namespace kivtest {
namespace {

using namespace std::string_literals;

const std::string kHeader = "teacher,class,first_name,last_name\r\n";

TEST(KivAdmin, LaysOutAStoreThatTheLibraryReadsAtOnce) {
  const TempFolder folder;
  const std::string root = folder.Path("store");
  Do({"init", root});
  Do({"add", "teacher", root, "Ms Hill"});
  Do({"add", "teacher", root, "Mr D\xC3\xADz"});
  Do({"add", "class", root, "Room 12", "--teacher", "ms hill"});
  Do({"add", "student", root, "Ann", "Lee", "--class", "Room 12", "--teacher", "#2"});
  const std::string top = "store/Classes.zep/", rooms = top + "MsHill/Classes.zep/";
  const std::pair<std::string, std::string> files[] = {
      {top + "index.kiv", "\0\0\0\2MsHill\0Ms Hill\0\0MrDz\0Mr D\xEDz\0\0\0\0\0\0"s},
      {rooms + "index.kiv", "\0\0\0\1Room12\0Room 12\0\0\0\0\0\0"s},
      {rooms + "Room12/Students/index.kiv", "\0\0\0\1AnnLee\0Ann\0Lee\0\0\0\0\0"s},
      {top + "MsHill/longname.kiv", "Ms Hill\0\0"s},
      {rooms + "Room12/Students/AnnLee/longname.kiv", "Ann\0Lee\0"s}};
  for (const auto& [file, bytes] : files) {
    EXPECT_EQ(bytes, folder.ReadFile(file)) << file;
  }
  EXPECT_EQ("BIN", folder.ReadFile(rooms + "options.kiv").substr(0, 3));
  for (const char* const lock :
       {"../index", "index", "Classes.zep/index", "Classes.zep/options", "Classes.zep/Room12/index",
        "Classes.zep/Room12/options", "Classes.zep/Room12/Students/index",
        "Classes.zep/Room12/Students/AnnLee/index", "Classes.zep/Room12/Students/AnnLee/options"}) {
    EXPECT_EQ("", folder.ReadFile(top + "MsHill/" + lock + ".lok"));
  }
  EXPECT_EQ("teacher,class,student\r\nMs Hill,Room 12,Ann Lee\r\n",
            Report({root, "--format", "csv", "--roster"}).output);
}

TEST(KivAdmin, KindsOfSiteAreLaidOutAndReadOffTheTree) {
  const TempFolder folder;
  for (const std::string kind : {"local", "shared", "teachers"}) {
    const std::string root = folder.Path(kind), top = kind + "/Classes.zep/";
    Do({"init", root, "--kind", kind});
    EXPECT_EQ("\0\0\0\0\0\0\0\0"s, folder.ReadFile(top + "index.kiv")) << kind;
    EXPECT_EQ(kind != "local", folder.Exists(top + "index.lok")) << kind;
    EXPECT_EQ(kind != "teachers", folder.Exists(top + "options.kiv")) << kind;
    ExpectIn("of kind " + kind, Do({"init", root}));
  }
  const std::string local = folder.Path("local");
  Do({"add", "class", local, "Room 12"});
  Do({"add", "student", local, "Ann", "--class", "Room 12"});
  Do({"options", "set", local, "--class", "#1", "SoundOn=1"});
  EXPECT_TRUE(folder.Exists("local/Classes.zep/Room12/options.kiv"));
  EXPECT_FALSE(folder.Exists("local/Classes.zep/Room12/options.lok"));
  Do({"delete", "class", local, "Room 12", "--yes"});
  EXPECT_FALSE(folder.Exists("local/Classes.zep/Room12"));
}

class KivAdminRoster : public SchoolTest {
 protected:
  std::string Export() const { return Do({"export", root}).substr(kHeader.size()); }
};

TEST_F(KivAdminRoster, EachChangeShowsInTheNextExportAndLeavesTheStoreInOrder) {
  store.DropIndexLine(ann);  // a listing repairs it, but not in a dry run
  folder.WriteFile("in.csv", kHeader + "H,Room 12,Ann,Lee\r\n");
  const std::pair<Arguments, const char*> steps[] = {
      {{"init", root}, "Ms Hill,Room 12,Ann,Lee|Ms Hill,Empty,,|"},
      {{"rename", "teacher", root, "#1", "H"}, "H,Room 12,Ann,Lee|H,Empty,,|"},
      {{"import", root, folder.Path("in.csv")}, "H,Room 12,Ann,Lee|H,Empty,,|"},
      {{"rename", "class", root, "room 12", "A"}, "H,A,Ann,Lee|H,Empty,,|"},
      {{"rename", "class", root, "#2", "B"}, "H,A,Ann,Lee|H,B,,|"},
      {{"rename", "student", root, "ann lee", "Z\xC3\xAB", "--class", "#1"},
       "H,A,Z\xC3\xAB,|H,B,,|"},
      {{"move", "student", root, "#1", "--class", "A", "--to-class", "B"}, "H,A,,|H,B,Z\xC3\xAB,|"},
      {{"add", "teacher", root, "O"}, "H,A,,|H,B,Z\xC3\xAB,|O,,,|"},
      {{"add", "class", root, "C", "--teacher", "o"}, "H,A,,|H,B,Z\xC3\xAB,|O,C,,|"},
      {{"move", "student", root, "Z\xC3\xAB", "--class", "B", "--to-class", "C", "--teacher", "H",
        "--to-teacher", "#2"},
       "H,A,,|H,B,,|O,C,Z\xC3\xAB,|"},
      {{"move", "class", root, "C", "--teacher", "O", "--to-teacher", "H"},
       "H,C,Z\xC3\xAB,|H,A,,|H,B,,|O,,,|"},
      {{"delete", "student", root, "#1", "--class", "C", "--teacher", "H", "--yes"},
       "H,C,,|H,A,,|H,B,,|O,,,|"},
      {{"delete", "teacher", root, "O", "--yes"}, "H,C,,|H,A,,|H,B,,|"}};
  for (const auto& [line, expected] : steps) {
    const auto before = store.Snapshot();
    EXPECT_EQ(0u, Do(line + Arguments{"--dry-run"}).find("dry run: "));
    EXPECT_EQ(before, store.Snapshot()) << testing::PrintToString(line);
    Do(line);
    std::string lines = Export();
    for (size_t end = 0; (end = lines.find("\r\n")) != std::string::npos;) {
      lines.replace(end, 2, "|");
    }
    EXPECT_EQ(expected, lines) << testing::PrintToString(line);
    EXPECT_EQ("the store is in order\n", Do({"check", root}));
  }
  EXPECT_EQ("\0\0\0\0\0\0\0\0"s, store.ReadFile(list + "/C/Students/index.kiv"));
  // Without a classes folder nothing waits for the lock of its list.
  store.RemoveFolder(list);
  Do({"delete", "teacher", root, "H", "--yes"});
  EXPECT_EQ("\0\0\0\0\0\0\0\0"s, store.ReadFile("Classes.zep/index.kiv"));
}

TEST_F(KivAdminRoster, ExitCodesAndReasons) {
  if (RunsUnderWine()) {
    GTEST_SKIP() << "its lines are run at once, which Wine does not always start, and there is a "
                    "console to ask";
  }
  store.AddTeacher("Mr D\xEDz", "Diaz");
  const std::string full = store.AddClass(hill, "Full");
  for (int i = 0; i < 1000; ++i) {
    store.AddStudent(full, "S" + std::to_string(i), "", "S" + std::to_string(i));
  }
  store.Finish();
  const std::string local = folder.Path("local");
  Do({"init", local, "--kind", "local"});
  folder.WriteFile("in.csv", "Ms Hill,Room 12,Ann,Lee\r\n");
  const Arguments ofHill{"--teacher", "Ms Hill"};
  const std::string before = Export();
  ExpectEach(
      kAdmin,
      {{{"add", "teacher", root, "MS HILL"}, 1, "name taken"},
       {Arguments{"add", "class", root, "room 12"} + ofHill, 1, "name taken"},
       {Arguments{"add", "student", root, "X", "--class", "Full"} + ofHill, 1, "full: the list"},
       {{"add", "class", root, "X", "--teacher", "Nobody"}, 1, "no teacher \"Nobody\""},
       {{"add", "class", root, "X", "--teacher", "#9"}, 1, "no teacher #9"},
       {{"rename", "teacher", root, "Ms Hill", "MR D\xC3\xADZ"}, 1, "name taken"},
       {Arguments{"delete", "class", root, "Full"} + ofHill, 2, "not without --yes"},
       {{"add", "class", root, "X"}, 2, "--teacher is needed"},
       {{"add", "class", root, "X", "--teacher", "#0"}, 2, "from 1"},
       {{"add", "teacher", root, ""}, 2, "empty"},
       {{"add", "teacher", root, "a\tb"}, 2, "control character"},
       {{"add", "teacher", root, "\xE6\x97\xA5"}, 2, "character set lacks"},
       {{"add", "teacher", root, "#7"}, 2, "place in a list"},
       {{"add", "teacher", local, "X"}, 2, "has no teachers"},
       {{"add", "class", local, "X", "--teacher", "Y"}, 2, "has no teachers"},
       {{"move", "class", root, "Full", "--teacher", "#2", "--to-teacher", "#2"}, 2, "already"},
       {{"add", "janitor", root, "X"}, 2, ""},
       {{"import", root, folder.Path("in.csv")}, 2, "the first line is not"},
       {{"import", root, folder.Path("missing.csv")}, 2, "cannot be read"},
       {{"check", folder.Path("nowhere")}, 3, "no such folder"},
       {{"check", folder.Path("in.csv")}, 3, "is no folder"},
       {{"init", folder.Path("in.csv/below")}, 3, "in.csv/below: "},
       {{"check", folder.Path()}, 3, "no folder Classes.zep"}});
  EXPECT_EQ(before, Export());
}

// What somebody else holds is told by its own path.
TEST_F(KivAdminRoster, TellsTheReasonThatTheStoreNoted) {
  if (RunsUnderWine()) {
    GTEST_SKIP() << "it looks at the store while a file is held, which Windows lets nobody read";
  }
  store.AddStudent(room, "Bob", "", "Bob");
  store.WriteGame(room + "/Students/Bob", GameBytes());
  store.Finish();
  Do({"init", root});
  const HeldElsewhere atWork(store.Path(ann + "/index.lok"), false);
  const HeldElsewhere game(store.Path(room + "/Students/Bob/autogame.zep"), true);
  const HeldElsewhere options(store.Path(list + "/options.lok"), false);
  const HeldElsewhere listed(store.Path(other + "/Students/index.lok"), false);
  const auto before = store.Snapshot();
  // At once only what needs no list that another one holds while it waits.
  const Arguments remove{"delete", "student", root, "--yes", "--class", "Room 12"};
  ExpectEach(kAdmin, {{remove + Arguments{"Ann Lee"}, 1,
                       "kivadmin: unable to delete student \"Ann Lee\": " + store.Path(ann) +
                           "/index.lok is in use by someone else; try again\n"},
                      {{"options", "set", root, "SoundOn=1"}, 1, "options.lok is locked by"},
                      {Arguments{"add", "student", root, "X"} + inOther, 1,
                       "Zempty/Students/index.lok is locked by someone else"}});
  ExpectEach(kAdmin, {{Arguments{"progress", root, "--mission", "3"} + ofAnn, 1,
                       "AnnLee/index.lok is locked by someone else"}});
  ExpectEach(kAdmin,
             {{remove + Arguments{"Bob"}, 1, "Bob/autogame.zep is in use by someone else"}});
  EXPECT_EQ(before, store.Snapshot());
}

TEST(KivAdmin, ImportTakesWhatItCanAndReportsTheRest) {
  const TempFolder folder;
  const std::string root = folder.Path("store"), file = folder.Path("in.csv");
  Do({"init", root});
  folder.WriteFile("in.csv",
                   "\xEF\xBB\xBFteacher,class,first_name,last_name\r\n"
                   "Ms Hill,Room 12,Ann,Lee\r\n"
                   "Ms Hill,\"Late, \"\"Mon\"\"\",Zo\xC3\xAB,\r\n"
                   "\r\n"
                   "Ms Hill,Room 12,\"a\nb\",X\r\n"
                   "Ms Hill,Room 12,\xE6\x97\xA5,X\r\n"
                   ",Room 12,No,Teacher\r\n"
                   "Ms Hill,,No,Class\r\n"
                   "too,few\r\n"
                   "Mr Bo,Empty,,\r\n"
                   "Mrs Alone,,,\r\n");
  const RunResult result = Admin({"import", root, file});
  EXPECT_EQ(1, result.exitCode);
  for (const char* const line :
       {":5: first name: a control character", ":7: first name", ":8: teacher: the name is empty",
        ":9: class: the name is empty", ":10: 2 fields"}) {
    ExpectIn(file + line, result.errors);
  }
  const std::string expected = kHeader +
                               "Mr Bo,Empty,,\r\nMrs Alone,,,\r\n"
                               "Ms Hill,\"Late, \"\"Mon\"\"\",Zo\xC3\xAB,\r\n"
                               "Ms Hill,Room 12,Ann,Lee\r\n";
  EXPECT_EQ(expected, Do({"export", root}));
  const auto before = StoreBuilder(root, Kind::kTeachers).Snapshot();
  folder.WriteFile("in.csv", expected);
  ExpectIn("4 lines there already", Do({"import", root, file}));
  EXPECT_EQ(before, StoreBuilder(root, Kind::kTeachers).Snapshot());
}

TEST_F(KivAdminRoster, CheckFindsEachDisorderAndRepairsWhatAListingDoes) {
  const std::string bob = store.AddStudent(room, "Bob", "May", "BobMay");
  store.WriteOptions(ann, OptionsBytes().SetMission(5));
  store.WriteGame(ann, GameBytes());
  store.Finish();
  Do({"init", root});
  const std::string students = StoreBuilder::StudentList(room);
  const std::string lacks = "index: the index lacks the folder of ", lock = "lock: ";
  const std::pair<std::string, std::function<void()>> cases[] = {
      {lacks + "\"Ann Lee\"\n", [&] { store.DropIndexLine(ann); }},
      {"index: the index lists \"Bob May\" (BobMay), whose folder is not there\n",
       [&] { store.RemoveFolder(bob); }},
      {"index: index.kiv is missing\n" + lacks + "\"Ann Lee\"\n" + lacks + "\"Bob May\"\n",
       [&] { store.RemoveFile(students + "/index.kiv"); }},
      {lock + "index.lok is missing\n", [&] { store.RemoveFile(students + "/index.lok"); }},
      {lock + "options.lok is missing\n", [&] { store.RemoveFile(ann + "/options.lok"); }},
      {"nameless: nobody can name this folder: no index lists it, and it has no name\n",
       [&] { folder.MakeFolder("store/" + students + "/Stray"); }},
      {"options: cannot be read to its end\n", [&] { store.Tear(ann + "/options.kiv", 20); }},
      {"options: is no options file\n",
       [&] { store.WriteFile(ann + "/options.kiv", "BIN\0\2\0\0"s); }},
      {"game: cannot be read to its end\n", [&] { store.Tear(ann + "/autogame.zep", 40); }},
      {"game: is no game file, or of another version\n",
       [&] { store.Tear(ann + "/autogame.zep", 7); }},
      {"name: more than one entry is called \"ANN LEE\"\n",
       [&] {
         store.WriteFile(students + "/index.kiv",
                         IndexBytes({{"AnnLee", "Ann", "Lee"}, {"BobMay", "ANN", "LEE"}}));
         store.WriteFile(bob + "/longname.kiv", LongNameBytes("ANN", "LEE"));
       }},
      {"longname: longname.kiv is missing, empty or cut short\n",
       [&] { store.RemoveFile(bob + "/longname.kiv"); }},
      {"longname: the index calls it \"Bob May\", longname.kiv \"Rob May\"\n",
       [&] { store.WriteFile(bob + "/longname.kiv", LongNameBytes("Rob", "May")); }},
      {"options: is empty\n", [&] { store.WriteFile(bob + "/options.kiv", ""); }},
      {"game: is empty\n", [&] { store.WriteFile(bob + "/autogame.zep", ""); }},
      {"index: was cut short while it was written\n",
       [&] {
         const std::string index = students + "/index.kiv";
         store.WriteFile(index, folder.ReadFile("store/" + index) + '\0');
       }},
      {"twin: is the same game as " + store.Path(ann) + "/autogame.zep\n",
       [&] { store.WriteGame(bob, GameBytes()); }}};
  const Snapshot kept = SnapshotOf(folder.Path());
  for (const auto& [expected, disturb] : cases) {
    disturb();
    const auto before = store.Snapshot();
    std::string told;
    const Json found = Json::parse(Admin({"check", root, "--format", "json"}).output);
    for (const Json& problem : found["problems"]) {
      told += problem["kind"].get<std::string>() + ": " + problem["what"].get<std::string>() + '\n';
    }
    EXPECT_EQ(expected, told);
    const bool isMended = told.starts_with("index") || told.starts_with("lock") ||
                          told.starts_with("longname") || told.ends_with("is empty\n");
    const int left = isMended ? 0 : 1;
    ExpectEach(kAdmin, {{{"check", root}, 1, "not in order"}});
    EXPECT_EQ(before, store.Snapshot()) << told;
    ExpectEach(kAdmin, {{{"check", root, "--repair"}, left, ""}});
    ExpectEach(kAdmin, {{{"check", root}, left, ""}});
    folder.Restore(kept);
  }
}

}  // namespace
}  // namespace kivtest
