// The framework's layer of the application object: the data path, and the hook ahead of a message.
// SKivApp (kiv_app.h) adds the product family's, SZEPApp (zep_app.h) the product's. One object
// exists at a time; in the library it lives for one call (general_call.h).
//
// The virtual operations of the three classes stand in one order, which a tutor that derives from
// them is built by. A notification answers true and does nothing here.
#pragma once

#include "foundation/text/string.h"

namespace kivstore {

class SApplication {
 public:
  SApplication();
  virtual ~SApplication() = default;
  SApplication(const SApplication&) = delete;
  SApplication& operator=(const SApplication&) = delete;

  // Called ahead of a message that asks for a disk.
  virtual void PrepareMessage() {}

  // The data path; the key is not looked at.
  SString GetProperty(const char* key) const;
  // Stores the value if the key is "Data", letter case ignored; other keys are ignored.
  void SetProperty(const char* key, const SString& value);

 protected:
  SString platformName;
  SString dataPath;
};

}  // namespace kivstore
