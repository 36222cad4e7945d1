// The product's application object: which records it makes.
#pragma once

#include "app/kiv_app.h"

namespace kivstore {

class SZEPApp : public SKivApp {
 public:
  using SKivApp::SKivApp;

  SKivTeacherOptionsDob* CreateOptions() override;
  SKivTeacherOptionsGameDob* CreateGameOptions() override;
  void OptionsChanged() override { SKivApp::OptionsChanged(); }
  SKivGameDob* CreateGame() override;
};

}  // namespace kivstore
