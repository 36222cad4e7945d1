#include "app/general_call.h"

#include <cstring>
#include <new>

#include "foundation/application.h"
#include "foundation/files/file_type.h"
#include "foundation/site_mode.h"
#include "game/game_dob.h"
#include "records/tutor_options_dob.h"

namespace kivstore {

SGeneralCall::SGeneralCall(const SGeneralParams& params) : mode(params.mode) {
  MakeApplication();
  SetSite();
  SetDataPath(params.dataPath != nullptr ? params.dataPath : "");
}

SGeneralCall::~SGeneralCall() {
  FreeDataPath();
  if (gApp == nullptr) {
    return;
  }
  delete gApp->options;
  gApp->options = nullptr;
  delete gApp->game;
  gApp->game = nullptr;
  delete gApp;
  gApp = nullptr;
}

// The options come first: every game record asks the application for options of its own.
void SGeneralCall::MakeApplication() {
  gApp = new (std::nothrow) SZEPApp;
  RegisterFileType(kFileTypeGame, "Game File|Game Files|zep|Game|1");
  gFileVersion = PackVersion("0.01");
  SetSiteMode(kSiteLocal);
  if (gApp != nullptr) {
    gApp->options = gApp->CreateOptions();
    gApp->game = gApp->CreateGame();
  }
}

void SGeneralCall::SetSite() {
  SetSiteMode(mode == 0 ? kSiteLocal : kSiteSharedTeachers);
  if (gSiteMode == kSiteSharedTeachers) {
    gTeacherTier = 1;
  }
}

void SGeneralCall::SetDataPath(const char* path) {
  FreeDataPath();
  const size_t length = std::strlen(path);
  dataPathHandle = AllocateBlock(static_cast<int64_t>(length) + 2);
  dataPath = static_cast<char*>(LockBlock(dataPathHandle));
  if (dataPath == nullptr || gApp == nullptr) {
    return;
  }
  std::memcpy(dataPath, path, length + 1);
  gApp->SetProperty("Data", dataPath);
  gApp->ApplyDataPath();
}

void SGeneralCall::FreeDataPath() {
  FreeBlock(dataPathHandle);
  dataPathHandle = nullptr;
  dataPath = nullptr;
}

}  // namespace kivstore
