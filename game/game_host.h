// What a game asks of the application that it runs in.
#pragma once

#include "foundation/text/string.h"
#include "game/current_user.h"
#include "records/game_options_dob.h"
#include "records/teacher_options_dob.h"
#include "store/place/site.h"

namespace kivstore {

class SKivGameDob;

class IGameHost {
 public:
  virtual SSite& GetSite() = 0;
  virtual const CurrentUser& GetCurrentUser() const = 0;
  // The teacher options in force; null without any.
  virtual const SKivTeacherOptionsDob* GetOptions() = 0;
  virtual SString GetProperty(const char* key) const = 0;

  // A new record of the product's kind, the caller's; null if out of memory.
  virtual SKivTeacherOptionsGameDob* CreateGameOptions() = 0;
  virtual SKivGameDob* CreateGame() = 0;

  virtual SKivGameDob* GetGame() = 0;
  virtual SKivGameDob* GetPendingGame() const = 0;
  // The game belongs to the application from here on.
  virtual void SetPendingGame(SKivGameDob* newGame) = 0;

  virtual void OptionsChanged() = 0;
  virtual void SaveLastUser(const SString& fileName, const SString& extension) = 0;

 protected:
  ~IGameHost() = default;
};

}  // namespace kivstore
