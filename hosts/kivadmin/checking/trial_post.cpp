#include "hosts/kivadmin/checking/trial_post.h"

#include "foundation/files/file_finder.h"
#include "foundation/files/file_type.h"
#include "foundation/time/ticks.h"

namespace kivadmin {
namespace {

using namespace kivstore;

constexpr uint32_t kLongestWait = 60000;  // milliseconds
constexpr uint32_t kStep = 10;
constexpr int32_t kLongestPost = 4096;

SFileSpec In(SFileSpec folder, const std::string& name) {
  folder.Down(name.c_str());
  return folder;
}

}  // namespace

std::string TrialPost::Ask(const std::string& request) {
  const std::string number = std::to_string(++count);
  Send("ask" + number, request);
  return Await("told" + number);
}

SFileSpec TrialPost::SidesFolder() const {
  return In(folder, "sides");
}

void TrialPost::Serve() {
  std::optional<LocalSide> side;
  for (bool isOver = false; !isOver;) {
    const std::string number = std::to_string(++count);
    const std::string request = Await("ask" + number);
    if (!side) {
      side.emplace(SidesFolder());
    }
    isOver = request == "end";
    Send("told" + number, isOver ? "yes" : side->Answer(request));
  }
}

void TrialPost::Send(const std::string& name, const std::string& text) const {
  SFileSpec spec = In(folder, name + ".new");
  const auto length = static_cast<int32_t>(text.size());
  session.Need("write to the other machine", spec, [&] {
    if (!spec.CreateFile(FindFileType(kFileTypeStore), 0, 0, 0)) {
      return false;
    }
    SFile file;
    return file.Open(SFile::kWrite, spec) && file.Write(length, text.data()) == length &&
           file.Flush();
  });
  session.Need("write to the other machine", spec,
               [&] { return spec.Rename((name + ".txt").c_str()); });
}

std::string TrialPost::Await(const std::string& name) const {
  for (const uint32_t start = GetTicks(); GetTicks() - start < kLongestWait; WaitTicks(kStep)) {
    interruption.NeedNone("the trial is not over");
    if (const auto text = Take(name + ".txt")) {
      return *text;
    }
  }
  throw HostError(kRefused,
                  session.Show(folder) +
                      ": the other machine says nothing; run the same command on both, at the same "
                      "time, and remove that folder if neither runs");
}

// By a walk, which is fresh where a look may not be.
std::optional<std::string> TrialPost::Take(const std::string& name) const {
  SFileFinder finder(folder, SFileFinder::kVisibleFiles);
  for (SFileSpec entry; finder.Next(entry);) {
    SFile file;
    if (entry.GetFileName() == name.c_str() && file.Open(SFile::kRead, entry)) {
      std::string text(kLongestPost, '\0');
      text.resize(static_cast<size_t>(file.Read(kLongestPost, text.data())));
      return text;
    }
  }
  return std::nullopt;
}

}  // namespace kivadmin
