// Laying the options of the levels over each other, with locks, retries and bad files.
#include <memory>

#include "app/general_call.h"
#include "platform/platform.h"
#include "records/tutor_options_dob.h"
#include "tests/app/call_fixture.h"
#include "tests/support/test_clock.h"

namespace kivtest {
namespace {

using namespace kivstore;

// Opening options.kiv is refused, as while another workstation writes it, until some tries are
// over.
class BusyOptions : public SForwardingFileServices {
 public:
  explicit BusyOptions(int refusals)
      : SForwardingFileServices(*Platform().files), refusals(refusals) {}

  FileHandle Open(const char* path, FileAccess access, SystemError& error) override {
    if (!std::string(path).ends_with("options.kiv") || ++tries > refusals) {
      return inner.Open(path, access, error);
    }
    error = SystemError::kSharingViolation;
    return nullptr;
  }

  int tries = 0;

 private:
  int refusals;
  SPlatformOverride<IFileServices> installed{Platform().files, this};
};

class OptionsLoading : public AnnsStore {
 protected:
  OptionsLoading() : AnnsStore(Kind::kLocal) { Begin(Kind::kLocal); }

  // A call on a new store in which each level has options of its own.
  void Begin(Kind kind) {
    call.reset();
    Lay(kind);
    int size = 3;
    for (const std::string& place : {classes, room, ann}) {
      store.WriteOptions(place, OptionsBytes().Set("TextSize", size++));
    }
    call = std::make_unique<SGeneralCall>(host.block);
  }
  // The size of the text afterwards; 0 if the load failed.
  int Load(const SLoginNameObj* ofClass, const SLoginNameObj* ofStudent) {
    SOptionsRequest request;
    request.classEntry = ofClass;
    request.studentEntry = ofStudent;
    return App().LoadTeacherOptions(request) ? TextSize() : 0;
  }
  int TextSize() {
    return static_cast<const STeacherOptionsDob*>(App().options.get())->TextSize.value;
  }
  SZEPApp& App() { return *call->GetApp(); }

  std::unique_ptr<SGeneralCall> call;
};

TEST_F(OptionsLoading, EachLevelThatIsAskedForAndHasAFileIsLaidOver) {
  EXPECT_EQ(Load(nullptr, nullptr), 3);
  EXPECT_EQ(Load(&classEntry, nullptr), 4);
  EXPECT_EQ(Load(&classEntry, &annEntry), 5);
  store.RemoveFile(ann + "/options.kiv");
  EXPECT_EQ(Load(&classEntry, &annEntry), 4);
  store.RemoveFile(room + "/options.kiv");
  folder.MakeFolder(room + "/options.kiv");
  EXPECT_EQ(Load(&classEntry, &annEntry), 3);
  EXPECT_TRUE(folder.Exists(room + "/options.kiv"));
  store.RemoveFile(classes + "/options.kiv");
  EXPECT_EQ(Load(&classEntry, &annEntry), 2);
}

TEST_F(OptionsLoading, TheCurrentUserStandsInOnlyWhenItIsAskedForAndValid) {
  App().currentUser.classEntry = classEntry;
  App().currentUser.studentEntry = annEntry;
  for (const bool valid : {false, true}) {
    App().currentUser.valid = valid;
    EXPECT_TRUE(App().ReloadCurrentOptions());
    EXPECT_EQ(TextSize(), valid ? 5 : 3);
    EXPECT_EQ(Load(nullptr, nullptr), 3);
  }
  call->GetSite().SetSiteMode(0);  // one user has no class level
  EXPECT_EQ(Load(&classEntry, nullptr), 3);
  App().options.reset();
  EXPECT_EQ(Load(nullptr, nullptr), 0);
}

TEST_F(OptionsLoading, LocksStayHeldAndOneThatCannotBeHadEndsTheLoad) {
  for (const char* const missing : {"", "class", "student"}) {
    Begin(Kind::kTeachers);
    const bool free = *missing == '\0', hasClass = missing != std::string("class");
    if (!free) {
      store.RemoveFile((hasClass ? ann : room) + "/options.lok");
    }
    STeacherOptionsDob record;
    SSite& site = call->GetSite();
    SLockFile ofRoot(site), ofClass(site), ofStudent(site);
    EXPECT_EQ(free, App().LoadTeacherOptions({&classEntry, &annEntry, false, &record, false,
                                              &ofRoot, &ofClass, &ofStudent}));
    EXPECT_EQ(site.GetFailure().kind, free ? FailureKind::kNone : FailureKind::kMissing);
    EXPECT_EQ(record.TextSize.value, free ? 5 : hasClass ? 4 : 3);
    EXPECT_EQ(std::tuple(ofRoot.IsFileOpen(), ofClass.IsFileOpen(), ofStudent.IsFileOpen()),
              std::tuple(true, hasClass, free));
    EXPECT_EQ(ofClass.failText, "");
    EXPECT_EQ(ofClass.lockedText,
              "The options are currently locked by someone else.  Press OK to try reading the "
              "options again.  Press CANCEL to stop trying to read the options.");
    EXPECT_EQ(ofRoot.waitText, "Trying to access the options of all classes.\nPlease wait.");
    EXPECT_EQ(ofClass.waitText, "Trying to access the options of the class Room 12.\nPlease wait.");
    const SString wait = "Trying to access the options of the student Ann Lee.\nPlease wait.";
    EXPECT_EQ(ofStudent.waitText, hasClass ? wait : SLockFile(site).waitText);
  }
}

TEST_F(OptionsLoading, ABusyFileIsTriedSevenTimesWithGrowingWaitsOnlyWhereItIsShared) {
  // One try is a look at the version; waits are from 100 ms on, drawn up to twice as long.
  using Row = std::tuple<Kind, int, int, int, uint32_t>;
  for (const auto& [kind, refusals, tries, textSize, shortest] :
       {Row{Kind::kLocal, 1000, 1 + 1, 2, 0}, Row{Kind::kTeachers, 1000, 7 + 1, 0, 6300},
        Row{Kind::kTeachers, 3, 3 + 1, 3, 300}}) {
    Begin(kind);
    TestClock clock(1);
    BusyOptions busy(refusals);
    EXPECT_EQ(Load(nullptr, nullptr), textSize);
    EXPECT_EQ(busy.tries, tries);
    EXPECT_GE(clock.CurrentTicks(), shortest);
    EXPECT_LE(clock.CurrentTicks(), shortest > 0 ? 2 * shortest + 100 : 0);
    EXPECT_TRUE(folder.Exists(classes + "/options.kiv"));
  }
}

TEST_F(OptionsLoading, AFileThatIsBadForGoodIsDeletedInEverySiteMode) {
  std::string newer = OptionsBytes().Bytes();
  newer[6] = 1;
  std::string older = newer;
  older[5] = 0;
  for (const Kind kind : {Kind::kLocal, Kind::kTeachers}) {
    Begin(kind);
    const TestClock clock(1);
    for (const std::string& bytes :
         {newer, older, "KIV\x01" + newer.substr(4), std::string("BIN\x01"), std::string()}) {
      store.WriteFile(room + "/options.kiv", bytes);
      EXPECT_EQ(Load(&classEntry, nullptr), 3);
      EXPECT_FALSE(folder.Exists(room + "/options.kiv")) << bytes.substr(0, 8);
      EXPECT_EQ(clock.CurrentTicks(), 0u);
    }
  }
}

}  // namespace
}  // namespace kivtest
