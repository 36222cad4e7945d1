// Lays out two stores to look at: a networked one with teachers and a local one.
//
//   demo_store ROOT_NETWORK ROOT_LOCAL
//
// The networked store has what happens in real ones: options at every level, students at different
// missions, names with accents (bytes of windows-1252), a class that the index lost and a student
// whose name stands twice in a class.
#include <cstdio>
#include <exception>

#include "tests/support/store_builder.h"

using kivtest::GameBytes;
using kivtest::Kind;
using kivtest::OptionsBytes;
using kivtest::StoreBuilder;

namespace {

// 1 September, 1 October and 1 November 2025, in seconds since 1904.
constexpr uint32_t kTermBegins = 3839529600;
constexpr uint32_t kOctober = 3842121600;
constexpr uint32_t kNovember = 3844800000;

struct Student {
  const char* first;
  const char* last;
};

constexpr Student kStudents[] = {
    {"Ann", "Lee"},
    {"Ben", "Okafor"},
    {"Chlo\xE9", "Dupr\xE9"},
    {"Dora", "Ng"},
    {"Emil", "S\xF8rensen"},
    {"Fatima", "Haddad"},
    {"Georg", "M\xFCller"},
    {"Hana", "Suzuki"},
    {"Ivo", "Markovic"},
    {"Jos\xE9",
     "N\xFA\xF1"
     "ez"},
    {"Kira", "Applebaum"},
    {"Liam", "O'Brien"},
    {"Mei", ""},
    {"Nils",
     "\xC5"
     "kesson"},
    {"Olga", "Petrova"},
    {"Paul", "Smith"},
    {"Quinn", "Taylor-Jones"},
    {"Ren\xE9"
     "e",
     "Lef\xE8vre"},
    {"Sam", "Cooper"},
    {"Tara", "Singh"},
};
constexpr int kStudentCount = static_cast<int>(sizeof kStudents / sizeof kStudents[0]);

GameBytes GameAt(const Student& student, int mission) {
  GameBytes game;
  game.firstName = student.first;
  game.lastName = student.last;
  game.longFileName = "autogame";
  game.options.CurrentMissionNumber = mission;
  game.currentLessonNumber = mission;
  game.learnedNewKeys = mission % 2 == 0;
  return game;
}

OptionsBytes OptionsAt(int mission) {
  OptionsBytes options;
  options.SetMission(mission, kNovember);
  for (int done = 1; done < mission; ++done) {
    options.SetLessonDone(done);
  }
  options.game.stamps.byKey["LessonDone"] = kNovember;
  return options;
}

// Every third student has not started: no game and no options.
void AddProgress(StoreBuilder& store, const std::string& folder, const Student& student,
                 int number) {
  if (number % 3 == 2) {
    return;
  }
  const int mission = 1 + number * 7 % 25;
  store.WriteOptions(folder, OptionsAt(mission));
  store.WriteGame(folder, GameAt(student, mission));
}

std::string AddClassOf(StoreBuilder& store, const std::string& teacher, const char* name, int from,
                       int count) {
  const std::string added = store.AddClass(teacher, name);
  for (int i = from; i < from + count; ++i) {
    const Student& student = kStudents[i % kStudentCount];
    AddProgress(store, store.AddStudent(added, student.first, student.last), student, i);
  }
  return added;
}

void LayNetworkedStore(const char* root) {
  StoreBuilder store(root, Kind::kTeachers);
  const std::string hill = store.AddTeacher("Ms Hill");
  const std::string bjork = store.AddTeacher("Mr Bj\xF6rk");
  const std::string reyes = store.AddTeacher("Mrs Reyes");

  const std::string room12 = AddClassOf(store, hill, "Room 12", 0, 12);
  AddClassOf(store, hill, "Room 14", 5, 10);
  AddClassOf(store, bjork, "Klasse 7\xE4", 2, 11);
  const std::string lost = AddClassOf(store, bjork, "Afternoon group", 13, 8);
  const std::string year6 = AddClassOf(store, reyes, "Year 6", 9, 12);
  AddClassOf(store, reyes, "Beginners", 17, 7);

  OptionsBytes ofHill;
  ofHill.Set("VocabLevel", 2, kTermBegins).SetMission(1, kTermBegins);
  store.WriteOptions(StoreBuilder::ClassList(hill), ofHill);
  OptionsBytes ofRoom12;
  ofRoom12.Set("VocabLevel", 3, kOctober).SetMission(4, kOctober);
  store.WriteOptions(room12, ofRoom12);

  const std::string twin = store.AddStudent(year6, "Ann", "Lee", "AnnLeeB");
  store.Finish();
  store.AddStudent(year6, "Ann", "Lee", "AnnLeeC");  // its line is in no index
  store.SetLongName(twin, "Ann", "Lee");
  store.DropIndexLine(lost);
}

void LayLocalStore(const char* root) {
  StoreBuilder store(root, Kind::kLocal);
  const std::string family = AddClassOf(store, "", "At home", 0, 4);
  AddClassOf(store, "", "Neighbours", 6, 3);
  OptionsBytes options;
  options.Set("VocabLevel", 2, kTermBegins);
  store.WriteOptions(StoreBuilder::Top(), options);
  store.WriteOptions(family, OptionsBytes().Set("VocabLevel", 1, kOctober));
  store.Finish();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "demo_store ROOT_NETWORK ROOT_LOCAL\n");
    return 2;
  }
  try {
    LayNetworkedStore(argv[1]);
    LayLocalStore(argv[2]);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "demo_store: %s\n", error.what());
    return 1;
  }
  return 0;
}
