#include "store/lock/lock_file.h"

#include "tests/support/held_elsewhere.h"
#include "tests/support/site_fixture.h"

using namespace kivstore;
using namespace kivtest;

namespace {

// Another workstation holds every file for the first `busyTries` openings, and each one is counted.
class BusyServices : public SForwardingFileServices {
 public:
  explicit BusyServices(int busyTries, SystemError refusal = SystemError::kSharingViolation)
      : SForwardingFileServices(*Platform().files), busyTries(busyTries), refusal(refusal) {}
  FileHandle Open(const char* path, FileAccess access, SystemError& error) override {
    error = refusal;
    return ++opened > busyTries ? inner.Open(path, access, error) : nullptr;
  }
  int opened = 0;

 private:
  int busyTries;
  SystemError refusal;
  SPlatformOverride<IFileServices> installed{Platform().files, this};
};

// A shared site, a folder with a lock file, a clock on which a spinning wait passes.
class SLockFileTest : public SiteFixture {
 protected:
  SLockFileTest() {
    site.SetSiteMode(kSiteShared);
    clock.SetAutoAdvance(1);
    temp.WriteFile("index.lok", "");
  }

  const SFileSpec folder = SpecOn(temp.Path());
};

TEST_F(SLockFileTest, TakesAFreeFileAtOnceAndLeavesItThere) {
  for (int i = 0; i < 2; ++i) {  // the end of the scope lets go
    SLockFile lock(site, folder, "index.kiv");
    EXPECT_TRUE(lock.Lock() && lock.IsFileOpen());
    EXPECT_TRUE(lock.Unlock());
    EXPECT_FALSE(lock.Unlock());
    EXPECT_TRUE(lock.Lock());
    const SString text = lock.lockedText;
    lock.Retarget(folder, "options.kiv");  // too late: it is held
    EXPECT_EQ(lock.lockedText, text);
  }
  EXPECT_EQ(clock.TicksCalls(), 0);
  EXPECT_EQ(temp.List(), Lines{"index.lok"});
  EXPECT_EQ(Why(), "");
}

TEST_F(SLockFileTest, TriesFiveTimesWithGrowingWaits) {
  const struct {
    int busyTries, opened;
    uint32_t least, most;
  } cases[] = {{1, 2, 100, 200},   {2, 3, 300, 600},   {3, 4, 700, 1400},
               {4, 5, 1500, 3000}, {5, 5, 3100, 6200}, {99, 5, 3100, 6200}};
  for (const auto& c : cases) {
    BusyServices services(c.busyTries);
    SLockFile lock(site, folder, "index.kiv");
    const uint32_t start = clock.CurrentTicks();
    EXPECT_EQ(lock.Lock(), c.busyTries < 5);
    EXPECT_EQ(services.opened, c.opened);
    EXPECT_GE(clock.CurrentTicks() - start, c.least);
    EXPECT_LE(clock.CurrentTicks() - start, c.most + 20);  // each look at the clock takes a tick
  }
}

// The holder's end frees the lock, whatever it did.
TEST_F(SLockFileTest, ExcludesEveryOtherEvenItselfAndIsFreeWhenAProcessEnds) {
  SLockFile held(site, folder, "index.kiv"), other(site, Spec("index.kiv"), SString());
  ASSERT_TRUE(held.Lock());
  for (SLockFile* lock : {&other, &held}) {
    EXPECT_EQ(WhyNot(lock->Lock()), "locked classes index.lok");
  }
  EXPECT_TRUE(held.Unlock());
  {
    const HeldElsewhere holder(temp.Path("index.lok"), false);
    EXPECT_EQ(WhyNot(other.Lock()), "locked classes index.lok");
  }
  EXPECT_TRUE(other.Lock());
}

TEST_F(SLockFileTest, WithoutItsFileIsRefusedAtOnceUnlessFilesAreMade) {
  BusyServices services(0);
  SLockFile lock(site, folder, "options.kiv"), aimless(site, Spec("none"), "index.kiv"),
      misled(site, Spec("index.lok"), "index.kiv"), gone(site, folder, "index.kiv");
  temp.Remove("index.lok");
  for (SLockFile* refused : {&lock, &aimless, &misled, &gone}) {
    refused->list = ListKind::kStudents;
    EXPECT_EQ(WhyNot(refused->Lock()), refused == &lock   ? "missing students options.lok"
                                       : refused == &gone ? "missing students index.lok"
                                                          : "missing students ");
  }
  EXPECT_EQ(services.opened, 2);  // the opening is the look
  EXPECT_EQ(clock.TicksCalls(), 0);
  EXPECT_EQ(temp.List(), Lines());
  const CreatingScope creating;
  EXPECT_TRUE(lock.Lock() && lock.Unlock());
  EXPECT_EQ(temp.ReadFile("options.lok"), "");
  EXPECT_FALSE(aimless.Lock());
}

TEST_F(SLockFileTest, NotesWhoRefusedIt) {
  for (const auto& [refusal, why] : {std::pair(SystemError::kSharingViolation, "locked"),
                                     {SystemError::kAccessDenied, "no permission"},
                                     {SystemError::kPathNotFound, "missing"},
                                     {SystemError::kOther, "other"}}) {
    const BusyServices services(99, refusal);
    SLockFile lock(site);
    EXPECT_FALSE(LockIndex(lock, folder, ListKind::kTeachers, true));
    EXPECT_EQ(site.GetFailure().system, refusal);
    EXPECT_EQ(Why(), std::string(why) + " teachers index.lok");
  }
}

TEST_F(SLockFileTest, ReplacesTheLastThreeCharactersOfTheName) {
  for (const auto& [name, file] : {std::pair("index.kiv", "index.lok"),
                                   {"abc", "abc"},
                                   {"abcd", "alok"},
                                   {"a.b.html", "a.b.hlok"},
                                   {"a", "a"}}) {
    SLockFile lock(site, folder, name);
    temp.WriteFile(file, "");  // it goes by the disk as it is when it tries
    EXPECT_TRUE(lock.Lock());
    SFile probe;
    EXPECT_FALSE(probe.Open(SFile::kRead, Spec(file))) << file;
  }
}

TEST_F(SLockFileTest, IsInertOutsideSharedSites) {
  site.SetSiteMode(kSiteLocal);
  BusyServices services(99);
  SLockFile lock(site, folder, "none.kiv");
  lock.Retarget(folder, "index.kiv");
  EXPECT_TRUE(lock.Lock());
  EXPECT_FALSE(lock.IsFileOpen() || lock.Unlock());
  EXPECT_EQ(services.opened, 0);
  EXPECT_EQ(lock.lockedText, "");
}

TEST_F(SLockFileTest, CarriesTheTextsOfItsTargetAndItsList) {
  SLockFile lock(site, folder, "index.kiv");
  EXPECT_EQ(lock.waitText, "Trying to access shared information.\nPlease wait.");
  EXPECT_EQ(lock.failText, "Unable to complete the operation.");
  lock.Retarget(folder, "other.kiv");
  EXPECT_EQ(lock.lockedText,
            "File other.kiv is currently locked by someone else. Press OK to try locking the file "
            "again. Press CANCEL to quit trying to lock the file.");
  EXPECT_TRUE(lock.accessText.StartsWith("A file located in " + folder.GetPath() + " could", true));
  const struct {
    ListKind list;
    std::string fail, wait, reading, read;
  } cases[] = {
      {ListKind::kClasses, "class lists", "the class list", "the class list", "class i"},
      {ListKind::kStudents, "student list", "the student list", "the student list", "student i"},
      {ListKind::kFiles, "shared files", "file information", "the files", "files."},
      {ListKind::kTeachers, "teacher lists", "the teacher list", "the teacher list", "teacher i"}};
  for (const auto& c : cases) {
    const std::string fail = "Unable to access the " + c.fail + ".";
    for (const bool quiet : {false, true}) {
      SetLockMessages(lock, c.list, quiet);
      EXPECT_EQ(lock.list, c.list);
      EXPECT_EQ(Bytes(lock.failText), quiet ? "" : fail);
      EXPECT_EQ(Bytes(lock.waitText), "Trying to access " + c.wait + ".\nPlease wait.");
      EXPECT_EQ(Bytes(lock.lockedText), fail + "  Press OK to try reading " + c.reading +
                                            " again.  Press CANCEL to stop trying to read the " +
                                            c.read + (c.read.back() == 'i' ? "nformation." : ""));
    }
  }
  SetLockMessages(lock, static_cast<ListKind>(4), false);
  EXPECT_EQ(lock.lockedText, "");
}

TEST_F(SLockFileTest, PollGoesOnUntilTheFileIsFreeOrTheTimeIsUp) {
  clock.SetAutoAdvance(0);
  clock.SetTicks(1000);
  SLockFile holder(site, folder, "index.kiv"), lock(site, folder, "index.kiv"),
      never(site, folder, "options.kiv");
  ASSERT_TRUE(holder.Lock());
  lock.BeginPoll();
  never.timeoutSeconds = 6;
  never.BeginPoll();
  const struct {
    uint32_t ticks;
    SLockFile& poll;
    int result;
  } steps[] = {{1000, never, SLockFile::kPollFailed}, {1000, lock, SLockFile::kPollGoOn},
               {1099, lock, SLockFile::kPollGoOn},  // the next try is 100 to 200 ms away
               {1201, lock, SLockFile::kPollHeld},    {6999, never, SLockFile::kPollFailed},
               {7000, never, SLockFile::kPollGaveUp}, {20999, lock, SLockFile::kPollGoOn},
               {21000, lock, SLockFile::kPollGaveUp}};
  for (const auto& step : steps) {
    clock.SetTicks(step.ticks);
    EXPECT_EQ(step.poll.Poll(), step.result) << step.ticks;
    if (&step == &steps[1]) {
      holder.Unlock();
    }
  }
  never.timeoutSeconds = 0;
  never.BeginPoll();
  EXPECT_EQ(never.Poll(), SLockFile::kPollGaveUp);
}

TEST_F(SLockFileTest, PollDoublesItsWaitUpToSixtyFour) {
  clock.SetAutoAdvance(0);
  BusyServices services(99);
  SLockFile lock(site, folder, "index.kiv");
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

}  // namespace
