// kivreport from its command line, on stores laid out by hand.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "tests/support/run_program.h"
#include "tests/support/store_builder.h"
#include "tests/support/temp_folder.h"

namespace kivtest {
namespace {

using Json = nlohmann::json;

RunResult Report(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), KIVSTORE_BINARY_DIR "/bin/kivreport");
  return RunProgram(arguments);
}

class KivReport : public testing::Test {
 protected:
  // Two teachers; names with what CSV quotes and with an accent.
  void LayNetwork() {
    StoreBuilder store(folder.Path(), Kind::kTeachers);
    const std::string hill = store.AddTeacher("Ms Hill", "Hill");
    const std::string diaz = store.AddTeacher("Mr D\xEDz", "Diaz");
    const std::string room = store.AddClass(hill, "Room 12", "Room12");
    store.AddClass(hill, "Empty", "Zempty");
    const std::string late = store.AddClass(diaz, "Late, \"Mon\"", "Late");
    const std::string ann = store.AddStudent(room, "Ann", "Lee", "AnnLee");
    const std::string zoe = store.AddStudent(room, "Zo\xEB", "", "Zo");
    store.AddStudent(late, "Bob", "May", "BobMay");
    GameBytes learned;
    learned.learnedNewKeys = true;
    store.WriteGame(ann, learned);
    store.WriteOptions(StoreBuilder::ClassList(hill), OptionsBytes());
    store.WriteOptions(ann, OptionsBytes().SetMission(7, 100).Set("VocabLevel", 3, 100));
    store.WriteOptions(zoe, OptionsBytes().SetMission(5, 100));
    store.Finish();
  }

  TempFolder folder;
};

constexpr const char* kNetworkCsv =
    "teacher,class,student,current_mission,previous_mission,vocab_level\r\n"
    "Mr D\xC3\xADz,\"Late, \"\"Mon\"\"\",Bob May,1,1,1\r\n"
    "Ms Hill,Room 12,Ann Lee,7,6,3\r\n"
    "Ms Hill,Room 12,Zo\xC3\xAB,4,4,1\r\n";

TEST_F(KivReport, AllFormsSayTheSame) {
  LayNetwork();
  const RunResult csv = Report({folder.Path(), "--format", "csv"});
  EXPECT_EQ(0, csv.exitCode) << csv.errors;
  EXPECT_EQ(kNetworkCsv, csv.output);

  const Json expected = Json::parse(R"({"mode":"network","teachers":[
    {"name":"Mr Díz","classes":[{"name":"Late, \"Mon\"","students":[
      {"name":"Bob May","current_mission":1,"previous_mission":1,"vocab_level":1}]}]},
    {"name":"Ms Hill","classes":[{"name":"Room 12","students":[
      {"name":"Ann Lee","current_mission":7,"previous_mission":6,"vocab_level":3},
      {"name":"Zoë","current_mission":4,"previous_mission":4,"vocab_level":1}]},
      {"name":"Empty","students":[]}]}]})");
  EXPECT_EQ(expected, Json::parse(Report({folder.Path(), "--format", "json"}).output));

  const RunResult table = Report({folder.Path()});
  EXPECT_EQ(
      "Teacher  Class        Student        Current mission  Previous mission  Vocabulary level\n"
      "-------  -----------  -------------  ---------------  ----------------  ----------------\n"
      "Mr D\xC3\xADz   Late, \"Mon\"  Bob May                      1                 1"
      "                 1\n"
      "Ms Hill  Room 12      Ann Lee                      7                 6                 3\n"
      "Ms Hill  Room 12      Zo\xC3\xAB                          4                 4"
      "                 1\n"
      "Ms Hill  Empty        (no students)\n"
      "\n2 teachers, 3 classes, 3 students\n",
      table.output);
}

TEST_F(KivReport, LocalStoreHasNoTeacherLevel) {
  StoreBuilder store(folder.Path(), Kind::kLocal);
  store.AddStudent(store.AddClass("Room 1"), "Ann", "Lee");
  store.Finish();
  EXPECT_EQ(
      "teacher,class,student,current_mission,previous_mission,vocab_level\r\n"
      ",Room 1,Ann Lee,1,1,1\r\n",
      Report({folder.Path(), "--format", "csv"}).output);
  const Json json = Json::parse(Report({folder.Path(), "--format", "json"}).output);
  EXPECT_EQ("local", json["mode"]);
  EXPECT_EQ("Ann Lee", json["classes"][0]["students"][0]["name"]);
  EXPECT_EQ(2, Report({folder.Path(), "--teacher", "X"}).exitCode);
}

TEST_F(KivReport, RosterSaysNamesAndCounts) {
  LayNetwork();
  EXPECT_EQ("teacher,class,student\r\nMr D\xC3\xADz,\"Late, \"\"Mon\"\"\",Bob May\r\n",
            Report({folder.Path(), "--roster", "--format", "csv", "--teacher", "#1"}).output);
  const Json json = Json::parse(Report({folder.Path(), "--roster", "--format", "json"}).output);
  EXPECT_EQ(2, json["teacher_count"]);
  EXPECT_EQ(2, json["teachers"][1]["class_count"]);
  EXPECT_EQ(2, json["teachers"][1]["classes"][0]["student_count"]);
  EXPECT_FALSE(json["teachers"][1]["classes"][0]["students"][0].contains("current_mission"));
}

