#include "hosts/common/failure_text.h"

#include "hosts/common/charset.h"
#include "hosts/common/console.h"

namespace kivhost {
namespace {

using kivstore::FailureKind;
using kivstore::SFailure;
using kivstore::SystemError;

struct Words {
  const char* what;    // behind the path and "is"
  const char* remedy;  // empty if there is nothing to do
};

constexpr const char* kTryAgain = "try again";

Words OtherWords(SystemError error) {
  switch (error) {
    case SystemError::kWriteProtected:
      return {"on a disk that takes no changes", "look at how it is mounted or shared"};
    case SystemError::kDeviceGone:
      return {"on a disk or server that no longer answers", "look at the network"};
    case SystemError::kNotSameDevice:
      return {"on another file system than the data root, so it cannot be set aside there",
              "mount the whole data root as one"};
    case SystemError::kAlreadyExists:
      return {"there already", kTryAgain};
    case SystemError::kFolderNotEmpty:
      return {"not empty: something was put there meanwhile", kTryAgain};
    case SystemError::kNoPlainFile:
      return {"a pipe, a socket or a device, and no file of a store", "remove it"};
    case SystemError::kInvalidName:
      return {"no path that the system takes", ""};
    default:
      return {"refused by the system", kTryAgain};
  }
}

Words WordsOf(const SFailure& failure) {
  switch (failure.kind) {
    case FailureKind::kNone:
      return {"refused without a reason", kTryAgain};
    case FailureKind::kLocked:
      return {"locked by someone else", kTryAgain};
    case FailureKind::kInUse:
      return {"in use by someone else", kTryAgain};
    case FailureKind::kNoPermission:
      return {"not open to this user", "ask for permission"};
    case FailureKind::kMissing:
      return {"missing", "kivadmin check tells more"};
    case FailureKind::kNoEntry:
      return {"not there any more", "list again"};
    case FailureKind::kFull:
      return {"full", "delete or move somebody first"};
    case FailureKind::kNameTaken:
      return {"a list that has this name already", "take another name"};
    case FailureKind::kDamaged:
      return {"damaged", "kivadmin dump shows what can be read of it"};
    case FailureKind::kDiskFull:
      return {"on a full disk", "make room"};
    case FailureKind::kForeignLink:
      return {"a link", NameOfUser(0).empty() ? "remove it" : "remove it, or give it to root"};
    case FailureKind::kOther:
      break;
  }
  return OtherWords(failure.system);
}

// A lock file that is not there is a fault of its own: whoever only reads never makes one.
bool LacksLock(const SFailure& failure) {
  constexpr std::string_view kExtension = ".lok";
  const std::string_view path = failure.path.View();
  return failure.kind == FailureKind::kMissing && path.size() > kExtension.size() &&
         EqualNoCase(path.substr(path.size() - kExtension.size()), kExtension);
}

std::string ForeignLinkText(uint32_t owner) {
  const std::string name = NameOfUser(owner);
  return "a link" + (name.empty() ? "" : " that belongs to " + name) + ": not followed";
}

}  // namespace

std::string WhatText(const SFailure& failure) {
  if (failure.kind == FailureKind::kForeignLink) {
    return ForeignLinkText(failure.linkOwner);
  }
  return LacksLock(failure) ? "its lock file is missing" : WordsOf(failure).what;
}

std::string ReasonText(const SFailure& failure) {
  const std::string path = FromLibraryPath(failure.path.GetText());
  if (LacksLock(failure)) {
    const size_t name = path.find_last_of("/\\") + 1;
    return path.substr(0, name) + ": no " + path.substr(name) +
           ", so nothing can be locked there; make an empty file of that name";
  }
  const Words words = WordsOf(failure);
  return path + " is " + WhatText(failure) + (*words.remedy != '\0' ? "; " : "") + words.remedy;
}

ExitCode ExitCodeOf(const SFailure& failure) {
  switch (failure.kind) {
    case FailureKind::kLocked:
    case FailureKind::kInUse:
    case FailureKind::kNoEntry:
    case FailureKind::kFull:
    case FailureKind::kNameTaken:
      return kRefused;
    default:
      return kNoStore;
  }
}

HostError Unable(const std::string& what, const SFailure& failure) {
  return {ExitCodeOf(failure), "unable to " + what + ": " + ReasonText(failure)};
}

}  // namespace kivhost
