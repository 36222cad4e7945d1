// What the tests of a game's flows share: an application whose games answer the questions of a user
// interface as the test says, and note what they were told.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <string>
#include <vector>

#include "foundation/application.h"
#include "foundation/platform/platform.h"
#include "records/game_dob.h"
#include "records/tutor_options_dob.h"
#include "store/failure_report.h"
#include "tests/support/record_bytes.h"
#include "tests/support/temp_folder.h"

namespace kivtest {

// The answers, and what happened, of all games of a test.
struct Dialogue {
  std::function<bool(kivstore::SFileSpec&, kivstore::SString&, bool&)> pickSave =
      [](auto&, auto&, auto&) { return false; };
  std::function<bool(kivstore::SFileSpec&, kivstore::SString&)> pickOpen = [](auto&, auto&) {
    return true;
  };
  int saveChanges = 0;
  bool openForeign = false;
  std::vector<int> errors;
  std::vector<std::string> events;
};

class TalkingGame : public kivstore::SGameDob {
 public:
  explicit TalkingGame(Dialogue& dialogue) : dialogue(dialogue) {}

  bool PickSaveFile(kivstore::SFileSpec& spec, kivstore::SString& longName, bool& shared,
                    const kivstore::SFileType& type, void*) override {
    dialogue.events.push_back(std::string("pick ") + type.GetExtension().GetText());
    return dialogue.pickSave(spec, longName, shared);
  }
  bool PickOpenFile(kivstore::SFileSpec& spec, kivstore::SString& longName,
                    const kivstore::SFileType&, void*) override {
    return dialogue.pickOpen(spec, longName);
  }
  int AskSaveChanges(void*) override { return dialogue.saveChanges; }
  bool ConfirmForeignGame(void*) override {
    dialogue.events.push_back("foreign?");
    return dialogue.openForeign;
  }
  void ReportError(int16_t code) override {
    dialogue.errors.push_back(code);
    SGameDob::ReportError(code);
  }
  void OnLoaded() override { dialogue.events.push_back("loaded"); }
  void OnReplaced() override { dialogue.events.push_back("replaced"); }

 private:
  Dialogue& dialogue;
};

class TalkingApplication : public kivstore::SZEPApp {
 public:
  explicit TalkingApplication(Dialogue& dialogue) : dialogue(dialogue) {}
  kivstore::SKivGameDob* CreateGame() override {
    return outOfMemory ? nullptr : new (std::nothrow) TalkingGame(dialogue);
  }
  void OptionsChanged() override { dialogue.events.push_back("options"); }

  bool outOfMemory = false;

 private:
  Dialogue& dialogue;
};

// A local site whose games go to the test's folder, and Ann Lee's game as the current one. Files
// are made only after LetFilesBeMade.
class GameFlow : public testing::Test {
 protected:
  GameFlow() {
    using namespace kivstore;
    RegisterFileType(kFileTypeGame, "Game File|Game Files|zep|Game|1");
    gFileVersion = kDataVersion;
    gSiteMode = kSiteLocal;
    gDropMessage = [](const SString& text) { messages.push_back(text.GetText()); };
    messages.clear();
    gApp = &application;
    application.SetProperty("Data", folder.Path().c_str());
    application.options = application.CreateOptions();
    application.options->UseSystemIODialogs.value = true;
    application.game = application.CreateGame();
    Game().firstName = "Ann";
    Game().lastName = "Lee";
    Game().SetDirty(false);
  }
  ~GameFlow() override {
    kivstore::gApp = nullptr;
    kivstore::gSiteMode = 0;
    kivstore::gDropMessage = [](const kivstore::SString&) {};
  }

  TalkingGame& Game() { return *static_cast<TalkingGame*>(application.game); }
  TalkingGame* Pending() { return static_cast<TalkingGame*>(application.pendingGame); }
  kivstore::SFileSpec Spec(const std::string& name) {
    return kivstore::SFileSpec(folder.Path(name).c_str());
  }
  void PickForSaving(const std::string& name, const char* longName, bool shared = false) {
    dialogue.pickSave = [=, this](auto& spec, auto& pickedName, bool& pickedShared) {
      spec = Spec(name);
      pickedName = longName;
      pickedShared = shared;
      return true;
    };
  }
  static void LetFilesBeMade() { kivstore::Platform().files = &kivstore::CreatingFileServices(); }

  TempFolder folder;
  Dialogue dialogue;
  static inline std::vector<std::string> messages;

 private:
  // Puts back what the test changed.
  kivstore::SPlatformOverride<kivstore::IFileServices> services{kivstore::Platform().files,
                                                                kivstore::Platform().files};

 protected:
  TalkingApplication application{dialogue};
};

}  // namespace kivtest
