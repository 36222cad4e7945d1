// What tests of the store set up and take back: the site mode, file services that create, specs.
#pragma once

#include <string>

#include "foundation/application.h"
#include "foundation/files/file_spec.h"
#include "foundation/site_mode.h"
#include "platform/platform.h"

namespace kivtest {

inline kivstore::SString Text(const std::string& bytes) {
  return {bytes.data(), static_cast<int>(bytes.size())};
}

inline std::string Bytes(const kivstore::SString& text) {
  return std::string(text.View());
}

inline kivstore::SFileSpec SpecOn(const std::string& path) {
  return kivstore::SFileSpec(Text(path));
}

class SiteScope {
 public:
  explicit SiteScope(int32_t mode) : previous(kivstore::gSiteMode) { kivstore::gSiteMode = mode; }
  ~SiteScope() { kivstore::gSiteMode = previous; }
  SiteScope(const SiteScope&) = delete;
  SiteScope& operator=(const SiteScope&) = delete;

 private:
  int32_t previous;
};

class CreatingScope {
 private:
  kivstore::SPlatformOverride<kivstore::IFileServices> installed{kivstore::Platform().files,
                                                                 &kivstore::CreatingFileServices()};
};

// An application object in gApp, with options at their defaults.
class AppScope {
 public:
  AppScope() {
    kivstore::gApp = &app;
    app.options = app.CreateOptions();
  }
  ~AppScope() {
    kivstore::SelectTeacher(nullptr);
    kivstore::gApp = nullptr;
  }
  AppScope(const AppScope&) = delete;
  AppScope& operator=(const AppScope&) = delete;

  struct App : kivstore::SZEPApp {
    void PrepareMessage() override { ++prepared; }
    int prepared = 0;
  };
  App app;
};

}  // namespace kivtest
