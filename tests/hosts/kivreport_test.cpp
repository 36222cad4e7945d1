// kivreport from its command line, on stores laid out by hand.
#include <filesystem>

#include "tests/hosts/host_programs.h"
#include "tests/support/held_elsewhere.h"
#include "tests/support/wine.h"

namespace kivtest {
namespace {

const std::string kHeader =
    "teacher,class,student,current_mission,previous_mission,vocab_level\r\n";
const std::string kNetworkCsv = kHeader +
                                "Mr D\xC3\xADz,\"Late, \"\"Mon\"\"\",Bob May,1,1,1\r\n"
                                "Ms Hill,Room 12,Ann Lee,7,6,3\r\n"
                                "Ms Hill,Room 12,Zo\xC3\xAB,4,4,1\r\n";

// Stores kept as files, each with the report that was right for it: no later change may stop
// reading an old store, or read it differently.
TEST(GoldenStore, IsReportedAsEver) {
  const TempFolder folder;
  std::filesystem::copy(KIVSTORE_SOURCE_DIR "/tests/golden", folder.Path(),
                        std::filesystem::copy_options::recursive);
  for (const std::string kind : {"local", "shared", "teachers"}) {
    const RunResult result = Report({folder.Path(kind + "/store")});
    EXPECT_EQ(0, result.exitCode) << result.errors;
    EXPECT_EQ(folder.ReadFile(kind + "/report.txt"), result.output);
  }
}

// Two teachers; names with what CSV quotes and with an accent.
class KivReport : public SchoolTest {
 protected:
  void SetUp() override {
    GameBytes learned;
    learned.learnedNewKeys = true;
    store.WriteGame(ann, learned);
    store.WriteOptions(list, OptionsBytes());
    store.WriteOptions(ann, OptionsBytes().SetMission(7, 100).Set("VocabLevel", 3, 100));
    store.WriteOptions(zoe, OptionsBytes().SetMission(5, 100));
    store.Finish();
  }
  Json Parsed(const Arguments& more) const {
    return Json::parse(Report(Arguments{root, "--format", "json"} + more).output, nullptr, false);
  }
  std::string Csv(const Arguments& more) const {
    return Report(Arguments{root, "--format", "csv"} + more).output;
  }

  const std::string diaz = store.AddTeacher("Mr D\xEDz", "Diaz");
  const std::string late = store.AddClass(diaz, "Late, \"Mon\"", "Late");
  const std::string zoe = store.AddStudent(room, "Zo\xEB", "", "Zo");
  const std::string bob = store.AddStudent(late, "Bob", "May", "BobMay");
};

TEST_F(KivReport, AllFormsSayTheSame) {
  for (const char* end : {"", "/", "/Classes.zep", "/Classes.zep/"}) {
    const RunResult csv = Report({root + end, "--format", "csv"});
    EXPECT_EQ(0, csv.exitCode) << csv.errors;
    EXPECT_EQ(kNetworkCsv, csv.output) << end;
  }
  const Json expected = Json::parse(R"({"mode":"network","complete":true,"teachers":[
    {"name":"Mr Díz","classes":[{"name":"Late, \"Mon\"","students":[
      {"name":"Bob May","current_mission":1,"previous_mission":1,"vocab_level":1}]}]},
    {"name":"Ms Hill","classes":[{"name":"Room 12","students":[
      {"name":"Ann Lee","current_mission":7,"previous_mission":6,"vocab_level":3},
      {"name":"Zoë","current_mission":4,"previous_mission":4,"vocab_level":1}]},
      {"name":"Empty","students":[]}]}]})");
  EXPECT_EQ(expected, Parsed({}));
  ExpectIn(
      "Ms Hill  Room 12      Zo\xC3\xAB                          4                 4"
      "                 1\n"
      "Ms Hill  Empty        (no students)\n\n2 teachers, 3 classes, 3 students\n",
      Report({root}).output);
}

TEST_F(KivReport, SelectsAndCounts) {
  EXPECT_EQ("teacher,class,student\r\nMr D\xC3\xADz,\"Late, \"\"Mon\"\"\",Bob May\r\n",
            Csv({"--roster", "--teacher", "#1"}));
  EXPECT_EQ(Csv({"--teacher", "MS HILL"}), Csv({"--class", "room 12"}));
  const Json json = Parsed({"--roster"});
  const Json& of = json["teachers"][1];
  EXPECT_EQ(Json({2, 2, 2}),
            Json({json["teacher_count"], of["class_count"], of["classes"][0]["student_count"]}));
  EXPECT_FALSE(of["classes"][0]["students"][0].contains("current_mission"));
}

TEST_F(KivReport, WritesFilesWithAByteOrderMarkAndReadsAnyCharset) {
  EXPECT_EQ("", Csv({"--bom", "--output", folder.Path("report.csv")}));
  EXPECT_EQ("\xEF\xBB\xBF" + kNetworkCsv, folder.ReadFile("report.csv"));
  ExpectIn("Mr D\xD1\x8Dz", Csv({"--charset", "iso-8859-5"}));
  EXPECT_EQ("Zo\xEF\xBF\xBD",
            Parsed({"--charset", "utf-8"})["teachers"][1]["classes"][0]["students"][1]["name"]);
}

