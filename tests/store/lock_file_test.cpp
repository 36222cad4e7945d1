#include "store/lock/lock_file.h"

#include <gtest/gtest.h>

#include <memory>

#include "tests/store/store_scope.h"
#include "tests/support/fault_file_services.h"
#include "tests/support/held_elsewhere.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_clock.h"

using namespace kivstore;
using kivtest::SpecOn;

namespace {

// Another workstation holds every file for the first `busyTries` openings, and each one is counted.
class BusyServices : public SForwardingFileServices {
 public:
  explicit BusyServices(int busyTries)
      : SForwardingFileServices(*Platform().files), busyTries(busyTries) {}
  FileHandle Open(const char* path, FileAccess access, SystemError& error) override {
    if (++opened > busyTries) {
      return inner.Open(path, access, error);
    }
    error = SystemError::kSharingViolation;
    return nullptr;
  }
  int opened = 0;

 private:
  int busyTries;
  SPlatformOverride<IFileServices> installed{Platform().files, this};
};

// A shared site, a folder with a lock file, a clock on which a spinning wait passes.
class SLockFileTest : public testing::Test {
 protected:
  SLockFileTest() { folder.WriteFile("index.lok", ""); }

  SFileSpec Folder() const { return SpecOn(folder.Path()); }
  // The five tries of a lock that stays busy take that long.
  bool FailsAfterAllTries(SLockFile& lock) {
    const uint32_t start = clock.CurrentTicks();
    return !lock.Lock() && clock.CurrentTicks() - start >= 3100;
  }

