#include "app/general_call.h"

#include <new>

#include "foundation/files/file_spec.h"
#include "foundation/files/file_type.h"
#include "platform/platform.h"

namespace kivstore {

SGeneralCall::SGeneralCall(const SGeneralParams& params, bool usesFiles)
    : site(LibraryState().site), app(new (std::nothrow) SZEPApp(site)) {
  RegisterFileType(kFileTypeGame, "Game File|Game Files|zep|Game|1");
  site.SetSiteMode(params.mode == 0 ? kSiteLocal : kSiteSharedTeachers);
  site.ClearFailure();
  if (app == nullptr || !usesFiles) {
    return;
  }
  app->GiveRecords();
  app->SetProperty("Data", params.dataPath != nullptr ? params.dataPath : "");
  app->ApplyDataPath();
  Platform().files->KeepDataRoot(SFileSpec::HeldForm({}, app->GetDataPath().View()).GetText());
}

SGeneralCall::~SGeneralCall() {
  Platform().files->KeepDataRoot("");
}

}  // namespace kivstore
