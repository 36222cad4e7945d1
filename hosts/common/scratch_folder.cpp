#include "hosts/common/scratch_folder.h"

#include <random>
#include <system_error>

#include "hosts/common/host_error.h"

namespace kivhost {

namespace fs = std::filesystem;

// A folder that is there already is somebody else's.
ScratchFolder::ScratchFolder() {
  constexpr int kTries = 100;
  std::random_device random;
  std::error_code error;
  const fs::path parent = fs::temp_directory_path(error);
  for (int i = 0; !error && i < kTries; ++i) {
    folder = parent / ("kivstore-" + std::to_string(random()));
    if (fs::create_directory(folder, error)) {
      fs::permissions(folder, fs::perms::owner_all, error);
      return;
    }
  }
  throw HostError(kNoStore, parent.string() + ": no temporary file can be made");
}

ScratchFolder::~ScratchFolder() {
  std::error_code ignored;
  fs::remove_all(folder, ignored);
}

void ScratchFolder::WriteFrom(std::istream& file,
                              const std::function<void(std::string_view)>& write) const {
  std::string block(1 << 16, '\0');
  while (file.read(block.data(), static_cast<std::streamsize>(block.size())), file.gcount() > 0) {
    write(std::string_view(block).substr(0, static_cast<size_t>(file.gcount())));
  }
  if (!file.eof()) {
    throw HostError(kNoStore, Path() + ": a temporary file cannot be read");
  }
}

}  // namespace kivhost
