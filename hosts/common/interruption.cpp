#include "hosts/common/interruption.h"

#include <csignal>

#include "hosts/common/host_error.h"

namespace kivhost {
namespace {

volatile std::sig_atomic_t gIsAsked = 0;

void Ask(int) {
  gIsAsked = 1;
  std::signal(SIGINT, SIG_DFL);
}

}  // namespace

Interruption::Interruption() {
  gIsAsked = 0;
  std::signal(SIGINT, Ask);
}

Interruption::~Interruption() {
  std::signal(SIGINT, SIG_DFL);
}

bool Interruption::IsAsked() const {
  return gIsAsked != 0;
}

void Interruption::NeedNone(const std::string& howFar) const {
  if (IsAsked()) {
    throw HostError(kRefused, "interrupted: " + howFar);
  }
}

}  // namespace kivhost
