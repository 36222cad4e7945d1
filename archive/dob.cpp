#include "archive/dob.h"

#include <new>

#include "archive/dob_archive.h"

namespace kivstore {

SDob::ClassId SDob::StaticClassId() {
  static char token;
  return &token;
}

void SDob::Serialize(IDobArchive&) {
  Clear();
  SetDirty(false);
}

bool SDob::IsEqual(const SDob& other) const {
  return other.GetClassId() == StaticClassId();
}

void SDob::Copy(const SDob& other) {
  if (&other != this) {
    dirty = other.dirty;
  }
}

void SDob::Merge(const SDob& other) {
  if (&other != this) {
    dirty = dirty || other.dirty;
  }
}

bool SDob::IsA(const SDob& other) const {
  return IsOneOf(other, {StaticClassId()});
}

SDob* SDob::CreateNew() const {
  return new (std::nothrow) SDob;
}

}  // namespace kivstore
