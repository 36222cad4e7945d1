// What a store asks of the file system that it lies on, tried between two ways to it, mounts of two
// machines mostly: that a lock file open on one side is refused to the other, that a file written
// behind the lock is read as it is behind the other's, and that a folder made, renamed or removed
// is listed so.
//
// A side is asked in words, so that it may be a folder of this process or another machine's
// kivadmin, which is asked through files.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "foundation/files/file.h"
#include "foundation/files/file_spec.h"

namespace kivadmin {

using TrialSide = std::function<std::string(const std::string& request)>;

// "locks", "reading" or "listings".
struct TrialResult {
  const char* kind;
  int tries = 0;
  int held = 0;

  bool IsGood() const { return held == tries; }
};

// Both sides stand on one folder, which is the trial's and laid out. Throws HostError if it cannot
// be tried.
std::vector<TrialResult> TrySides(const TrialSide& a, const TrialSide& b, int rounds);

// The side that this process sees. Requests and answers:
//
//   lay out               yes or no; the files of the trial, once
//   hold                  yes, busy or no; the lock file
//   let go                yes or no
//   write TEXT            yes or no
//   read                  the text
//   make NAME, remove NAME, rename NAME NEW   yes or no; a folder
//   list                  the folders' names in their order, each with a blank behind
class LocalSide {
 public:
  explicit LocalSide(const kivstore::SFileSpec& folder) : folder(folder) {}

  std::string Answer(const std::string& request);

 private:
  kivstore::SFileSpec At(const std::string& name) const;
  bool LayOut() const;
  std::string Hold();
  bool Write(const std::string& text) const;
  std::string Read() const;
  bool Rename(const std::string& names) const;
  std::string List() const;

  kivstore::SFileSpec folder;
  kivstore::SFile lock;
};

}  // namespace kivadmin
