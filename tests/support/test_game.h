// The application as a game sees it: what it asks for, and what became of it.
#pragma once

#include <memory>
#include <new>
#include <string>
#include <vector>

#include "game/game_dob.h"
#include "records/tutor_options_dob.h"

namespace kivtest {

inline std::unique_ptr<kivstore::SGameDob> MakeTestGame() {
  return std::make_unique<kivstore::SGameDob>();
}

class TestGameHost : public kivstore::IGameHost {
 public:
  explicit TestGameHost(kivstore::SSite& site) : site(site) {}
  ~TestGameHost() { SetPendingGame(nullptr); }

  kivstore::SSite& GetSite() override { return site; }
  const kivstore::CurrentUser& GetCurrentUser() const override { return user; }
  const kivstore::SKivTeacherOptionsDob* GetOptions() override { return options.get(); }
  kivstore::SString GetProperty(const char*) const override { return site.GetDataRoot(); }
  kivstore::SKivTeacherOptionsGameDob* CreateGameOptions() override {
    return new (std::nothrow) kivstore::STeacherOptionsGameDob;
  }
  kivstore::SKivGameDob* CreateGame() override {
    return outOfMemory ? nullptr : new (std::nothrow) kivstore::SGameDob(this);
  }
  kivstore::SKivGameDob* GetGame() override { return game.get(); }
  kivstore::SKivGameDob* GetPendingGame() const override { return pending; }
  void SetPendingGame(kivstore::SKivGameDob* newGame) override {
    if (pending != game.get() && pending != newGame) {
      delete pending;
    }
    pending = newGame;
  }
  void OptionsChanged() override { events.push_back("options"); }
  void SaveLastUser(const kivstore::SString& fileName,
                    const kivstore::SString& extension) override {
    events.push_back(std::string(fileName.View()) + " as " + extension.GetText());
  }

  kivstore::CurrentUser user;
  std::unique_ptr<kivstore::STeacherOptionsDob> options =
      std::make_unique<kivstore::STeacherOptionsDob>();
  std::unique_ptr<kivstore::SKivGameDob> game;
  kivstore::SKivGameDob* pending = nullptr;  // owned unless it is `game`
  bool outOfMemory = false;
  std::vector<std::string> events;

 private:
  kivstore::SSite& site;
};

}  // namespace kivtest
