// What stands around one command: the set-up that makes the application object (gApp), gives it its
// records and aims it at the host's data path, and the tear-down that takes all of it away again.
// Lives on the stack of GeneralProc, which lets one caller in at a time.
//
// What survives a call stands in library_state.h.
#pragma once

#include <memory>

#include "app/library_state.h"
#include "app/zep_app.h"
#include "kivstore/general_proc.h"

namespace kivstore {

class SGeneralCall {
 public:
  // Nothing in it is checked: where memory or the path lacks, the command finds no store. `mode` 0
  // is a local store, any other a networked one with teachers. A call that uses no files is not
  // told where they are, and has no records: those take longer than an answer from the caches.
  explicit SGeneralCall(const SGeneralParams& params, bool usesFiles = true);
  ~SGeneralCall();
  SGeneralCall(const SGeneralCall&) = delete;
  SGeneralCall& operator=(const SGeneralCall&) = delete;

  SSite& GetSite() const { return site; }
  SRosterCaches& GetCaches() const { return LibraryState().caches; }
  // Null without memory.
  SZEPApp* GetApp() const { return app.get(); }

 private:
  SSite& site;
  std::unique_ptr<SZEPApp> app;
};

}  // namespace kivstore
