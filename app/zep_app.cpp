#include "app/zep_app.h"

#include <new>

#include "game/game_dob.h"
#include "records/tutor_options_dob.h"

namespace kivstore {

SKivTeacherOptionsDob* SZEPApp::CreateOptions() {
  return new (std::nothrow) STeacherOptionsDob;
}

SKivTeacherOptionsGameDob* SZEPApp::CreateGameOptions() {
  return new (std::nothrow) STeacherOptionsGameDob;
}

SKivGameDob* SZEPApp::CreateGame() {
  return new (std::nothrow) SGameDob(this);
}

}  // namespace kivstore
