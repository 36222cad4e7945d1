#include "app/application.h"

#include "platform/base/bytes.h"

namespace kivstore {

SApplication::SApplication() : platformName("DLL") {}

SString SApplication::GetProperty(const char* /*key*/) const {
  return dataPath;
}

void SApplication::SetProperty(const char* key, const SString& value) {
  if (EqualBytesNoCase(ViewOf(key), "Data")) {
    dataPath = value;
  }
}

}  // namespace kivstore