TEST_F(KivReport, SelectsByNameOrPlace) {
  LayNetwork();
  const auto lines = [&](std::vector<std::string> arguments) {
    arguments.insert(arguments.end(), {folder.Path(), "--format", "csv"});
    const RunResult result = Report(arguments);
    return std::pair(
        result.exitCode,
        static_cast<int>(std::count(result.output.begin(), result.output.end(), '\n')) - 1);
  };
  EXPECT_EQ(std::pair(0, 2), lines({"--teacher", "MS HILL"}));
  EXPECT_EQ(std::pair(0, 1), lines({"--teacher", "#1"}));
  EXPECT_EQ(std::pair(0, 2), lines({"--class", "room 12"}));
  EXPECT_EQ(std::pair(1, -1), lines({"--teacher", "nobody"}));
  EXPECT_EQ(std::pair(1, -1), lines({"--class", "#9"}));
  EXPECT_EQ(std::pair(2, -1), lines({"--class", "#0"}));
  EXPECT_EQ(std::pair(2, -1), lines({"--class", "#1x"}));
}

TEST_F(KivReport, WritesFilesWithOrWithoutByteOrderMark) {
  LayNetwork();
  const TempFolder out;
  const RunResult result =
      Report({folder.Path(), "--format", "csv", "--bom", "--output", out.Path("report.csv")});
  EXPECT_EQ(0, result.exitCode);
  EXPECT_EQ("", result.output);
  EXPECT_EQ(std::string("\xEF\xBB\xBF") + kNetworkCsv, out.ReadFile("report.csv"));
  EXPECT_EQ(2, Report({folder.Path(), "--output", out.Path("no/such/folder")}).exitCode);
}

TEST_F(KivReport, CharsetIsAnOption) {
  LayNetwork();
  EXPECT_NE(std::string::npos, Report({folder.Path(), "--charset", "iso-8859-5", "--format", "csv"})
                                   .output.find("Mr D\xD1\x8Dz"));
  const RunResult utf8 = Report({folder.Path(), "--charset", "utf-8", "--format", "json"});
  EXPECT_EQ(0, utf8.exitCode);
  EXPECT_EQ("Zo\xEF\xBF\xBD",
            Json::parse(utf8.output)["teachers"][1]["classes"][0]["students"][1]["name"]);
  EXPECT_EQ(2, Report({folder.Path(), "--charset", "klingon"}).exitCode);
}

TEST_F(KivReport, FindsTheStoreFromItsClassesFolderToo) {
  LayNetwork();
  for (const char* end : {"/", "/Classes.zep", "/Classes.zep/"}) {
    EXPECT_EQ(kNetworkCsv, Report({folder.Path() + end, "--format", "csv"}).output) << end;
  }
}

TEST_F(KivReport, RepairsAreReportedInTheOrderOfTheQueries) {
  // The index has lost a class whose name sorts first: the listing that repairs it is in display
  // order, the ones after it in folder order. Missions must stand beside the right names.
  StoreBuilder store(folder.Path(), Kind::kLocal);
  const std::string first = store.AddClass("", "Zebra", "Aaa");
  const std::string lost = store.AddClass("", "Ant", "Zzz");
  store.WriteOptions(store.AddStudent(first, "In", "Zebra"), OptionsBytes().SetMission(9, 1));
  store.WriteOptions(store.AddStudent(lost, "In", "Ant"), OptionsBytes().SetMission(3, 1));
  store.Finish();
  store.DropIndexLine(lost);
  EXPECT_EQ(
      "teacher,class,student,current_mission,previous_mission,vocab_level\r\n"
      ",Zebra,In Zebra,8,8,1\r\n"
      ",Ant,In Ant,2,2,1\r\n",
      Report({folder.Path(), "--format", "csv"}).output);
}

TEST_F(KivReport, SaysWhatIsWrongWithThePathInOneLine) {
  LayNetwork();
  folder.WriteFile("a file", "");
  folder.MakeFolder("no store");
  const std::string list = "Classes.zep/Diaz/Classes.zep";
  const struct {
    const char* name;
    std::string remove;
    std::string root;
    const char* says;
    std::string names;
  } kCases[] = {
      {"missing", "", folder.Path("gone"), "no such folder", "gone"},
      {"file", "", folder.Path("a file"), "no folder", "a file"},
      {"no classes", "", folder.Path("no store"), "no folder Classes.zep", "no store"},
      {"no lock", list + "/index.lok", folder.Path(), "no index.lok",
       std::filesystem::path(list).make_preferred().string()},
  };
  for (const auto& c : kCases) {
    if (!c.remove.empty()) {
      folder.Remove(c.remove);
    }
    const RunResult result = Report({c.root});
    EXPECT_EQ(3, result.exitCode) << c.name;
    EXPECT_NE(std::string::npos, result.errors.find(c.says)) << c.name << ": " << result.errors;
    EXPECT_NE(std::string::npos, result.errors.find(c.names)) << c.name << ": " << result.errors;
    EXPECT_EQ(1, std::count(result.errors.begin(), result.errors.end(), '\n')) << result.errors;
  }
}

TEST_F(KivReport, EmptyStoreIsNothingAndUsageIsTold) {
  StoreBuilder(folder.Path(), Kind::kLocal).Finish();
  EXPECT_EQ(1, Report({folder.Path()}).exitCode);
  EXPECT_EQ(2, Report({}).exitCode);
  EXPECT_EQ(2, Report({folder.Path(), "--format", "xml"}).exitCode);
  const RunResult help = Report({"--help"});
  EXPECT_EQ(0, help.exitCode);
  for (const char* code : {"0  good", "1  the store", "2  wrong usage", "3  no store"}) {
    EXPECT_NE(std::string::npos, help.output.find(code));
  }
  EXPECT_NE(std::string::npos, Report({"--version"}).output.find("product zep, generation 3"));
}

}  // namespace
}  // namespace kivtest
