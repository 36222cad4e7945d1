// kivadmin's commands on entries, from its command line, and the bytes that they leave.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <nlohmann/json.hpp>

#include "tests/support/run_program.h"
#include "tests/support/store_builder.h"
#include "tests/support/temp_folder.h"

namespace kivtest {
namespace {

using namespace std::string_literals;

class KivAdminRoster : public testing::Test {
 protected:
  RunResult Admin(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), KIVSTORE_BINARY_DIR "/bin/kivadmin");
    return RunProgram(arguments);
  }
  // Must be done.
  std::string Do(const std::vector<std::string>& arguments) const {
    const RunResult result = Admin(arguments);
    EXPECT_EQ(0, result.exitCode) << arguments[0] << ": " << result.errors;
    return result.output;
  }
  void LayTeachers() const {
    Do({"init", Root()});
    Do({"add", "teacher", Root(), "Ms Hill"});
    Do({"add", "teacher", Root(), "Mr D\xC3\xADz"});
    Do({"add", "class", Root(), "Room 12", "--teacher", "Ms Hill"});
    Do({"add", "class", Root(), "Late", "--teacher", "mr d\xC3\xADz"});
    Do({"add", "student", Root(), "Ann", "Lee", "--class", "Room 12", "--teacher", "Ms Hill"});
  }
  std::string Export() const { return Do({"export", Root()}); }
  std::string Root() const { return folder.Path("store"); }
  std::string Read(const std::string& file) const { return folder.ReadFile("store/" + file); }
  bool Has(const std::string& file) const { return folder.Exists("store/" + file); }

  TempFolder folder;
};

const std::string kTop = "Classes.zep/";
const std::string kRooms = "Classes.zep/MsHill/Classes.zep/";
const std::string kHeader = "teacher,class,first_name,last_name\r\n";

TEST_F(KivAdminRoster, WritesTheBytesOfTheStoresFormats) {
  LayTeachers();
  EXPECT_EQ("\0\0\0\2MsHill\0Ms Hill\0\0MrDz\0Mr D\xEDz\0\0\0\0\0\0"s, Read(kTop + "index.kiv"));
  EXPECT_EQ("\0\0\0\1Room12\0Room 12\0\0\0\0\0\0"s, Read(kRooms + "index.kiv"));
  EXPECT_EQ("\0\0\0\1AnnLee\0Ann\0Lee\0\0\0\0\0"s, Read(kRooms + "Room12/Students/index.kiv"));
  EXPECT_EQ("Ms Hill\0\0"s, Read(kTop + "MsHill/longname.kiv"));
  EXPECT_EQ("Ann\0Lee\0"s, Read(kRooms + "Room12/Students/AnnLee/longname.kiv"));
  EXPECT_EQ("BIN"s, Read(kRooms + "options.kiv").substr(0, 3));
}

TEST_F(KivAdminRoster, MakesEveryLockFileThatTheLibraryTakes) {
  LayTeachers();
  for (const std::string& file :
       {kTop + "index.lok", kTop + "MsHill/index.lok", kRooms + "index.lok", kRooms + "options.lok",
        kRooms + "Room12/index.lok", kRooms + "Room12/options.lok",
        kRooms + "Room12/Students/index.lok", kRooms + "Room12/Students/AnnLee/index.lok",
        kRooms + "Room12/Students/AnnLee/options.lok"}) {
    EXPECT_TRUE(Has(file)) << file;
    EXPECT_EQ("", Read(file)) << file;
  }
}

TEST_F(KivAdminRoster, WhatItMakesTheLibraryReadsAtOnce) {
  LayTeachers();
  const RunResult report = RunProgram(
      {KIVSTORE_BINARY_DIR "/bin/kivreport", Root(), "--format", "csv", "--teacher", "Ms Hill"});
  EXPECT_EQ(0, report.exitCode) << report.errors;
  EXPECT_EQ(
      "teacher,class,student,current_mission,previous_mission,vocab_level\r\n"
      "Ms Hill,Room 12,Ann Lee,1,1,1\r\n",
      report.output);
}

TEST_F(KivAdminRoster, KindsOfSiteAreLaidOutAndReadOffTheTree) {
  struct Case {
    const char* kind;
    bool hasLocks;
    bool hasTopOptions;
  };
  for (const Case& site :
       {Case{"local", false, true}, Case{"shared", true, true}, Case{"teachers", true, false}}) {
    const std::string root = folder.Path(site.kind);
    Do({"init", root, "--kind", site.kind});
    const std::string top = site.kind + "/Classes.zep/"s;
    EXPECT_EQ("\0\0\0\0\0\0\0\0"s, folder.ReadFile(top + "index.kiv")) << site.kind;
    EXPECT_EQ(site.hasLocks, folder.Exists(top + "index.lok")) << site.kind;
    EXPECT_EQ(site.hasTopOptions, folder.Exists(top + "options.kiv")) << site.kind;
    EXPECT_NE(std::string::npos, Do({"init", root}).find("of kind "s + site.kind)) << site.kind;
  }
}

