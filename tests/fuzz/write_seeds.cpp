// Writes the first inputs of every fuzz target: whole, valid files and stores, from which the
// fuzzer goes on.
//
//   write_seeds FOLDER      FOLDER/fuzz_TARGET/NAME
#include <algorithm>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>

#include "kivstore/general_proc.h"
#include "tests/fuzz/store_names.h"
#include "tests/support/store_builder.h"
#include "tests/support/temp_folder.h"

namespace kivtest {
namespace {

namespace fs = std::filesystem;

class Corpus {
 public:
  Corpus(const std::string& root, const std::string& target) : folder(fs::path(root) / target) {
    fs::create_directories(folder);
  }
  void Write(const std::string& name, const std::string& bytes) const {
    std::ofstream out(folder / name, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.close();
    if (!out) {
      throw std::runtime_error("cannot write " + (folder / name).string());
    }
  }

 private:
  fs::path folder;
};

// Short and long texts, numbers and names as FuzzInput takes them.
class Seed : public ByteWriter {
 public:
  Seed& Text(const std::string& text) {
    Byte(static_cast<int>(text.size())).Raw(text);
    return *this;
  }
  Seed& LongText(const std::string& text) {
    Short(static_cast<int>(text.size())).Raw(text);
    return *this;
  }
  Seed& Number(int value) {  // -2 to 249
    Byte(value + 2);
    return *this;
  }
  Seed& Name(const std::string& name) {
    for (size_t i = 0; i < kStoreNameCount; ++i) {
      if (name == kStoreNames[i]) {
        Byte(static_cast<int>(i));
        return *this;
      }
    }
    Byte(kOtherName);
    return Text(name);
  }
};

void WriteIndexSeeds(const Corpus& corpus) {
  corpus.Write("empty", IndexBytes({}));
  corpus.Write("one", IndexBytes({{"Rm", "Room", ""}}));
  corpus.Write("both", IndexBytes({{"AnnLee", "Ann", "Lee"}, {"b", "Mei", ""}},
                                  {{"autogame.zep", "autogame", "zep"}, {"x.zep", "My", "zep"}}));
  corpus.Write("count", ByteWriter().Long(0x7FFFFFFF).Text("a").Bytes());
}

void WriteLongNameSeeds(const Corpus& corpus) {
  corpus.Write("class", LongNameBytes("Room 12"));
  corpus.Write("student", LongNameBytes("Christopher", "Applebaum"));
  corpus.Write("marks", LongNameBytes("100 %1 %2", "%%"));
  corpus.Write("signs", LongNameBytes("\xC9lo\xEFse", "..\\.."));
}

void WriteLastSeeds(const Corpus& corpus) {
  const auto list = [](std::initializer_list<const char*> names) {
    ByteWriter bytes;
    bytes.Long(static_cast<uint32_t>(names.size()));
    for (const char* const name : names) {
      bytes.Text(name);
    }
    return bytes.Bytes();
  };
  const auto seed = [](const std::string& file) {
    return Seed().Text("zep").Text("kiv").Text("My game").Raw(file).Bytes();
  };
  corpus.Write("none", seed(""));
  corpus.Write("one", seed(list({"autogame.zep"})));
  corpus.Write("types", seed(list({"notes.kiv", "a.b", "old.ZEP", "older.zep"})));
  corpus.Write("unsafe", seed(list({"..\\x.zep", ".zep"})));
}

void WriteOptionsSeeds(const Corpus& corpus) {
  OptionsBytes options;
  corpus.Write("defaults", options.Bytes());
  options.stamps.all = 3000000000;
  corpus.Write("decided", options.SetMission(5).SetLessonDone(4).Bytes());
  options.missions.resize(2);
  options.game.LessonDone.resize(40);
  corpus.Write("lengths", options.Bytes());
  options.hasGameOptions = false;
  options.missions.clear();
  corpus.Write("bare", options.Bytes());
  options.version = 0x00020000;
  corpus.Write("version", options.Bytes());
}

void WriteGameSeeds(const Corpus& corpus) {
  GameBytes game;
  corpus.Write("defaults", game.Bytes());
  game.firstName = "Ann";
  game.lastName = "Lee";
  game.publicFile = true;
  game.options.stamps.all = 3000000000;
  corpus.Write("named", game.Bytes());
  game.keyTypedWrong.resize(3);
  game.graphData.resize(300);
  game.keyErrorsDuringExercises.clear();
  corpus.Write("lengths", game.Bytes());
  game.version = 0;
  corpus.Write("version", game.Bytes());
}

void WritePrefSeeds(const Corpus& corpus) {
  const std::string text =
      "; notes\r\n[Student]\r\nVocabLevel=3\r\nVocabLevel_ts_high=0\r\nVocabLevel_ts_low=9\r\n"
      "TOGameDob_Exists=1\r\nTOGameDob_LessonDone_Count=2\r\nTOGameDob_LessonDone_0=1\r\n"
      "TotalTime=7\r\nKeyErrorsDuringExercises_Count=2\r\nKeyErrorsDuringExercises_1=-4\r\n\r\n"
      "[Student_Missions]\r\nCount=1\r\n0_Notebook=1\r\n[b] x\r\n  k=1\r\n";
  const auto edit = [](Seed& seed, int kind, const char* section, const char* key,
                       const char* value) {
    seed.Byte(kind);
    seed.Text(section).Text(key).Text(value);
  };
  Seed seed;
  seed.Byte(4);
  edit(seed, 0, "Student", "VocabLevel", "2");
  edit(seed, 0, "New", "key", "some text");
  edit(seed, 1, "b", "k", "");
  edit(seed, 2, "Student_Missions", "", "");
  corpus.Write("edits", seed.Raw(text).Bytes());
  corpus.Write("text", Seed().Byte(0).Raw(text).Bytes());
  Seed torn;
  torn.Byte(2);
  edit(torn, 0, "a", "k", "longer than it was");
  edit(torn, 1, "a", "k", "");
  corpus.Write("torn", torn.Raw("[a]\n\n\n[b\nk=1\n[a] [a]\nk=x").Bytes());
}

struct Calls {
  uint8_t mode;
  int nameSize;
  std::vector<int> commands;
};
constexpr int kFittingName = 52;
constexpr int kOverrunningName = 249;  // beyond the end of the block, wherever the name stands

// A store on disk as the places and calls of the store target.
class StoreSeed {
 public:
  explicit StoreSeed(const StoreBuilder& store) {
    const std::map<std::string, std::string> snapshot = store.Snapshot();
    seed.Byte(static_cast<int>(snapshot.size()));
    for (const auto& [path, bytes] : snapshot) {
      AddPlace(path, bytes, fs::is_directory(store.Path(path)));
    }
  }
  std::string Bytes(int failing, const Calls& calls) const {
    Seed whole(seed);
    whole.Number(failing).Byte(0);
    for (const int command : calls.commands) {
      constexpr int kFill = 0x5A;
      whole.Byte(kFill);
      whole.Number(command).Byte(calls.mode);
      whole.Number(1).Number(0).Number(1).Number(1).Number(calls.nameSize).Number(10);
    }
    return whole.Bytes();
  }

