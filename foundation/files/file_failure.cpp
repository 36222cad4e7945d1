#include "foundation/files/file_failure.h"

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
  failure.path = path;
  failure.error = error;
  ++failure.number;
  return false;
}

}  // namespace kivstore
