#include "hosts/common/host_error.h"

#include <iostream>
#include <new>

namespace kivhost {
namespace {

// What was said before stands first.
int Tell(const char* program, const char* message, ExitCode exitCode) {
  std::cout << std::flush;
  std::cerr << program << ": " << message << '\n';
  return exitCode;
}

}  // namespace

int RunHost(const char* program, const std::function<int()>& run) {
  try {
    return run();
  } catch (const HostError& error) {
    return Tell(program, error.what(), error.exitCode);
  } catch (const std::bad_alloc&) {
    return Tell(program, "not enough memory", kNoStore);
  } catch (const std::exception& error) {
    return Tell(program, error.what(), kNoStore);
  }
}

}  // namespace kivhost
