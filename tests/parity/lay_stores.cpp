// Lays out the stores of the parity test below a folder: each kind whole, and each kind with the
// disorder that listings repair and progress queries meet. The same bytes on every run.
//
//   lay_parity_stores FOLDER
#include <filesystem>

#include "tests/support/store_builder.h"

namespace kivtest {
namespace {

namespace fs = std::filesystem;

struct School {
  std::string teacher, room, ann, bob;
};

School Fill(StoreBuilder& store, Kind kind) {
  School school;
  if (kind == Kind::kTeachers) {
    school.teacher = store.AddTeacher("Ms Hill");
    const std::string diaz = store.AddTeacher("Mr D\xEDz");
    store.AddStudent(store.AddClass(diaz, "Late, \"Mon\""), "Zo\xEB");
  }
  school.room = store.AddClass(school.teacher, "Room 12");
  store.AddClass(school.teacher, "Empty");
  school.ann = store.AddStudent(school.room, "Ann", "Lee");
  school.bob = store.AddStudent(school.room, "Bob", "O'Brien");
  store.AddStudent(school.room, std::string(60, 'n'), "longer than the field", "Long");
  for (int i = 0; i < 40; ++i) {
    store.AddStudent(school.room, "Pupil " + std::to_string(i * 37 % 40));
  }
  GameBytes game;
  game.learnedNewKeys = true;
  store.WriteGame(school.ann, game);
  store.WriteGame(school.bob, GameBytes());
  const std::string list = StoreBuilder::ClassList(school.teacher);
  store.WriteOptions(list, OptionsBytes().Set("VocabLevel", 2, 100));
  store.WriteOptions(school.room, OptionsBytes().SetMission(4, 50));
  store.WriteOptions(school.ann, OptionsBytes().SetMission(9, 200).Set("VocabLevel", 3, 200));
  store.WriteOptions(school.bob, OptionsBytes().SetMission(25, 10).SetLessonDone(25));
  store.Finish();
  return school;
}

// Entries without folders, folders without entries, two of one name, files that are torn, foreign
// or of another version, and names in another letter case.
void Disturb(StoreBuilder& store, const School& school) {
  const std::string students = StoreBuilder::StudentList(school.room);
  const std::string list = StoreBuilder::ClassList(school.teacher);
  const auto pupil = [&](int n) { return students + "/Pupil" + std::to_string(n); };
  for (const char* folder : {"/stranger", "/nameless"}) {
    fs::create_directory(store.Path(students + folder));
  }
  store.DropIndexLine(pupil(3));
  store.DropIndexLine(pupil(7));
  store.RemoveFolder(pupil(11));
  store.SetLongName(pupil(13), "Pupil 14");
  store.WriteFile(students + "/stranger/longname.kiv", LongNameBytes("Stray", "Folder"));
  store.WriteFile(students + "/nameless/notes.txt", "no name of its own");
  store.WriteFile(students + "/plain file", "no folder");
  OptionsBytes other;
  other.version = 0x00020000;
  store.WriteFile(pupil(15) + "/options.kiv", other.Bytes());
  store.WriteFile(pupil(16) + "/options.kiv", "BIN");
  store.WriteFile(pupil(17) + "/autogame.zep", GameBytes().Bytes().substr(0, 500));
  store.Tear(pupil(18) + "/longname.kiv", 2);
  store.Tear(list + "/index.kiv", 30);
  fs::rename(store.Path(school.bob + "/options.kiv"), store.Path(school.bob + "/OPTIONS.KIV"));
  fs::rename(store.Path(students + "/index.kiv"), store.Path(students + "/Index.kiv"));
  store.RemoveFile(StoreBuilder::Top() + "/index.kiv");
}

void LayAll(const std::string& folder) {
  const struct {
    const char* name;
    Kind kind;
  } kinds[] = {{"local", Kind::kLocal}, {"shared", Kind::kShared}, {"teachers", Kind::kTeachers}};
  for (const auto& [name, kind] : kinds) {
    StoreBuilder whole(folder + "/" + name, kind);
    Fill(whole, kind);
    StoreBuilder disturbed(folder + "/" + name + "-disturbed", kind);
    Disturb(disturbed, Fill(disturbed, kind));
  }
  StoreBuilder(folder + "/nothing", Kind::kTeachers).Finish();
  fs::create_directory(folder + "/no-store");
}

}  // namespace
}  // namespace kivtest

int main(int argc, char** argv) {
  if (argc != 2) {
    return 2;
  }
  kivtest::LayAll(argv[1]);
  return 0;
}
