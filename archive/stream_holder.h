// An owning reference to a stream: never null, the shared null stream when it holds nothing.
#pragma once

#include "archive/stream_null.h"

namespace kivstore {

class SStreamHolder {
 public:
  SStreamHolder() : stream(&SStreamSrcNull::Shared()) {}
  SStreamHolder(SStreamSource* source, bool owned) : SStreamHolder() { Set(source, owned); }
  ~SStreamHolder() { Set(nullptr, false); }
  SStreamHolder(const SStreamHolder&) = delete;
  SStreamHolder& operator=(const SStreamHolder&) = delete;

  // Deletes the stream held so far if it was owned. Null holds nothing.
  void Set(SStreamSource* source, bool owned);
  SStreamSource* operator->() const { return stream; }
  SStreamSource* Get() const { return stream; }

 private:
  SStreamSource* stream;
  bool owns = false;
};

}  // namespace kivstore
