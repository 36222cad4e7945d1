#include "app/kiv_app.h"

#include <new>
#include <string_view>
#include <utility>

#include "game/kiv_game_dob.h"
#include "platform/base/bytes.h"
#include "records/teacher_options_dob.h"
#include "store/change/default_entries.h"
#include "store/change/last_file.h"
#include "store/list/entry_lock.h"
#include "store/place/display_name.h"
#include "store/place/placing.h"
#include "store/place/store_names.h"

namespace kivstore {
namespace {

constexpr int16_t kPollSeconds = 6;

// Cuts `folder` and the one character behind it off the end of the path.
bool CutTrailingFolder(SString& path, std::string_view folder) {
  const std::string_view text = path.View();
  const size_t cut = folder.size() + 1;
  if (text.size() <= cut ||
      !EqualBytesNoCase(text.substr(text.size() - cut, folder.size()), folder)) {
    return false;
  }
  path.DeleteRight(static_cast<int>(cut));
  return true;
}

void ReportStudentInUse(SSite& site, const SLoginNameObj& student) {
  SString text;
  text.FormatResource(kTextStudentInUse, DisplayName(student).GetText());
  site.TellFailure(text);
}

}  // namespace

SKivApp::SKivApp(SSite& site) : site(site) {
  site.SetOwner(this);
}

SKivApp::~SKivApp() {
  if (pendingGame != game) {
    delete pendingGame;
  }
  delete game;
  options.reset();
  studentLock.reset();
  site.EndCall();
}

SKivTeacherOptionsDob* SKivApp::CreateOptions() {
  return new (std::nothrow) SKivTeacherOptionsDob;
}

SKivTeacherOptionsGameDob* SKivApp::CreateGameOptions() {
  return new (std::nothrow) SKivTeacherOptionsGameDob;
}

bool SKivApp::OnStudentRenamed(const SString&, const SString&, const SString&, const SString&,
                               const SString&, const SString&) {
  return true;
}

bool SKivApp::OnClassRenamed(const SString&, const SString&, const SString&) {
  return true;
}

bool SKivApp::OnStudentMoved(const SString&, const SString&, const SString&, const SString&,
                             const SString&, const SString&) {
  return true;
}

bool SKivApp::OnTeacherRenamed(const SString&, const SString&) {
  return true;
}

bool SKivApp::OnClassMoved(const SString&, const SString&, const SString&) {
  return true;
}

bool SKivApp::HasCurrentStudent() const {
  return currentUser.valid && !DisplayName(currentUser.studentEntry).IsEmpty();
}

SKivTeacherOptionsDob* SKivApp::OwnOptions() {
  if (std::exchange(owesOptions, false) && options == nullptr) {
    options.reset(CreateOptions());
  }
  return options.get();
}

SKivGameDob* SKivApp::GetGame() {
  if (std::exchange(owesGame, false) && game == nullptr) {
    game = CreateGame();
  }
  return game;
}

void SKivApp::ApplyDataPath() {
  if (!CutTrailingFolder(dataPath, CachedText<kTextClasses>().View())) {
    CutTrailingFolder(dataPath, ClassesName().View());
  }
}

SString SKivApp::AutoGameName() const {
  return "autogame." + FindFileType(kFileTypeGame).GetExtension();
}

bool SKivApp::CheckStudentFree(const SLoginNameObj* studentEntry) {
  if (studentEntry == nullptr) {
    return false;
  }
  if (studentLock == nullptr) {
    studentLock.reset(new (std::nothrow) SLockFile(site));
  } else {
    studentLock->Unlock();
  }
  if (studentLock == nullptr) {
    return false;
  }
  PrepareStudentList(site, currentUser.classEntry);
  SFileSpec spec;
  EntryFolder(site, spec, &currentUser.classEntry, studentEntry);
  studentLock->Retarget(spec, CachedText<kTextIndexFile>());
  studentLock->timeoutSeconds = kPollSeconds;
  const bool taken = studentLock->Lock();
  SetLockMessages(*studentLock, ListKind::kStudents, false);
  if (!taken) {
    ReportStudentInUse(site, *studentEntry);
  }
  return taken && HoldsEntry(site, *studentLock, spec, *studentEntry, ListKind::kStudents);
}

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
  if (OwnOptions() != nullptr && options->AutoGameSaving.value && HasCurrentStudent()) {
    PlaceAutoGame();
  }
  AfterGameSwitch();
}

void SKivApp::PlaceAutoGame() {
  PrepareStudentList(site, currentUser.classEntry);
  EntryFile(site, game->fileSpec, &currentUser.classEntry, &currentUser.studentEntry,
            AutoGameName());
}

void SKivApp::SaveLastUser(const SString& fileName, const SString& extension) {
  if (currentUser.valid) {
    RecordLastFile(site, &currentUser.classEntry, &currentUser.studentEntry, fileName, extension);
  }
}

}  // namespace kivstore