 private:
  void AddPlace(const std::string& path, const std::string& bytes, bool isFolder) {
    const size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "" : path.substr(0, slash);
    const auto parent = std::find(folders.begin(), folders.end(), folder);
    seed.Byte(static_cast<int>(parent - folders.begin()));
    seed.Name(path.substr(slash + 1));
    seed.Byte(isFolder ? kPlaceIsFolder : 0);
    if (isFolder) {
      folders.push_back(path);
    } else {
      seed.LongText(bytes);
    }
  }

  Seed seed;
  std::vector<std::string> folders{""};  // by number: the top first
};

void LaySchool(StoreBuilder& store, Kind kind) {
  const std::string teacher = kind == Kind::kTeachers ? store.AddTeacher("Ms Hill", "Hill") : "";
  const std::string room = store.AddClass(teacher, "Room 12", "Room12");
  const std::string ann = store.AddStudent(room, "Ann", "Lee", "AnnLee");
  store.AddStudent(room, "Abe", "Young", "a");
  store.WriteOptions(room, OptionsBytes().Set("VocabLevel", 2, 7));
  store.WriteOptions(ann, OptionsBytes().SetMission(5, 9));
  store.WriteGame(ann, GameBytes());
  store.Finish();
}

void WriteStoreSeeds(const Corpus& corpus) {
  const std::vector<int> plain = {KIV_COUNT_TEACHERS, KIV_TEACHER_NAME,     KIV_COUNT_CLASSES,
                                  KIV_CLASS_NAME,     KIV_STUDENT_PROGRESS, KIV_PRODUCT_ID};
  const std::vector<int> cached = {KIV_CACHE_TEACHERS, KIV_CACHED_TEACHER_NAME,
                                   KIV_CACHE_CLASSES,  KIV_CACHED_CLASS_NAME,
                                   KIV_CACHE_STUDENTS, KIV_CACHED_STUDENT_NAME};
  for (const Kind kind : {Kind::kLocal, Kind::kTeachers}) {
    const TempFolder folder;
    StoreBuilder store(folder.Path(), kind);
    LaySchool(store, kind);
    const std::string name = kind == Kind::kLocal ? "local" : "teachers";
    const uint8_t mode = kind == Kind::kLocal ? 0 : 1;
    corpus.Write(name + "_plain", StoreSeed(store).Bytes(0, {mode, kFittingName, plain}));
    corpus.Write(name + "_cached", StoreSeed(store).Bytes(0, {mode, kOverrunningName, cached}));
    corpus.Write(name + "_failing",
                 StoreSeed(store).Bytes(20, {mode, kFittingName, {KIV_STUDENT_PROGRESS}}));
  }
  const TempFolder folder;
  StoreBuilder store(folder.Path(), Kind::kTeachers);
  const std::string room = store.AddClass(store.AddTeacher("T", "a"), "R", "b");
  for (const char* const student : {"a", "b", "AnnLee", "Default"}) {
    store.DropIndexLine(store.AddStudent(room, "Same", "Name", student));
  }
  store.Finish();
  corpus.Write(
      "namesakes",
      StoreSeed(store).Bytes(
          0, {1, kFittingName, {KIV_CACHE_TEACHERS, KIV_CLASS_NAME, KIV_STUDENT_PROGRESS}}));
}

void WriteAll(const std::string& root) {
  WriteIndexSeeds({root, "fuzz_index"});
  WriteLongNameSeeds({root, "fuzz_longname"});
  WriteLastSeeds({root, "fuzz_last"});
  WriteOptionsSeeds({root, "fuzz_options"});
  WriteGameSeeds({root, "fuzz_game"});
  WritePrefSeeds({root, "fuzz_pref"});
  WriteStoreSeeds({root, "fuzz_store"});
}

}  // namespace
}  // namespace kivtest

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: write_seeds FOLDER\n";
    return 2;
  }
  try {
    kivtest::WriteAll(argv[1]);
  } catch (const std::exception& failure) {
    std::cerr << "write_seeds: " << failure.what() << '\n';
    return 1;
  }
  return 0;
}
