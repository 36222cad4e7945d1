// The flows of a game: where it is saved, which game comes next. What is written to and read from a
// game file stands in game_file_flows.cpp.
#include <memory>

#include "foundation/application.h"
#include "foundation/files/file_type.h"
#include "game/game_dob.h"
#include "platform/text_numbers.h"
#include "records/teacher_options_dob.h"
#include "store/place/failure_report.h"
#include "store/place/layout.h"

namespace kivstore {
namespace {

using OwnedGame = std::unique_ptr<SKivGameDob>;

OwnedGame CreateGame() {
  return OwnedGame(gApp != nullptr ? gApp->CreateGame() : nullptr);
}

const SFileType& GameType() {
  return FindFileType(kFileTypeGame);
}

const SKivTeacherOptionsDob* CurrentOptions() {
  return gApp != nullptr ? gApp->options : nullptr;
}

}  // namespace

void SKivGameDob::DefaultGameFolder(SFileSpec& spec) const {
  spec.Reset();
  const SKivTeacherOptionsDob* const current = CurrentOptions();
  if (current != nullptr && !current->UseSystemIODialogs.value) {
    const bool removable = !current->CentralFileLocation.value && !publicFile;
    const CurrentUser& user = gApp->currentUser;
    EntryFolder(spec, &user.classEntry, &user.studentEntry, removable, true);
    return;
  }
  const SString path = gApp != nullptr ? gApp->GetProperty("install") : SString();
  if (!path.IsEmpty()) {
    spec.Set(path);
  }
}

bool SKivGameDob::Save(bool forceDialog, void* parent) {
  SFileSpec spec = fileSpec;
  if (!spec.IsValid()) {
    DefaultGameFolder(spec);
  }
  if (!forceDialog && !spec.Exists()) {
    spec.CreateFile(GameType(), 0, 0, 0);
  }
  SString longName = longFileName;
  bool shared = false;
  if ((forceDialog || !spec.IsExistingFile()) && !PickPlace(spec, longName, shared, parent)) {
    return false;
  }
  return shared ? SaveCopy(spec, longName, parent) : SaveFile(spec, longName, parent);
}

// Asks until the place is not a shared game's.
bool SKivGameDob::PickPlace(SFileSpec& spec, SString& longName, bool& shared, void* parent) {
  while (PickSaveFile(spec, longName, shared, GameType(), parent)) {
    if (!IsSharedGameFile(spec)) {
      return true;
    }
    ReportError(kIsShared);
  }
  return false;
}

bool SKivGameDob::SaveCopy(SFileSpec& spec, const SString& longName, void* parent) const {
  const OwnedGame copy = MakeSharedCopy();
  return copy != nullptr && copy->SaveFile(spec, longName, parent);
}

bool SKivGameDob::SaveSharedCopy(void* parent) {
  const OwnedGame copy = MakeSharedCopy();
  if (copy == nullptr) {
    return false;
  }
  copy->DefaultGameFolder(copy->fileSpec);
  SString longName = longFileName;
  bool shared = true;
  return copy->PickSaveFile(copy->fileSpec, longName, shared, GameType(), parent) &&
         copy->SaveFile(copy->fileSpec, longName, parent);
}

OwnedGame SKivGameDob::MakeSharedCopy() const {
  OwnedGame copy = CreateGame();
  if (copy != nullptr) {
    copy->Init(nullptr);
    copy->SetPublicFile(true);
    copy->CopyGameFrom(*this);
    // What was copied may have brought its own.
    copy->SetPublicFile(true);
  }
  return copy;
}

bool SKivGameDob::Open(void* parent) {
  if (!ConfirmClose(parent)) {
    return false;
  }
  SFileSpec spec;
  DefaultGameFolder(spec);
  SString longName = longFileName;
  return PickOpenFile(spec, longName, GameType(), parent) && LoadFile(spec, longName, parent);
}

bool SKivGameDob::NewDefaultGame(void* parent) {
  return StartGame(nullptr, true, parent);
}

bool SKivGameDob::NewGameWithOptions(const SDob& gameOptions, void* parent) {
  return StartGame(&gameOptions, false, parent);
}

bool SKivGameDob::NewGameKeepingOptions(void* parent) {
  return StartGame(options, false, parent);
}

// Without options the game keeps those of Init.
bool SKivGameDob::StartGame(const SDob* gameOptions, bool replacing, void* parent) {
  if (!ConfirmClose(parent)) {
    return false;
  }
  OwnedGame game = CreateGame();
  if (game == nullptr) {
    return false;
  }
  game->Init(parent);
  if (gameOptions != nullptr && game->options != nullptr) {
    game->options->Copy(*gameOptions);
  }
  game->SetDirty(false);
  if (!HandOver(game.release())) {
    return true;
  }
  if (replacing) {
    OnReplaced();
  }
  RequestGameChange();
  return true;
}

// The game becomes the pending one. False if this game was that and is gone by now.
bool SKivGameDob::HandOver(SKivGameDob* game) const {
  const bool survives = gApp->pendingGame != this || gApp->game == this;
  gApp->SetPendingGame(game);
  return survives;
}

void SKivGameDob::RequestGameChange() {
  if (gApp != nullptr && gApp->pendingGame == nullptr) {
    gApp->SetPendingGame(this);
  }
}

bool SKivGameDob::ConfirmClose(void* parent) {
  if (!IsDirty()) {
    return true;
  }
  switch (AskSaveChanges(parent)) {
    case kAskFailed:
    case kCancelClose:
      return false;
    case kSaveFirst:
      return Save(false, parent);
    default:
      return true;
  }
}

bool SKivGameDob::PickSaveFile(SFileSpec&, SString&, bool&, const SFileType&, void*) {
  return false;
}

bool SKivGameDob::PickOpenFile(SFileSpec&, SString&, const SFileType&, void*) {
  return true;
}

int SKivGameDob::AskSaveChanges(void*) {
  return 0;
}

bool SKivGameDob::ConfirmForeignGame(void*) {
  return false;
}

void SKivGameDob::Init(void*) {
  Clear();
  fileSpec.Reset();
  longFileName.Empty();
  if (gApp != nullptr && gApp->game != nullptr) {
    firstName = gApp->game->firstName;
    lastName = gApp->game->lastName;
  }
  const SKivTeacherOptionsDob* const current = CurrentOptions();
  if (current != nullptr && current->gameOptions != nullptr && options != nullptr) {
    options->Copy(*current->gameOptions);
  }
  SetDirty(false);
}

void SKivGameDob::OnActivated() {
  if (gApp != nullptr) {
    gApp->OptionsChanged();
  }
}

void SKivGameDob::ReportError(int16_t code) {
  if (ReportFileFailure(code)) {
    return;
  }
  SString text;
  switch (code) {
    case kNotAGame:
      text.Substitute(SString::FromResource(kTextNotAGame), SString::FromResource(kTextProduct));
      break;
    case kNoMemory:
      text.LoadResource(kTextNoMemoryToOpen);
      break;
    case kForeignGame:
      text.LoadResource(kTextForeignGame);
      break;
    case kIsShared:
      text.LoadResource(kTextFileIsShared);
      break;
    default:
      return;
  }
  DropMessage(text);
}

}  // namespace kivstore
