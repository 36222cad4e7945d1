#include "archive/stream_null.h"

#include "platform/base/never_destroyed.h"

namespace kivstore {
namespace {

constinit NeverDestroyed<SStreamSrcNull> gNullStream;

}  // namespace

SStreamSrcNull& SStreamSrcNull::Shared() {
  return gNullStream.object;
}

}  // namespace kivstore
