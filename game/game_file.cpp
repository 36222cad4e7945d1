// The silent ways into a game file.
#include "game/game_file.h"

#include <memory>

#include "archive/dob_binary_archive.h"
#include "foundation/application.h"
#include "foundation/files/file_type.h"
#include "game/game_dob.h"

namespace kivstore {

bool CheckGameTag(IDobArchive& archive) {
  return archive.CheckTag(FindFileType(kFileTypeGame).GetCode());
}

bool CheckGameVersion(IDobArchive& archive) {
  uint32_t version = 0;
  return archive.TransferULong(nullptr, version) && version == gFileVersion;
}

bool WriteGameVersion(IDobArchive& archive) {
  uint32_t version = gFileVersion;
  return archive.TransferULong(nullptr, version);
}

namespace {

bool CheckHeader(IDobArchive& archive) {
  return !archive.HasError() && CheckGameTag(archive) && CheckGameVersion(archive);
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

bool SKivGameDob::IsSharedGameFile(const SFileSpec& spec) {
  const std::unique_ptr<SKivGameDob> game(gApp != nullptr ? gApp->CreateGame() : nullptr);
  return game != nullptr && game->LoadGame(spec) && game->publicFile;
}

}  // namespace kivstore
