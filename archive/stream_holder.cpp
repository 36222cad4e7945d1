#include "archive/stream_holder.h"

namespace kivstore {

void SStreamHolder::Set(SStreamSource* source, bool owned) {
  if (owns && stream != source && stream != &SStreamSrcNull::Shared()) {
    delete stream;
  }
  stream = source != nullptr ? source : &SStreamSrcNull::Shared();
  owns = owned && source != nullptr;
}

}  // namespace kivstore
