// The flows of a game: where it is saved, which game comes next. What is written to and read from a
// game file stands in kiv_game_dob_file.cpp.
#include <memory>

#include "game/kiv_game_dob.h"
#include "platform/text_numbers.h"
#include "store/change/default_entries.h"
#include "store/place/failure_report.h"
#include "store/place/placing.h"

namespace kivstore {
namespace {

using OwnedGame = std::unique_ptr<SKivGameDob>;

// The words for the game's own codes; empty for any other.
SString TextOf(int16_t code) {
  SString text;
  switch (code) {
    case SKivGameDob::kNotAGame:
      text.Substitute(SString::FromResource(kTextNotAGame), SString::FromResource(kTextProduct));
      break;
    case SKivGameDob::kNoMemory:
      text.LoadResource(kTextNoMemoryToOpen);
      break;
    case SKivGameDob::kForeignGame:
      text.LoadResource(kTextForeignGame);
      break;
    case SKivGameDob::kIsShared:
      text.LoadResource(kTextFileIsShared);
      break;
    default:
      break;
  }
  return text;
}

}  // namespace

OwnedGame SKivGameDob::CreateGame() const {
  return OwnedGame(host != nullptr ? host->CreateGame() : nullptr);
}

void SKivGameDob::DefaultGameFolder(SFileSpec& spec) const {
  spec.Reset();
  if (host == nullptr) {
    return;
  }
  const SKivTeacherOptionsDob* const current = host->GetOptions();
  if (current != nullptr && !current->UseSystemIODialogs.value) {
    const bool removable = !current->CentralFileLocation.value && !publicFile;
    const CurrentUser& user = host->GetCurrentUser();
    PrepareClassList(host->GetSite(), removable);
    EntryFolder(host->GetSite(), spec, &user.classEntry, &user.studentEntry, removable);
    return;
  }
  const SString path = host->GetProperty("install");
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
  const bool survives = host->GetPendingGame() != this || host->GetGame() == this;
  host->SetPendingGame(game);
  return survives;
}

void SKivGameDob::RequestGameChange() {
  if (host->GetPendingGame() == nullptr) {
    host->SetPendingGame(this);
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
  if (host != nullptr && host->GetGame() != nullptr) {
    firstName = host->GetGame()->firstName;
    lastName = host->GetGame()->lastName;
  }
  const SKivTeacherOptionsDob* const current = host != nullptr ? host->GetOptions() : nullptr;
  if (current != nullptr && current->gameOptions != nullptr && options != nullptr) {
    options->Copy(*current->gameOptions);
  }
  SetDirty(false);
}

void SKivGameDob::OnActivated() {
  if (host != nullptr) {
    host->OptionsChanged();
  }
}

void SKivGameDob::ReportError(int16_t code) {
  if (host == nullptr || ReportFileFailure(host->GetSite(), code)) {
    return;
  }
  const SString text = TextOf(code);
  if (!text.IsEmpty()) {
    host->GetSite().TellFailure(text);
  }
}

}  // namespace kivstore