TEST_F(KivAdminRoster, InitCompletesAStoreThatIsThere) {
  StoreBuilder store(Root(), Kind::kTeachers);
  store.AddStudent(store.AddClass(store.AddTeacher("Ms Hill"), "Room 12"), "Ann", "Lee");
  store.Finish();
  const auto before = store.Snapshot();
  store.RemoveFile(kRooms + "Room12/Students/index.lok");
  store.RemoveFile(kRooms + "Room12/Students/index.kiv");
  Do({"init", Root()});
  const auto after = store.Snapshot();
  for (const auto& [file, bytes] : before) {
    ASSERT_TRUE(after.contains(file)) << file;
    EXPECT_EQ(bytes, after.at(file)) << file;
  }
}

TEST_F(KivAdminRoster, RenamesInPlace) {
  LayTeachers();
  Do({"rename", "teacher", Root(), "#2", "Ms Hall"});
  Do({"rename", "class", Root(), "room 12", "Room 14", "--teacher", "Ms Hall"});
  Do({"rename", "student", Root(), "ann lee", "Zo\xC3\xAB", "--class", "#1", "--teacher",
      "Ms Hall"});
  EXPECT_EQ(kHeader + "Mr D\xC3\xADz,Late,,\r\nMs Hall,Room 14,Zo\xC3\xAB,\r\n", Export());
  EXPECT_EQ("Zo\xEB\0\0"s, Read(kRooms + "Room12/Students/AnnLee/longname.kiv"));
  EXPECT_EQ("\0\0\0\1AnnLee\0Zo\xEB\0\0\0\0\0\0"s, Read(kRooms + "Room12/Students/index.kiv"));
}

TEST_F(KivAdminRoster, MovesWithAllThatBelongsToIt) {
  LayTeachers();
  Do({"move", "student", Root(), "Ann Lee", "--class", "Room 12", "--to-class", "Late", "--teacher",
      "Ms Hill", "--to-teacher", "#1"});
  EXPECT_EQ(kHeader + "Mr D\xC3\xADz,Late,Ann,Lee\r\nMs Hill,Room 12,,\r\n", Export());
  Do({"move", "class", Root(), "Late", "--teacher", "#1", "--to-teacher", "Ms Hill"});
  EXPECT_EQ(kHeader + "Mr D\xC3\xADz,,,\r\nMs Hill,Late,Ann,Lee\r\nMs Hill,Room 12,,\r\n",
            Export());
  EXPECT_TRUE(Has(kRooms + "Late/Students/AnnLee/options.lok"));
  EXPECT_EQ("the store is in order\n", Do({"check", Root()}));
}

TEST_F(KivAdminRoster, DeletesOnlyWhatWasConfirmed) {
  LayTeachers();
  const RunResult unasked =
      Admin({"delete", "student", Root(), "Ann Lee", "--class", "#1", "--teacher", "Ms Hill"});
  EXPECT_NE(0, unasked.exitCode);
  EXPECT_TRUE(Has(kRooms + "Room12/Students/AnnLee"));
  Do({"delete", "student", Root(), "Ann Lee", "--class", "#1", "--teacher", "Ms Hill", "--yes"});
  EXPECT_EQ("\0\0\0\0\0\0\0\0"s, Read(kRooms + "Room12/Students/index.kiv"));
  // Without a classes folder nothing waits for the lock of its list.
  folder.Remove("store/" + kRooms);
  Do({"delete", "teacher", Root(), "Ms Hill", "--yes"});
  EXPECT_EQ("\0\0\0\1MrDz\0Mr D\xEDz\0\0\0\0\0\0"s, Read(kTop + "index.kiv"));

  const std::string local = folder.Path("local");
  Do({"init", local, "--kind", "local"});
  Do({"add", "class", local, "Room 12"});
  Do({"add", "student", local, "Ann", "--class", "Room 12"});
  Do({"delete", "class", local, "Room 12", "--yes"});
  EXPECT_FALSE(folder.Exists("local/Classes.zep/Room12"));
}

