#include "foundation/files/file_failure.h"

#include "platform/platform.h"

namespace kivstore {
namespace {

SFileFailure& Failure() {
  static SFileFailure failure;
  return failure;
}

}  // namespace

const SFileFailure& LastFileFailure() {
  return Failure();
}

bool NoteFileFailure(const SString& path, SystemError error) {
  SFileFailure& failure = Failure();
  const ForeignLink link =
      error == SystemError::kForeignLink ? Platform().files->LastForeignLink() : ForeignLink{"", 0};
  failure.path = *link.path != '\0' ? SString(link.path) : path;
  failure.error = error;
  failure.linkOwner = link.owner;
  ++failure.number;
  return false;
}

}  // namespace kivstore
