// Opening a game in place of another, and saving one.
#include <memory>

#include "archive/dob_binary_archive.h"
#include "foundation/application.h"
#include "foundation/files/file_type.h"
#include "game/game_dob.h"
#include "game/game_file.h"
#include "platform/text_numbers.h"
#include "store/list/index_file.h"
#include "store/lock/lock_file.h"
#include "store/place/failure_report.h"
#include "store/place/layout.h"

namespace kivstore {

bool SKivGameDob::LoadFile(const SFileSpec& spec, const SString& longName, void* parent) {
  std::unique_ptr<SKivGameDob> game = ReadGame(spec);
  if (game == nullptr || !TakeOwnership(*game, spec, longName, parent)) {
    return false;
  }
  gApp->SaveLastUser(game->fileSpec.GetFileName(), FindFileType(kFileTypeGame).GetExtension());
  SetDirty(false);
  if (HandOver(game.release())) {
    OnLoaded();
    RequestGameChange();
  }
  return true;
}

// Null, reported, if the file is not a whole game.
std::unique_ptr<SKivGameDob> SKivGameDob::ReadGame(const SFileSpec& spec) {
  SDobBinaryArchive archive(SDobBinaryArchive::kRead, spec);
  if (archive.HasError()) {
    ReportError(kFailOpen);
    return nullptr;
  }
  if (!CheckGameTag(archive) || !CheckGameVersion(archive)) {
    ReportError(kNotAGame);
    return nullptr;
  }
  std::unique_ptr<SKivGameDob> game(gApp != nullptr ? gApp->CreateGame() : nullptr);
  if (game == nullptr) {
    ReportError(kNoMemory);
    return nullptr;
  }
  game->Serialize(archive);
  archive.Finish();
  if (archive.HasError()) {
    ReportError(kFailRead);
    return nullptr;
  }
  return game;
}

// Whose game it is from here on; false if it is another's and the user did not agree.
bool SKivGameDob::TakeOwnership(SKivGameDob& game, const SFileSpec& spec, const SString& longName,
                                void* parent) {
  const SString loadedName = game.GetFullNameUpper();
  const bool foreign = loadedName != GetFullNameUpper();
  if (!game.publicFile && foreign && !loadedName.IsEmpty() && !ConfirmForeignGame(parent)) {
    return false;
  }
  if (game.publicFile || foreign) {
    MakeOurs(game, longName);
    return true;
  }
  game.fileSpec = spec;
  game.longFileName = !longName.IsEmpty()
                          ? longName
                          : FindLongNameOfFile(spec, FindFileType(kFileTypeGame).GetExtension());
  game.SetDirty(false);
  return true;
}

// A private game of this owner that has no file yet.
void SKivGameDob::MakeOurs(SKivGameDob& game, const SString& longName) const {
  game.fileSpec.Reset();
  game.longFileName = longName;
  game.firstName = firstName;
  game.lastName = lastName;
  game.publicFile = false;
  game.SetDirty(true);
}

bool SKivGameDob::SaveFile(SFileSpec& spec, const SString& longName, void*) {
  SLockFile lock;
  if (publicFile && !LockFolder(lock, spec)) {
    return false;
  }
  const bool fresh = !spec.Exists();
  if (!spec.CreateFile(FindFileType(kFileTypeGame), 0, 0, 0)) {
    lock.Unlock();
    ReportError(kFailSave);
    return false;
  }
  const bool saved = WriteGame(spec, longName, lock);
  if (!saved && fresh) {
    spec.Delete(true);
  }
  return saved;
}

// The index of the folder that the game goes to; the lock's own texts tell a failure.
bool SKivGameDob::LockFolder(SLockFile& lock, const SFileSpec& spec) {
  SFileSpec target = spec;
  if (!target.IsExistingFolder()) {
    target.Up();
  }
  lock.Retarget(target, SString::FromResource(kTextIndexFile));
  SetLockMessages(lock, LockKind::kFiles, false);
  return lock.Lock(true);
}

bool SKivGameDob::WriteGame(SFileSpec& spec, const SString& longName, SLockFile& lock) {
  SDobBinaryArchive archive(SDobBinaryArchive::kWrite, spec);
  if (!archive.WriteTag(FindFileType(kFileTypeGame).GetCode())) {
    lock.Unlock();
    ReportError(kFailSave);
    return false;
  }
  if (!WriteGameVersion(archive)) {
    return false;
  }
  Serialize(archive);
  archive.Finish();
  if (archive.HasError()) {
    lock.Unlock();
    ReportError(kFailWrite);
    return false;
  }
  NoteSaved(spec, longName);
  return true;
}

void SKivGameDob::NoteSaved(const SFileSpec& spec, const SString& longName) {
  const SString extension = FindFileType(kFileTypeGame).GetExtension();
  if (!FindEntryByLongName(spec, longName, extension)) {
    AddEntry(spec, longName, spec.GetFileName(), extension);
  }
  fileSpec = spec;
  if (!publicFile) {
    if (gApp != nullptr) {
      gApp->SaveLastUser(spec.GetFileName(), extension);
    }
    SetLongFileName(longName);
  }
  SetDirty(false);
}

}  // namespace kivstore