TEST_F(KivAdminRoster, ExitCodesAndReasons) {
  LayTeachers();
  Do({"init", folder.Path("local"), "--kind", "local"});
  const std::string root = Root();
  struct Case {
    std::vector<std::string> arguments;
    int exitCode;
    const char* reason;
  };
  const Case cases[] = {
      {{"add", "teacher", root, "MS HILL"}, 1, "name taken"},
      {{"add", "class", root, "room 12", "--teacher", "Ms Hill"}, 1, "name taken"},
      {{"add", "class", root, "X", "--teacher", "Nobody"}, 1, "no teacher \"Nobody\""},
      {{"add", "class", root, "X", "--teacher", "#9"}, 1, "no teacher #9"},
      {{"rename", "teacher", root, "Ms Hill", "MR D\xC3\xADZ"}, 1, "name taken"},
      {{"add", "class", root, "X"}, 2, "--teacher is needed"},
      {{"add", "class", root, "X", "--teacher", "#0"}, 2, "from 1"},
      {{"add", "teacher", root, ""}, 2, "empty"},
      {{"add", "teacher", root, "a\tb"}, 2, "control character"},
      {{"add", "teacher", root, "\xE6\x97\xA5"}, 2, "character set lacks"},
      {{"add", "teacher", root, "#7"}, 2, "place in a list"},
      {{"add", "teacher", root, "X", "--charset", "klingon"}, 2, "no such character set"},
      {{"add", "teacher", folder.Path("local"), "X"}, 2, "has no teachers"},
      {{"add", "class", folder.Path("local"), "X", "--teacher", "Y"}, 2, "has no teachers"},
      {{"move", "class", root, "Late", "--teacher", "#1", "--to-teacher", "#1"}, 2, "already"},
      {{"add", "janitor", root, "X"}, 2, ""},
      {{"check", folder.Path("nowhere")}, 3, "no such folder"},
      {{"check", folder.Path()}, 3, "no folder Classes.zep"},
  };
  const std::string before = Export();
  for (const Case& test : cases) {
    const RunResult result = Admin(test.arguments);
    const std::string what = test.arguments[0] + ' ' + test.arguments[1] + ' ' + test.reason;
    EXPECT_EQ(test.exitCode, result.exitCode) << what << ": " << result.errors;
    EXPECT_NE(std::string::npos, result.errors.find(test.reason)) << what << result.errors;
  }
  EXPECT_EQ(before, Export());
}

TEST_F(KivAdminRoster, FullListSaysSo) {
  StoreBuilder store(Root(), Kind::kLocal);
  const std::string room = store.AddClass("Room 12");
  for (int i = 0; i < 1000; ++i) {
    store.AddStudent(room, "S" + std::to_string(i), "", "S" + std::to_string(i));
  }
  store.Finish();
  const RunResult result = Admin({"add", "student", Root(), "Late", "Comer", "--class", "#1"});
  EXPECT_EQ(1, result.exitCode);
  EXPECT_NE(std::string::npos, result.errors.find("full")) << result.errors;
}

TEST_F(KivAdminRoster, DryRunChangesNothing) {
  StoreBuilder store(Root(), Kind::kTeachers);
  const std::string hill = store.AddTeacher("Ms Hill");
  const std::string room = store.AddClass(hill, "Room 12");
  store.AddClass(hill, "Room 14");
  const std::string ann = store.AddStudent(room, "Ann", "Lee");
  store.Finish();
  store.DropIndexLine(ann);  // a listing would repair it
  folder.WriteFile("in.csv", kHeader + "New,Class,Student,One\r\n");
  const auto before = store.Snapshot();
  const std::string root = Root();
  for (std::vector<std::string> arguments : std::vector<std::vector<std::string>>{
           {"init", root},
           {"add", "teacher", root, "New"},
           {"add", "student", root, "Bob", "--class", "Room 12"},
           {"rename", "class", root, "Room 12", "Room 13"},
           {"move", "student", root, "Ann Lee", "--class", "Room 12", "--to-class", "Room 14"},
           {"delete", "teacher", root, "Ms Hill"},
           {"import", root, folder.Path("in.csv")}}) {
    arguments.push_back("--dry-run");
    EXPECT_EQ(0u, Do(arguments).find("dry run: ")) << arguments[0];
    EXPECT_EQ(before, store.Snapshot()) << arguments[0];
  }
}

