// The change-over from one game to the next, and the memory of the last user.
#include "foundation/application.h"
#include "game/kiv_game_dob.h"
#include "records/teacher_options_dob.h"
#include "store/change/maintenance.h"
#include "store/place/layout.h"

namespace kivstore {

void SKivApp::SetPendingGame(SKivGameDob* newGame) {
  if (pendingGame != game && pendingGame != newGame) {
    delete pendingGame;
  }
  pendingGame = newGame;
}

void SKivApp::CommitPendingGame() {
  if (pendingGame == nullptr) {
    return;
  }
  if (pendingGame != game) {
    BeforeGameSwitch();
    delete game;
    game = pendingGame;
  }
  pendingGame = nullptr;
  game->OnActivated();
  if (options != nullptr && options->AutoGameSaving.value && HasCurrentStudent()) {
    PlaceAutoGame();
  }
  AfterGameSwitch();
}

void SKivApp::PlaceAutoGame() {
  EntryFolder(game->fileSpec, &currentUser.classEntry, &currentUser.studentEntry, false, true);
  game->fileSpec.Down(AutoGameName());
}

void SKivApp::SaveLastUser(const SString& fileName, const SString& extension) {
  if (currentUser.valid) {
    RecordLastFile(&currentUser.classEntry, &currentUser.studentEntry, fileName, extension);
  }
}

}  // namespace kivstore
