#include "game/game_dob.h"

#include "records/screens.h"

namespace kivstore {

SGameDob::SGameDob() {
  InitGraphData();
  SetDirty(false);
}

const SString& SGameDob::GetStartScreen() const {
  return GetScreenName(kMainScreen);
}

void SGameDob::ResetProgress() {
  errorDob.Clear();
  lessonDob.ResetKeepingKeys();
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