  const kivtest::TempFolder folder;
  const kivtest::SiteScope site{kSiteSharedTeachers};
  kivtest::TestClock clock{1};
};

TEST_F(SLockFileTest, TakesAFreeFileAtOnceAndLeavesItThere) {
  {
    SLockFile lock(Folder(), "index.kiv");
    EXPECT_TRUE(lock.Lock());
    EXPECT_TRUE(lock.IsFileOpen());
    EXPECT_TRUE(SLockFile::IsHeldHere(lock));
    EXPECT_TRUE(lock.Unlock());
    EXPECT_FALSE(SLockFile::IsHeldHere(lock));
    EXPECT_FALSE(lock.Unlock());
    EXPECT_TRUE(lock.Lock());
  }
  SLockFile next(Folder(), "index.kiv");
  EXPECT_TRUE(next.Lock());  // the end of the scope let go
  EXPECT_EQ(clock.TicksCalls(), 0);
  EXPECT_EQ(folder.List(), std::vector<std::string>{"index.lok"});
}

TEST_F(SLockFileTest, TriesFiveTimesWithGrowingWaits) {
  const struct {
    int busyTries, opened;
    uint32_t least, most;
  } cases[] = {{1, 2, 100, 200},   {2, 3, 300, 600},   {3, 4, 700, 1400},
               {4, 5, 1500, 3000}, {5, 5, 3100, 6200}, {99, 5, 3100, 6200}};
  for (const auto& c : cases) {
    BusyServices services(c.busyTries);
    SLockFile lock(Folder(), "index.kiv");
    const uint32_t start = clock.CurrentTicks();
    EXPECT_EQ(lock.Lock(), c.busyTries < 5);
    EXPECT_EQ(services.opened, c.opened);
    EXPECT_GE(clock.CurrentTicks() - start, c.least);
    EXPECT_LE(clock.CurrentTicks() - start, c.most + 20);  // each look at the clock takes a tick
  }
}

TEST_F(SLockFileTest, ExcludesEveryObjectOfTheProcessEvenItself) {
  SLockFile held(Folder(), "index.kiv"), other(SpecOn(folder.Path("index.kiv")), SString());
  ASSERT_TRUE(held.Lock());
  EXPECT_FALSE(SLockFile::IsHeldHere(other));
  EXPECT_TRUE(FailsAfterAllTries(other));
  EXPECT_TRUE(FailsAfterAllTries(held));
  EXPECT_TRUE(held.IsFileOpen());
  EXPECT_TRUE(held.Unlock());
  EXPECT_TRUE(other.Lock());
}

TEST_F(SLockFileTest, WithoutItsFileIsRefusedAtOnceUnlessFilesAreMade) {
  BusyServices services(0);
  SLockFile lock(Folder(), "options.kiv"), aimless(SpecOn(folder.Path("none")), "index.kiv"),
      misled(SpecOn(folder.Path("index.lok")), "index.kiv");
  for (SLockFile* refused : {&lock, &aimless, &misled}) {
    EXPECT_FALSE(refused->Lock());
  }
  EXPECT_EQ(services.opened, 0);
  EXPECT_EQ(clock.TicksCalls(), 0);
  EXPECT_EQ(folder.List(), std::vector<std::string>{"index.lok"});

  const kivtest::CreatingScope creating;
  EXPECT_TRUE(lock.Lock());
  EXPECT_TRUE(lock.Unlock());
  EXPECT_EQ(folder.ReadFile("options.lok"), "");
  EXPECT_FALSE(aimless.Lock());
}

TEST_F(SLockFileTest, GoesByTheDiskAsItWasWhenTheTargetWasSet) {
  SLockFile early(Folder(), "options.kiv"), late(Folder(), "index.kiv");
  folder.WriteFile("options.lok", "");
  folder.Remove("index.lok");
  EXPECT_FALSE(early.Lock());
  EXPECT_EQ(clock.TicksCalls(), 0);
  EXPECT_TRUE(FailsAfterAllTries(late));
  early.Retarget(Folder(), "options.kiv");
  EXPECT_TRUE(early.Lock());
  const SString text = early.lockedText;
  early.Retarget(Folder(), "index.kiv");  // too late: it is held
  EXPECT_EQ(early.lockedText, text);
  EXPECT_TRUE(early.IsFileOpen());
}

TEST_F(SLockFileTest, ReplacesTheLastThreeCharactersOfTheName) {
  const struct {
    const char *name, *file;
  } cases[] = {{"index.kiv", "index.lok"},
               {"abc", "abc"},
               {"abcd", "alok"},
               {"a.b.html", "a.b.hlok"},
               {"a", "a"}};
  for (const auto& c : cases) {
    folder.WriteFile(c.file, "");
    SLockFile lock(Folder(), c.name);
    EXPECT_TRUE(lock.Lock());
    SFile probe;
    EXPECT_FALSE(probe.Open(SFile::kRead, SpecOn(folder.Path(c.file)))) << c.file;
  }
}

TEST_F(SLockFileTest, IsInertOutsideSharedSites) {
  const kivtest::SiteScope local(kSiteLocal);
  BusyServices services(99);
  SLockFile lock(Folder(), "none.kiv");
  lock.Retarget(Folder(), "index.kiv");
  EXPECT_TRUE(lock.Lock());
  EXPECT_FALSE(lock.IsFileOpen());
  EXPECT_FALSE(lock.Unlock());
  EXPECT_EQ(services.opened, 0);
  EXPECT_EQ(lock.lockedText, "");
}

TEST_F(SLockFileTest, CarriesTheTextsOfItsTargetAndItsKind) {
  SLockFile lock(Folder(), "index.kiv");
  EXPECT_EQ(lock.waitText, "Trying to access shared information.\nPlease wait.");
  EXPECT_EQ(lock.failText, "Unable to complete the operation.");
  EXPECT_EQ(lock.lockedText,
            "File index.kiv is currently locked by someone else. Press OK to try locking the file "
            "again. Press CANCEL to quit trying to lock the file.");
  EXPECT_TRUE(
      lock.accessText.StartsWith("A file located in " + Folder().GetPath() + " could", true));

  SetLockMessages(lock, LockKind::kTeachers, false);
  EXPECT_EQ(lock.failText, "Unable to access the teacher lists.");
  EXPECT_EQ(lock.waitText, "Trying to access the teacher list.\nPlease wait.");
  SetLockMessages(lock, LockKind::kFiles, true);
  EXPECT_EQ(lock.failText, "");
  EXPECT_EQ(lock.lockedText,
            "Unable to access the shared files.  Press OK to try reading the files again.  Press "
            "CANCEL to stop trying to read the files.");
  SetLockMessages(lock, static_cast<LockKind>(4), false);
  EXPECT_EQ(lock.lockedText, "");
}

TEST_F(SLockFileTest, PollGoesOnUntilTheFileIsFreeOrTheTimeIsUp) {
  clock.SetAutoAdvance(0);
  clock.SetTicks(1000);
  auto holder = std::make_unique<SLockFile>(Folder(), "index.kiv");
  ASSERT_TRUE(holder->Lock());
  SLockFile lock(Folder(), "index.kiv"), never(Folder(), "options.kiv");
  lock.BeginPoll();
  never.timeoutSeconds = 6;
  never.BeginPoll();
  EXPECT_EQ(never.Poll(), SLockFile::kPollFailed);
  EXPECT_EQ(lock.Poll(), SLockFile::kPollGoOn);  // the first try; the next is 100 to 200 ms away
  holder.reset();
  clock.Advance(99);
  EXPECT_EQ(lock.Poll(), SLockFile::kPollGoOn);
  clock.Advance(102);
  EXPECT_EQ(lock.Poll(), SLockFile::kPollHeld);
  clock.SetTicks(6999);
  EXPECT_EQ(never.Poll(), SLockFile::kPollFailed);
  clock.SetTicks(7000);
  EXPECT_EQ(never.Poll(), SLockFile::kPollGaveUp);
  clock.SetTicks(21000);
  EXPECT_EQ(lock.Poll(), SLockFile::kPollGaveUp);
}

TEST_F(SLockFileTest, PollDoublesItsWaitUpToSixtyFour) {
  clock.SetAutoAdvance(0);
  BusyServices services(99);
  SLockFile lock(Folder(), "index.kiv");
  lock.timeoutSeconds = 32767;
  lock.BeginPoll();
  for (const uint32_t step : {1u, 2u, 4u, 8u, 16u, 32u, 64u, 64u}) {
    lock.ScheduleNextTry();
    clock.Advance(step * 100);
    EXPECT_EQ(lock.Poll(), SLockFile::kPollGoOn);
    EXPECT_EQ(services.opened, 0) << step;
    clock.Advance(step * 100 + 1);
  }
  lock.Poll();
  EXPECT_EQ(services.opened, 1);
}

// The holder's end frees the lock, whatever it did.
TEST_F(SLockFileTest, ExcludesAnotherProcessAndIsFreeWhenThatEnds) {
  SLockFile lock(Folder(), "index.kiv");
  {
    const kivtest::HeldElsewhere holder(folder.Path("index.lok"), false);
    EXPECT_FALSE(lock.Lock());
  }
  EXPECT_TRUE(lock.Lock());
}

}  // namespace
