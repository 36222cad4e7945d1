#include "hosts/kivadmin/checking/mount_trial.h"

#include <algorithm>

#include "foundation/files/file_finder.h"
#include "foundation/files/file_type.h"
#include "foundation/time/ticks.h"
#include "hosts/common/host_error.h"

namespace kivadmin {
namespace {

using namespace kivstore;

constexpr const char* kLock = "trial.lok";
constexpr const char* kData = "trial.kiv";
constexpr int32_t kLongest = 4096;

const char* YesOrNo(bool isSo) {
  return isSo ? "yes" : "no";
}

// A lock that has just been let go may take the server a moment.
bool HoldsSoon(const TrialSide& side) {
  constexpr int kTries = 10;
  constexpr uint32_t kWait = 50;
  for (int i = 0; i < kTries; ++i) {
    const std::string answer = side("hold");
    if (answer == "yes") {
      return true;
    }
    if (answer != "busy") {
      throw kivhost::HostError(kivhost::kNoStore,
                               "the lock file of the trial cannot be opened; nothing is proved");
    }
    WaitTicks(kWait);
  }
  return false;
}

std::string Behind(const TrialSide& side, const std::string& request) {
  const bool isHeld = HoldsSoon(side);
  const std::string answer = side(request);
  side("let go");
  return isHeld ? answer : "no lock";
}

bool Excludes(const TrialSide& holder, const TrialSide& other) {
  const bool isHeld = HoldsSoon(holder);
  const bool isRefused = other("hold") == "busy";
  other("let go");
  holder("let go");
  const bool isFree = HoldsSoon(other);
  other("let go");
  return isHeld && isRefused && isFree;
}

// Of growing and shrinking length; the reader's caches hold what was there before.
bool ReadsWhatIsWritten(const TrialSide& writer, const TrialSide& reader, int round) {
  constexpr int kStep = 37;
  constexpr int kMost = 200;
  const std::string text = std::to_string(round) + std::string(round * kStep % kMost, '.');
  reader("read");
  return Behind(writer, "write " + text) == "yes" && Behind(reader, "read") == text;
}

bool ListsWhatIsDone(const TrialSide& maker, const TrialSide& reader, const std::string& what,
                     const std::string& expected) {
  reader("list");
  return Behind(maker, what) == "yes" && Behind(reader, "list") == expected;
}

void TryListing(const TrialSide& maker, const TrialSide& reader, int round, TrialResult& result) {
  const std::string name = "a" + std::to_string(round);
  const std::string newName = "b" + std::to_string(round);
  result.tries += 3;
  result.held += ListsWhatIsDone(maker, reader, "make " + name, name + ' ') ? 1 : 0;
  result.held +=
      ListsWhatIsDone(maker, reader, "rename " + name + ' ' + newName, newName + ' ') ? 1 : 0;
  result.held += ListsWhatIsDone(maker, reader, "remove " + newName, "") ? 1 : 0;
}

}  // namespace

std::vector<TrialResult> TrySides(const TrialSide& a, const TrialSide& b, int rounds) {
  TrialResult locks{"locks"}, reading{"reading"}, listings{"listings"};
  for (int round = 0; round < rounds; ++round) {
    const TrialSide& one = round % 2 == 0 ? a : b;
    const TrialSide& other = round % 2 == 0 ? b : a;
    ++locks.tries;
    locks.held += Excludes(one, other) ? 1 : 0;
    ++reading.tries;
    reading.held += ReadsWhatIsWritten(one, other, round) ? 1 : 0;
    TryListing(one, other, round, listings);
  }
  return {locks, reading, listings};
}

std::string LocalSide::Answer(const std::string& request) {
  const size_t blank = std::min(request.find(' '), request.size());
  const std::string rest = blank < request.size() ? request.substr(blank + 1) : "";
  const std::string verb = request.substr(0, blank);
  if (request == "lay out") {
    return YesOrNo(LayOut());
  }
  if (request == "let go") {
    return YesOrNo(lock.Close());
  }
  return verb == "hold"     ? Hold()
         : verb == "write"  ? YesOrNo(Write(rest))
         : verb == "read"   ? Read()
         : verb == "make"   ? YesOrNo(At(rest).CreateFolder(0))
         : verb == "remove" ? YesOrNo(At(rest).Delete(false))
         : verb == "rename" ? YesOrNo(Rename(rest))
         : verb == "list"   ? List()
                            : "what?";
}

SFileSpec LocalSide::At(const std::string& name) const {
  SFileSpec spec(folder);
  spec.Down(name.c_str());
  return spec;
}

bool LocalSide::LayOut() const {
  return At(kLock).CreateFile(FindFileType(kFileTypeLock), 0, 0, 0) &&
         At(kData).CreateFile(FindFileType(kFileTypeStore), 0, 0, 0);
}

std::string LocalSide::Hold() {
  SFileSpec spec(folder);
  int32_t error = SFile::kOtherError;
  if (spec.DownAssumed(kLock) && lock.Open(SFile::kWrite, spec, &error)) {
    return "yes";
  }
  return error == SFile::kSharingViolation ? "busy" : "no";
}

bool LocalSide::Write(const std::string& text) const {
  SFileSpec spec(folder);
  SFile file;
  const auto length = static_cast<int32_t>(text.size());
  return spec.DownAssumed(kData) && file.Open(SFile::kWrite, spec) &&
         file.Write(length, text.data()) == length && file.SetSize(length) && file.Flush();
}

std::string LocalSide::Read() const {
  SFileSpec spec(folder);
  SFile file;
  std::string text(kLongest, '\0');
  const bool isOpen = spec.DownAssumed(kData) && file.Open(SFile::kRead, spec);
  text.resize(isOpen ? static_cast<size_t>(file.Read(kLongest, text.data())) : 0);
  return text;
}

bool LocalSide::Rename(const std::string& names) const {
  const size_t blank = std::min(names.find(' '), names.size() - 1);
  return At(names.substr(0, blank)).Rename(names.substr(blank + 1).c_str());
}

std::string LocalSide::List() const {
  SFileFinder finder(folder, SFileFinder::kVisibleFolders);
  std::vector<std::string> names;
  for (SFileSpec entry; finder.Next(entry);) {
    names.emplace_back(entry.GetFileName().GetText());
  }
  std::sort(names.begin(), names.end());
  std::string all;
  for (const std::string& name : names) {
    all += name + ' ';
  }
  return all;
}

}  // namespace kivadmin
