// Words between two machines, by files in a folder that both reach. A file appears by a rename,
// whole, and its name is never used again, so that what a cache still holds delays a word and never
// changes it.
#pragma once

#include <optional>
#include <string>

#include "hosts/common/interruption.h"
#include "hosts/kivadmin/checking/mount_trial.h"
#include "hosts/kivadmin/session/session.h"

namespace kivadmin {

class TrialPost {
 public:
  TrialPost(const Session& session, const kivstore::SFileSpec& folder)
      : session(session), folder(folder) {}

  // Asks the other machine. Throws HostError if it does not answer for a minute.
  std::string Ask(const std::string& request);
  // Answers whatever the other machine asks of this side, until it asks for "end". Throws if it
  // asks nothing for a minute.
  void Serve();
  // Where the sides stand, below the words. Laid out before anything is asked.
  kivstore::SFileSpec SidesFolder() const;

 private:
  void Send(const std::string& name, const std::string& text) const;
  std::string Await(const std::string& name) const;
  std::optional<std::string> Take(const std::string& name) const;

  const Session& session;
  kivstore::SFileSpec folder;
  // Ctrl-C ends the waiting, so that the folder does not stay behind.
  const kivhost::Interruption interruption{};
  int count = 0;
};

}  // namespace kivadmin
