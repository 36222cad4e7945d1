// "autogame.zep" of any bytes.
#include "archive/dob_binary_archive.h"
#include "game/game_dob.h"
#include "game/game_file.h"
#include "tests/fuzz/fuzz_site.h"

namespace kivtest {
namespace {

using namespace kivstore;

bool Write(SGameDob& game, const SFileSpec& file) {
  SDobBinaryArchive archive(SDobBinaryArchive::kWrite, file);
  archive.WriteTag(FindFileType(kFileTypeGame).GetCode());
  WriteGameVersion(archive);
  game.Serialize(archive);
  archive.Finish();
  return !archive.HasError();
}

void CheckWriting(FuzzSite& site, const SFileSpec& file, SGameDob& game) {
  SGameDob again;
  Require(Write(game, file), "a game that was read can be written");
  Require(again.LoadGame(file) && again.IsEqual(game), "what was read survives being written");
  const std::string written = site.Stored("autogame.zep");
  Require(Write(again, file) && site.Stored("autogame.zep") == written,
          "writing again changes nothing");
}

void Run(const std::string& bytes) {
  FuzzSite site;
  const SFileSpec file = site.FileOf(bytes, "autogame.zep");
  const SGameDob fresh;
  SGameDob game;
  const bool loaded = game.LoadGame(file);
  Require(site.Stored("autogame.zep") == bytes, "reading changes nothing");
  if (loaded) {
    SGameDob copy;
    copy.Copy(game);
    Require(copy.IsEqual(game), "a copy is equal");
    CheckWriting(site, file, game);
  } else if (!SKivGameDob::IsGameFile(file)) {
    Require(game.IsEqual(fresh), "a file that is no game leaves the record as it was");
  }
}

}  // namespace
}  // namespace kivtest

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  kivtest::Run({reinterpret_cast<const char*>(data), size});
  return 0;
}
