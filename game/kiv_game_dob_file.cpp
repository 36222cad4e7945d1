// What is written to and read from a game file.
#include <memory>

#include "archive/dob_binary_archive.h"
#include "game/kiv_game_dob.h"
#include "store/list/index_lookup.h"
#include "store/lock/lock_file.h"
#include "store/place/failure_report.h"
#include "store/place/store_names.h"

namespace kivstore {
namespace {

bool CheckTag(IDobArchive& archive) {
  return archive.CheckTag(GameType().GetCode());
}

bool CheckVersion(IDobArchive& archive) {
  uint32_t version = 0;
  return archive.TransferULong(nullptr, version) && version == gFileVersion;
}

bool WriteVersion(IDobArchive& archive) {
  uint32_t version = gFileVersion;
  return archive.TransferULong(nullptr, version);
}

bool CheckHeader(IDobArchive& archive) {
  return !archive.HasError() && CheckTag(archive) && CheckVersion(archive);
}

}  // namespace

bool SKivGameDob::LoadGame(const SFileSpec& spec) {
  SDobBinaryArchive archive(SDobBinaryArchive::kRead, spec);
  if (!CheckHeader(archive)) {
    return false;
  }
  Serialize(archive);
  archive.Finish();
  return !archive.HasError();
}

bool SKivGameDob::IsGameFile(const SFileSpec& spec) {
  SDobBinaryArchive archive(SDobBinaryArchive::kRead, spec);
  return CheckHeader(archive);
}

bool SKivGameDob::IsSharedGameFile(const SFileSpec& spec) const {
  const OwnedGame game = CreateGame();
  return game != nullptr && game->LoadGame(spec) && game->publicFile;
}

bool SKivGameDob::LoadFile(const SFileSpec& spec, const SString& longName, void* parent) {
  std::unique_ptr<SKivGameDob> game = ReadGame(spec);
  if (game == nullptr || !TakeOwnership(*game, spec, longName, parent)) {
    return false;
  }
  host->SaveLastUser(game->fileSpec.GetFileName(), GameType().GetExtension());
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
  if (!CheckTag(archive) || !CheckVersion(archive)) {
    ReportError(kNotAGame);
    return nullptr;
  }
  OwnedGame game = CreateGame();
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
  game.longFileName =
      !longName.IsEmpty() ? longName : FindLongNameOfFile(spec, GameType().GetExtension());
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
  if (host == nullptr) {
    return false;
  }
  SLockFile lock(host->GetSite());
  if (publicFile && !LockFolder(lock, spec)) {
    return false;
  }
  const bool fresh = !spec.Exists();
  if (!spec.CreateFile(GameType(), 0, 0, 0)) {
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
bool SKivGameDob::LockFolder(SLockFile& lock, const SFileSpec& spec) const {
  SFileSpec target = spec;
  if (!target.IsExistingFolder()) {
    target.Up();
  }
  return LockIndex(lock, target, ListKind::kFiles, false);
}

bool SKivGameDob::WriteGame(SFileSpec& spec, const SString& longName, SLockFile& lock) {
  SDobBinaryArchive archive(SDobBinaryArchive::kWrite, spec);
  if (!archive.WriteTag(GameType().GetCode())) {
    lock.Unlock();
    ReportError(kFailSave);
    return false;
  }
  if (!WriteVersion(archive)) {
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
  const SString extension = GameType().GetExtension();
  if (!FindEntryByLongName(spec, longName, extension)) {
    AddEntry(spec, longName, spec.GetFileName(), extension);
  }
  fileSpec = spec;
  if (!publicFile) {
    host->SaveLastUser(spec.GetFileName(), extension);
    SetLongFileName(longName);
  }
  SetDirty(false);
}

}  // namespace kivstore
