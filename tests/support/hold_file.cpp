// Holds a file open, for the tests, as another workstation does.
//
//   hold_file PATH r|w HELD     HELD is made once PATH is open; the program ends when it is gone
#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "platform/platform.h"

using namespace kivstore;

int main(int argc, char** argv) {
  if (argc != 4) {
    return 2;
  }
  const bool reading = std::string(argv[2]) == "r";
  SystemError error = SystemError::kNone;
  IFileServices& files = *Platform().files;
  const FileHandle file =
      files.Open(argv[1], reading ? FileAccess::kRead : FileAccess::kReadWrite, error);
  if (file == nullptr) {
    return 1;
  }
  std::ofstream(argv[3]).close();
  const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(2);
  while (std::filesystem::exists(argv[3]) && std::chrono::steady_clock::now() < end) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  files.Close(file);
  return 0;
}
