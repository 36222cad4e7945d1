#include "hosts/common/store_text.h"

#include <algorithm>

#include "hosts/common/console.h"
#include "hosts/common/failure_text.h"
#include "store/lock/lock_file.h"

namespace kivhost {
namespace {

using namespace kivstore;

HostError NoAccess() {
  return {kNoStore, ReasonText(FailureOfLastFile(ListKind::kFiles))};
}

bool Put(SFileSpec& spec, const std::string& text) {
  SFile file;
  const auto count = static_cast<int32_t>(text.size());
  return (spec.Exists() || spec.CreateFile(0, 0, 0)) && file.Open(SFile::kWrite, spec) &&
         file.Write(count, text.data()) == count && file.Truncate();
}

}  // namespace

bool OpenToRead(SFile& file, const SFileSpec& spec) {
  constexpr int16_t kMostSteps = 32;
  int32_t error = SFile::kSharingViolation;
  for (int16_t step = 1; error == SFile::kSharingViolation && step < kMostSteps;) {
    if (file.Open(SFile::kRead, spec, &error)) {
      return true;
    }
    if (error == SFile::kSharingViolation) {
      BackoffWait(step);
    }
  }
  return false;
}

std::string ReadStoreText(const SFileSpec& spec, size_t most, const char* kind) {
  SFile file;
  if (!file.Open(SFile::kRead, spec)) {
    throw NoAccess();
  }
  const auto size = static_cast<size_t>(std::max(file.Size(), 0));
  if (size > most) {
    throw HostError(kNoStore, FromLibraryPath(spec.GetPathText()) + ": too large for " + kind);
  }
  std::string text(size, '\0');
  if (file.Read(static_cast<int32_t>(size), text.data()) != static_cast<int32_t>(size)) {
    throw HostError(kNoStore, FromLibraryPath(spec.GetPathText()) + ": cannot be read to its end");
  }
  return text;
}

void WriteStoreText(SFileSpec spec, const std::string& text) {
  if (!Put(spec, text)) {
    throw NoAccess();
  }
}

}  // namespace kivhost