TEST_F(KivAdminRoster, ImportTakesWhatItCanAndReportsTheRest) {
  Do({"init", Root()});
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
  const RunResult result = Admin({"import", Root(), folder.Path("in.csv")});
  EXPECT_EQ(1, result.exitCode);
  const std::string file = folder.Path("in.csv");
  for (const char* const line :
       {":5: first name: a control character", ":7: first name", ":8: teacher: the name is empty",
        ":9: class: the name is empty", ":10: 2 fields"}) {
    EXPECT_NE(std::string::npos, result.errors.find(file + line)) << line << '\n' << result.errors;
  }
  const std::string expected = kHeader +
                               "Mr Bo,Empty,,\r\nMrs Alone,,,\r\n"
                               "Ms Hill,\"Late, \"\"Mon\"\"\",Zo\xC3\xAB,\r\n"
                               "Ms Hill,Room 12,Ann,Lee\r\n";
  EXPECT_EQ(expected, Export());

  StoreBuilder store(Root(), Kind::kTeachers);
  const auto before = store.Snapshot();
  folder.WriteFile("again.csv", expected);
  EXPECT_NE(std::string::npos,
            Do({"import", Root(), folder.Path("again.csv")}).find("4 lines there already"));
  EXPECT_EQ(before, store.Snapshot());
}

TEST_F(KivAdminRoster, ImportWantsItsHeader) {
  Do({"init", Root()});
  folder.WriteFile("in.csv", "Ms Hill,Room 12,Ann,Lee\r\n");
  EXPECT_EQ(2, Admin({"import", Root(), folder.Path("in.csv")}).exitCode);
  EXPECT_EQ(2, Admin({"import", Root(), folder.Path("missing.csv")}).exitCode);
}

class KivAdminCheck : public KivAdminRoster {
 protected:
  KivAdminCheck() : store(Root(), Kind::kTeachers) {
    const std::string hill = store.AddTeacher("Ms Hill");
    room = store.AddClass(hill, "Room 12");
    ann = store.AddStudent(room, "Ann", "Lee");
    bob = store.AddStudent(room, "Bob", "May");
    store.WriteOptions(ann, OptionsBytes().SetMission(5));
    store.WriteGame(ann, GameBytes());
    store.Finish();
    Do({"init", Root()});
  }

  StoreBuilder store;
  std::string room, ann, bob;
};

TEST_F(KivAdminCheck, FindsEachDisorderAndRepairsWhatAListingDoes) {
  struct Case {
    const char* kind;
    bool isRepaired;
    std::function<void()> disturb;
  };
  const std::string students = StoreBuilder::StudentList(room);
  const Case cases[] = {
      {"index", true, [&] { store.DropIndexLine(ann); }},
      {"index", true, [&] { store.RemoveFolder(bob); }},
      {"index", true, [&] { store.RemoveFile(students + "/index.kiv"); }},
      {"lock", true, [&] { store.RemoveFile(students + "/index.lok"); }},
      {"lock", true, [&] { store.RemoveFile(ann + "/options.lok"); }},
      {"nameless", false,
       [&] { std::filesystem::create_directory(store.Path(students + "/Stray")); }},
      {"options", false, [&] { store.Tear(ann + "/options.kiv", 20); }},
      {"options", false, [&] { store.WriteFile(ann + "/options.kiv", "BIN\0\2\0\0"s); }},
      {"game", false, [&] { store.Tear(ann + "/autogame.zep", 40); }},
      {"name", false,
       [&] {
         store.WriteFile(students + "/index.kiv",
                         "\0\0\0\2AnnLee\0Ann\0Lee\0BobMay\0ANN\0LEE\0\0\0\0\0"s);
       }},
  };
  constexpr auto kOverAll =
      std::filesystem::copy_options::recursive | std::filesystem::copy_options::overwrite_existing;
  std::filesystem::copy(Root(), folder.Path("kept"), kOverAll);
  for (const Case& test : cases) {
    SCOPED_TRACE(test.kind);
    test.disturb();
    const auto before = store.Snapshot();
    const RunResult found = Admin({"check", Root(), "--format", "json"});
    EXPECT_EQ(1, found.exitCode);
    EXPECT_EQ(before, store.Snapshot());
    const auto problems = nlohmann::json::parse(found.output)["problems"];
    ASSERT_FALSE(problems.empty());
    for (const auto& problem : problems) {
      EXPECT_EQ(test.kind, problem["kind"]) << problem;
    }

    EXPECT_EQ(test.isRepaired ? 0 : 1, Admin({"check", Root(), "--repair"}).exitCode);
    EXPECT_EQ(test.isRepaired ? 0 : 1, Admin({"check", Root()}).exitCode);
    std::filesystem::remove_all(Root());
    std::filesystem::copy(folder.Path("kept"), Root(), kOverAll);
  }
}

}  // namespace
}  // namespace kivtest
