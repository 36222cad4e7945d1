// Holds a file open until its standard input ends: another workstation, for the tests.
//
//   hold_file PATH r|w READY     READY appears once the file is open, or could not be opened
#include <cstdio>
#include <fstream>
#include <string>

#include "platform/platform.h"

using namespace kivstore;

int main(int argc, char** argv) {
  if (argc != 4) {
    return 2;
  }
  const bool reading = std::string(argv[2]) == "r";
  SystemError error = SystemError::kNone;
  Platform().files->Open(argv[1], reading ? FileAccess::kRead : FileAccess::kReadWrite, error);
  std::ofstream(argv[3]) << (error == SystemError::kNone ? "held" : "refused");
  while (std::getchar() != EOF) {
  }
  return 0;  // and the system closes what is open
}
