#include "game/game_dob.h"

#include "records/screens.h"

namespace kivstore {
namespace {

// The per-game record of the options in force; null if there is none of the tutor's kind.
const STeacherOptionsGameDob* ProgressInForce(IGameHost* host) {
  const SKivTeacherOptionsDob* const options = host != nullptr ? host->GetOptions() : nullptr;
  return options != nullptr && options->gameOptions != nullptr
             ? AsRecord<STeacherOptionsGameDob>(*options->gameOptions)
             : nullptr;
}

}  // namespace

SGameDob::SGameDob(IGameHost* host) : SFieldRecord(host) {
  InitGraphData();
  SetDirty(false);
}

const SString& SGameDob::GetStartScreen() const {
  return GetScreenName(kMainScreen);
}

void SGameDob::ResetProgress() {
  errorDob.Clear();
  lessonDob.ResetKeepingKeys(ProgressInForce(GetHost()));
}

void SGameDob::InitGraphData() {
  graphData.SetSize(kMissionCount);
  SetDirty(true);
}

void SGameDob::ReleaseGraphData() {
  graphData.Release();
  SetDirty(true);
}

}  // namespace kivstore