TEST(KivReportLocal, HasNoTeacherLevel) {
  const TempFolder folder;
  StoreBuilder store(folder.Path(), Kind::kLocal);
  store.WriteOptions(store.AddStudent(store.AddClass("Zebra"), "Al"), OptionsBytes().SetMission(9));
  store.Finish();
  EXPECT_EQ(kHeader + ",Zebra,Al,8,8,1\r\n", Report({folder.Path(), "--format", "csv"}).output);
  const Json expected = Json::parse(R"({"mode":"local","complete":true,"classes":[{"name":"Zebra",
    "students":[{"name":"Al","current_mission":8,"previous_mission":8,"vocab_level":1}]}]})");
  EXPECT_EQ(expected, Json::parse(Report({folder.Path(), "--format", "json"}).output));
  ExpectEach(kReport, {{{folder.Path(), "--teacher", "X"}, 2, "without teachers"}});
}

TEST_F(KivReport, ExitCodesAndReasons) {
  folder.WriteFile("a file", "");
  const std::string bare = folder.Path("bare");
  StoreBuilder(bare, Kind::kLocal).Finish();
  ExpectEach(kReport, {{{folder.Path("gone")}, 3, "gone: no such folder"},
                       {{folder.Path("a file")}, 3, "a file: is no folder"},
                       {{folder.Path()}, 3, "no folder Classes.zep"},
                       {{bare}, 1, "nothing of what was asked for"},
                       {{root, "--teacher", "nobody"}, 1, "nothing of what was asked for"},
                       {{root, "--class", "#9"}, 1, "nothing of what was asked for"},
                       {{root, "--class", "#0"}, 2, "a number from 1"},
                       {{root, "--class", "#1x"}, 2, "a number from 1"},
                       {{root, "--output", folder.Path("no/such")}, 2, "could not be written"},
                       {{root, "--charset", "klingon"}, 2, "no such character set"},
                       {{root, "--format", "xml"}, 2, "--format"},
                       {{}, 2, "DATA_ROOT"}});
  ExpectIn("2  wrong usage", Report({"--help"}).output);
  ExpectIn("product zep, generation 3", Report({"--version"}).output);
}

TEST_F(KivReport, WhatCannotBeReadIsToldInItsPlaceAndNeverGivenAValue) {
  if (RunsUnderWine()) {
    GTEST_SKIP() << "its expectations have the paths of POSIX";
  }
  store.Tear(ann + "/autogame.zep", 500);
  store.RemoveFile(StoreBuilder::ClassList(diaz) + "/index.lok");
  const HeldElsewhere held(store.Path(other + "/Students/index.lok"), false);
  const Arguments forms[] = {{root}, {root, "--format", "json"}, {root, "--format", "csv"}};
  std::vector<std::future<RunResult>> results;
  for (const Arguments& form : forms) {
    results.push_back(std::async(Report, form));
  }
  const RunResult table = results[0].get(), json = results[1].get(), csv = results[2].get();
  for (const char* told : {"\nMr D\xC3\xADz: not read, its lock file is missing\n",
                           "\nMs Hill  Room 12  Ann Lee: not read, damaged\n",
                           "\nMs Hill  Empty: not read, locked by someone"}) {
    ExpectIn(told, table.output);
  }
  ExpectIn("\nincomplete: " + store.Path(ann), table.output);
  EXPECT_EQ(kHeader + "Ms Hill,Room 12,Ann Lee,,,\r\nMs Hill,Room 12,Zo\xC3\xAB,4,4,1\r\n",
            csv.output);
  const Json report = Json::parse(json.output, nullptr, false);
  EXPECT_EQ(false, report["complete"]);
  const Json expected = Json::parse(R"([{"name":"Mr Díz","classes":null},
    {"name":"Ms Hill","classes":[{"name":"Room 12","students":[
      {"name":"Ann Lee","current_mission":null,"previous_mission":null,"vocab_level":null},
      {"name":"Zoë","current_mission":4,"previous_mission":4,"vocab_level":1}]},
      {"name":"Empty","students":null}]}])");
  EXPECT_EQ(expected, report["teachers"]);
  const Json& why = report["unread"][1];
  EXPECT_EQ(Json({"Ms Hill", "Room 12", "Ann Lee", store.Path(ann) + "/autogame.zep", "damaged"}),
            Json({why["teacher"], why["class"], why["student"], why["path"], why["reason"]}));
  EXPECT_EQ(3u, report["unread"].size());
  for (const RunResult& result : {table, json, csv}) {
    EXPECT_EQ(3, result.exitCode);
    EXPECT_EQ(0u, result.errors.find("kivreport: incomplete: ")) << result.errors;
    ExpectIn("no index.lok", result.errors);
    EXPECT_EQ(result.errors.size() - 1, result.errors.find('\n')) << result.errors;
  }
}

}  // namespace
}  // namespace kivtest
