// The files beside the lists, saved while the process dies or an operation fails at every step: a
// game with its line in the index, the options of a level, the list of what was used last. A file
// is then whole, the old or the new one, and a listing has each game once.
#include "foundation/files/file_type.h"
#include "game/game_dob.h"
#include "records/tutor_options_dob.h"
#include "store/change/maintenance.h"
#include "tests/store/kill_fixture.h"

using namespace kivstore;
using kivtest::FaultFileServices;
using kivtest::Kind;
using kivtest::kRoom;
using kivtest::Lines;
using kivtest::StoreBuilder;
using kivtest::Text;

namespace {

const std::string kAnn = kRoom + "/AnnLee";

class FileKillTable : public kivtest::KillFixture {
 protected:
  FileKillTable() { gFileVersion = kivtest::kDataVersion; }

  // Runs `save` with its n-th operation failing, alone or as the process dies; whether it came.
  bool BreakAt(int n, bool dies, const std::function<bool()>& save, bool& answer) {
    FaultFileServices services(*Platform().files);
    const SPlatformOverride<IFileServices> installed(Platform().files, &services);
    if (dies) {
      services.DieAt(n);
    } else {
      services.FailAt(n);
    }
    answer = save();
    EXPECT_EQ(services.OpenPaths(), Lines());
    return services.HasStruck();
  }
  // For every step: a store as it was, `save` broken off there, then `check`.
  void BreakEverywhere(const std::function<bool()>& save,
                       const std::function<void(bool answer)>& check) {
    for (const bool dies : {true, false}) {
      bool struck = true;
      for (int n = 1; struck && n < 200; ++n) {
        SCOPED_TRACE(std::string(dies ? "death" : "failure") + " at operation " +
                     std::to_string(n));
        Build();
        SetUpFiles();
        bool answer = false;
        struck = BreakAt(n, dies, save, answer);
        EXPECT_TRUE(struck || answer);
        check(answer);
      }
      EXPECT_FALSE(struck);
    }
  }
  virtual void SetUpFiles() {}

  const SLoginNameObj ann = Entry("AnnLee", "Ann", "Lee");
};

TEST_F(FileKillTable, ANewGameIsWholeOrNotThereAndListedOnce) {
  SGameDob game;
  const auto save = [&] {
    SFileSpec spec = Spec(kAnn + "/first.zep");
    return game.SaveFile(spec, "My first", nullptr);
  };
  BreakEverywhere(save, [&](bool answer) {
    SPtrArray files;
    LoadFileListAt(files, Spec(kAnn), "zep", true);
    EXPECT_LE(files.GetSize(), 1);
    EXPECT_TRUE(!answer || files.GetSize() == 1);
    const std::string path = kAnn + "/first.zep";
    EXPECT_TRUE(!answer || (temp.Exists(path) && temp.ReadFile(path).size() > 900));
    EXPECT_EQ(files.GetSize() == 1, temp.Exists(path));
    DeleteFiles(files);
  });
}

class OptionsKillTable : public FileKillTable {
 protected:
  void SetUpFiles() override {
    StoreBuilder store(temp.Path(), Kind::kTeachers);
    store.WriteOptions(kAnn, kivtest::OptionsBytes().Set("MaxGameFiles", 5, 100));
  }
};

TEST_F(OptionsKillTable, OptionsAreTheOldOrTheNewOnes) {
  const auto save = [this] {
    STeacherOptionsDob options;
    options.SetOption(&SKivTeacherOptionsDob::MaxGameFiles, 7);
    SFileSpec spec = Spec(kAnn + "/options.kiv");
    return options.SaveMergedToFile(spec);
  };
  BreakEverywhere(save, [this](bool answer) {
    STeacherOptionsDob stored;
    EXPECT_TRUE(stored.LoadFromFile(Spec(kAnn + "/options.kiv")));
    EXPECT_TRUE(stored.MaxGameFiles.value == 7 || (!answer && stored.MaxGameFiles.value == 5))
        << stored.MaxGameFiles.value;
  });
}

class LastFileKillTable : public FileKillTable {
 protected:
  static std::string Names(const std::string& game) {
    return kivtest::ByteWriter().Long(2).Text("a.txt").Text(game).Bytes();
  }
  void SetUpFiles() override { temp.WriteFile(kAnn + "/last.kiv", Names("old.zep")); }
};

TEST_F(LastFileKillTable, TheLastUsedFileIsTheOldOrTheNewOne) {
  const auto save = [this] {
    RecordLastFile(&room, &ann, "new.zep", "zep");
    return true;  // it answers nothing
  };
  BreakEverywhere(save, [this](bool) {
    const std::string bytes = temp.ReadFile(kAnn + "/last.kiv");
    EXPECT_TRUE(bytes == Names("old.zep") || bytes == Names("new.zep")) << bytes.size();
  });
}

}  // namespace
