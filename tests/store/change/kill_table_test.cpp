// Every transaction broken off at every file operation: the process dies there, or that operation
// fails and the others go on. Whatever is left, the next listing puts it in order, loses no student
// and lists nobody twice; and what was answered true is so on disk.
#ifndef _WIN32
#include <sys/wait.h>
#include <unistd.h>
#endif

#include <set>

#include "records/tutor_options_dob.h"
#include "store/change/last_file.h"
#include "tests/store/change/transactions.h"
#include "tests/support/fault_file_services.h"

using namespace kivstore;
using namespace kivtest;

namespace {

constexpr int kMostOperations = 2000;

enum class Break { kOneFailure, kDeath };

class KillTable : public TransactionFixture {
 protected:
  using Transactions = std::vector<Transaction>;

  static bool HasChanged(const std::vector<FileCall>& log, int n, Break how) {
    static const std::set<std::string> kChanging = {"Write",    "SetEnd",       "SetAttributes",
                                                    "Delete",   "RemoveFolder", "Move",
                                                    "MakeFile", "MakeFolder",   "CopyFileTo"};
    const auto broken = static_cast<size_t>(n) - 1;
    for (size_t i = 0; i < log.size() && (how == Break::kOneFailure || i < broken); ++i) {
      if (i != broken && kChanging.count(log[i].operation) > 0) {
        return true;
      }
    }
    return false;
  }
  // True as long as there was something to break off. Most operations look and change nothing; the
  // store then serves for the next one.
  bool BreakAt(const Transaction& transaction, int n, Break how) {
    isFresh ? Load() : Restore();
    FaultFileServices services(*Platform().files);
    const SPlatformOverride<IFileServices> installed(Platform().files, &services);
    how == Break::kDeath ? services.DieAt(n) : services.FailAt(n);
    const bool answer = transaction.run();
    const bool struck = services.HasStruck();
    const FileCall broken = struck ? services.Log()[static_cast<size_t>(n) - 1] : FileCall();
    const bool changed = HasChanged(services.Log(), n, how);
    services.FailNever();
    SCOPED_TRACE(transaction.name + ", operation " + std::to_string(n) + ": " + broken.operation +
                 " " + broken.path + (how == Break::kDeath ? ", and all that follow" : "") +
                 (answer ? ", answered true" : ", answered false"));
    EXPECT_EQ(services.OpenPaths(), Lines());
    const StoreImage image = changed ? ListAll() : ReadStore(temp.Path(), Kind::kTeachers);
    CheckStore(transaction, image, struck);
    isFresh = !changed;
    const bool isFirm = !transaction.promisesLittle || how == Break::kOneFailure || !struck;
    EXPECT_TRUE(!answer || !isFirm || IsDone(transaction, image)) << "was answered true";
    EXPECT_TRUE(struck || (answer && IsDone(transaction, image))) << "untouched";
    return struck;
  }
  void BreakEverywhere(const Transactions& transactions) {
    for (const Break how : {Break::kDeath, Break::kOneFailure}) {
      for (const Transaction& transaction : transactions) {
        isFresh = false;
        int n = 1;
        while (n < kMostOperations && BreakAt(transaction, n, how)) {
          ++n;
        }
        EXPECT_LT(n, kMostOperations) << transaction.name;
        EXPECT_GT(n, 10) << transaction.name;
      }
    }
  }

  bool isFresh = false;
};

TEST_F(KillTable, AddsSurviveTheDeathOfTheProcessAndAnyFailure) {
  BreakEverywhere(Adds());
}

TEST_F(KillTable, RenamesSurviveTheDeathOfTheProcessAndAnyFailure) {
  BreakEverywhere(Renames());
}

TEST_F(KillTable, MovesSurviveTheDeathOfTheProcessAndAnyFailure) {
  BreakEverywhere(Moves());
}

TEST_F(KillTable, DeletesSurviveTheDeathOfTheProcessAndAnyFailure) {
  BreakEverywhere(Deletes());
}

#ifndef _WIN32
// With a real end: no destructor runs, and the system lets go of the locks.
TEST_F(KillTable, ARealEndAtEveryOperationLeavesWhatTheTableSays) {
  for (const Transaction& transaction : {Moves()[1], Deletes()[0]}) {
    bool died = true;
    for (int n = 1; died && n < kMostOperations; ++n) {
      Restore();
      const pid_t child = fork();
      ASSERT_GE(child, 0);
      if (child == 0) {
        FaultFileServices services(*Platform().files);
        Platform().files = &services;
        services.DieAt(n, [] { _exit(7); });
        _exit(transaction.run() ? 0 : 1);
      }
      int status = -1;
      ASSERT_EQ(waitpid(child, &status, 0), child);
      ASSERT_TRUE(WIFEXITED(status));
      died = WEXITSTATUS(status) == 7;
      SCOPED_TRACE(transaction.name + ", death at operation " + std::to_string(n));
      EXPECT_TRUE(died || WEXITSTATUS(status) == 0);
      const StoreImage image = ListAll();
      CheckStore(transaction, image, died);
      EXPECT_TRUE(died || IsDone(transaction, image));
    }
    EXPECT_FALSE(died);
  }
}
#endif

// The files beside the lists, saved in the same way: each is the old or the new one.
TEST_F(KillTable, OptionsAndTheLastUsedFileAreTheOldOrTheNewOnes) {
  const std::string home = kRoom + "/AnnLee", last = home + "/last.kiv";
  const auto names = [](const char* game) {
    return ByteWriter().Long(2).Text("a.txt").Text(game).Bytes();
  };
  for (const Break how : {Break::kDeath, Break::kOneFailure}) {
    bool struck = true;
    for (int n = 1; struck && n < 200; ++n) {
      SCOPED_TRACE("operation " + std::to_string(n));
      store.WriteOptions(home, OptionsBytes().Set("MaxGameFiles", 5, 100));
      store.WriteFile(last, names("old.zep"));
      FaultFileServices services(*Platform().files);
      const SPlatformOverride<IFileServices> installed(Platform().files, &services);
      how == Break::kDeath ? services.DieAt(n) : services.FailAt(n);
      STeacherOptionsDob options, stored;
      options.SetOption(&SKivTeacherOptionsDob::MaxGameFiles, 7);
      SFileSpec spec = Spec(home + "/options.kiv");
      const bool saved = options.SaveMergedToFile(spec);
      RecordLastFile(site, &room, &ann, "new.zep", "zep");
      struck = services.HasStruck();
      services.FailNever();
      EXPECT_EQ(services.OpenPaths(), Lines());
      EXPECT_TRUE(stored.LoadFromFile(Spec(home + "/options.kiv")));
      EXPECT_TRUE(stored.MaxGameFiles.value == 7 || (!saved && stored.MaxGameFiles.value == 5));
      const std::string recorded = temp.ReadFile(last);
      EXPECT_TRUE(recorded == names("new.zep") || (struck && recorded == names("old.zep")));
    }
    EXPECT_FALSE(struck);
  }
}

}  // namespace
