// Every transaction broken off at every file operation: the process dies there, or that operation
// fails and the others go on. Whatever is left, the next listing puts it in order, loses no student
// and lists nobody twice; and what was answered true is so on disk.
#ifndef _WIN32
#include <sys/wait.h>
#include <unistd.h>
#endif

#include "records/tutor_options_dob.h"
#include "store/change/adding_many.h"
#include "store/change/last_file.h"
#include "store/change/setting_aside.h"
#include "store/place/display_name.h"
#include "tests/store/change/transactions.h"
#include "tests/support/fault_file_services.h"
#include "tests/support/wine.h"

using namespace kivstore;
using namespace kivtest;

namespace {

class KillTable : public TransactionFixture {
 protected:
  // Breaks `run` off at its first operation, its second and so on as long as there is one, by the
  // death of the process and by one failure. Then check(whether it was broken off, by death).
  template <class Prepare, class Run, class Check>
  static void BreakEverywhere(Prepare prepare, Run run, Check check) {
    for (const bool dies : {true, false}) {
      bool struck = true;
      for (int n = 1; struck && n < 2000; ++n) {
        prepare();
        FaultFileServices services(*Platform().files);
        {
          const SPlatformOverride<IFileServices> installed(Platform().files, &services);
          dies ? services.DieAt(n) : services.FailAt(n);
          run();
        }
        struck = services.HasStruck();
        SCOPED_TRACE((dies ? "death at " : "failure of ") + std::to_string(n) + ": " +
                     (struck ? services.Log()[static_cast<size_t>(n) - 1].operation : "none"));
        EXPECT_EQ(services.OpenPaths(), Lines());
        EXPECT_TRUE(struck || n > 10);
        check(struck, dies);
      }
      EXPECT_FALSE(struck);
    }
  }
};

TEST_F(KillTable, TransactionsSurviveTheDeathOfTheProcessAndAnyFailure) {
  for (const Transaction& transaction : transactions) {
    // There each operation takes many times as long, and the steps are the same.
    if (RunsUnderWine() && transaction.name != "MoveStudent" &&
        transaction.name != "DeleteStudent") {
      continue;
    }
    bool answer = false;
    const auto check = [&](bool struck, bool dies) {
      SCOPED_TRACE(transaction.name + (answer ? ", answered true" : ", answered false"));
      const StoreImage image = ListAll();
      CheckStore(transaction, image, struck);
      const bool isFirm = answer && !(transaction.PromisesLittle() && dies && struck);
      EXPECT_TRUE(!isFirm || IsDone(transaction, image));
      EXPECT_TRUE(struck || answer);
    };
    BreakEverywhere([&] { Restore(); }, [&] { answer = transaction.run(); }, check);
  }
}

#ifndef _WIN32
// With a real end: no destructor runs, and the system lets go of the locks.
TEST_F(KillTable, ARealEndAtEveryOperationLeavesWhatTheTableSays) {
  for (const char* const name : {"MoveStudent", "DeleteStudent"}) {
    const Transaction& transaction = Named(name);
    int status = 7;
    for (int n = 1; status == 7 && n < 2000; ++n) {
      Restore();
      const pid_t child = fork();
      ASSERT_GE(child, 0);
      if (child == 0) {
        FaultFileServices services(*Platform().files);
        Platform().files = &services;
        services.DieAt(n, [] { _exit(7); });
        _exit(transaction.run() ? 0 : 1);
      }
      ASSERT_EQ(waitpid(child, &status, 0), child);
      ASSERT_TRUE(WIFEXITED(status));
      status = WEXITSTATUS(status);
      SCOPED_TRACE(transaction.name + ", death at operation " + std::to_string(n));
      const StoreImage image = ListAll();
      CheckStore(transaction, image, status == 7);
      EXPECT_TRUE(status == 7 || IsDone(transaction, image));
    }
    EXPECT_EQ(status, 0);
  }
}
#endif

// Two of one name, one whose folder name is taken, one who is there.
TEST_F(KillTable, OfManyWhoAreAddedAtOnceNobodyIsLost) {
  constexpr NewFile kLock[] = {{"index.lok", nullptr, 0}};
  std::vector<SNewcomer> newcomers;
  bool answer = false;
  const auto prepare = [&] {
    Restore();
    temp.MakeFolder(kHill + "/Room/DanRoe.new/left by a death");
    newcomers = {{"Dan", "Roe"}, {"DAN", "roe"}, {"Da", "nRoe"}, {"Bob", ""}};
  };
  const auto run = [&] { answer = AddStudentsAt(site, Spec(kRoom), newcomers, kLock); };
  const auto check = [&](bool struck, bool) {
    const StoreImage image = ListAll();
    EXPECT_EQ(image.faults, Lines());
    std::string outcomes;
    for (const SNewcomer& one : newcomers) {
      const SString name = DisplayName(one.first, one.last);
      const std::string folder = kRoom + "/" + Bytes(one.folderName);
      outcomes += std::to_string(one.outcome) + Bytes(one.folderName) + " ";
      if (one.outcome == SNewcomer::kAdded) {
        EXPECT_EQ(ListsWith(image, Bytes(name)), Lines{kRoom});
        EXPECT_TRUE(temp.Exists(folder + "/index.lok"));
      }
    }
    for (const ListedEntry& entry : image.entries) {
      EXPECT_FALSE(entry.Path().ends_with(".new")) << "made in the list";
    }
    EXPECT_TRUE(struck || outcomes == "1DanRoe 2DanRoe 1DanRoe0 2Bob ") << outcomes;
    EXPECT_TRUE(struck || answer);
  };
  BreakEverywhere(prepare, run, check);
}

// At every moment she is in her list or set aside, and whoever is told so finds her there.
TEST_F(KillTable, WhoIsSetAsideIsInOnePlace) {
  const std::string aside = "Deleted/1";
  const auto place = [&] {
    temp.MakeFolder(aside);
    return Spec(aside + "/AnnLee");
  };
  SLoginNameObj back;
  bool answer = false;
  for (const bool putsBack : {false, true}) {
    const auto prepare = [&] {
      Restore();
      temp.Remove("Deleted");
      const SFileSpec to = place();
      EXPECT_TRUE(!putsBack || SetAside(site, Spec(kRoom), ListKind::kStudents, ann, to));
    };
    const auto run = [&] {
      const SFileSpec spec = Spec(aside + "/AnnLee");
      const auto isMeant = [](const SLoginNameObj&) { return true; };
      answer = putsBack ? PutBack(site, Spec(kRoom), ListKind::kStudents, spec, isMeant, back)
                        : SetAside(site, Spec(kRoom), ListKind::kStudents, ann, spec);
    };
    const auto check = [&](bool struck, bool) {
      const bool isAside = temp.Exists(aside + "/AnnLee/mark");
      const Lines lists = ListsWith(ListAll(), "Ann Lee");
      EXPECT_EQ(lists, isAside ? Lines() : Lines{kRoom});
      EXPECT_TRUE(!answer || isAside == !putsBack);
      EXPECT_TRUE(struck || answer);
    };
    BreakEverywhere(prepare, run, check);
  }
}

// The files beside the lists, saved in the same way: each is the old or the new one.
TEST_F(KillTable, OptionsAndTheLastUsedFileAreTheOldOrTheNewOnes) {
  const std::string home = kRoom + "/AnnLee", last = home + "/last.kiv";
  const auto names = [](const char* game) {
    return ByteWriter().Long(2).Text("a.txt").Text(game).Bytes();
  };
  bool saved = false;
  BreakEverywhere(
      [&] {
        store.WriteOptions(home, OptionsBytes().Set("MaxGameFiles", 5, 100));
        store.WriteFile(last, names("old.zep"));
      },
      [&] {
        STeacherOptionsDob options;
        options.SetOption(&SKivTeacherOptionsDob::MaxGameFiles, 7);
        SFileSpec spec = Spec(home + "/options.kiv");
        saved = options.SaveMergedToFile(spec);
        RecordLastFile(site, &room, &ann, "new.zep", "zep");
      },
      [&](bool struck, bool) {
        STeacherOptionsDob stored;
        EXPECT_TRUE(stored.LoadFromFile(Spec(home + "/options.kiv")));
        EXPECT_EQ(stored.MaxGameFiles.value, saved || stored.MaxGameFiles.value == 7 ? 7 : 5);
        const std::string recorded = temp.ReadFile(last);
        EXPECT_TRUE(recorded == names("new.zep") || (struck && recorded == names("old.zep")));
      });
}

}  // namespace
