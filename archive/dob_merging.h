// How records meet what is stored, whatever holds it: the one road of all SaveMerged and MergeFrom
// operations.
#pragma once

#include <memory>

#include "archive/dob.h"

namespace kivstore {

// Stores over what is stored now only what changed in `record` since its last store: of a copy of
// the record only the fresh stamps are left, so every other field loses against one that somebody
// decided. `load` and `save` take a record and answer whether they succeeded; what cannot be loaded
// is replaced.
template <class Load, class Save>
bool SaveMerged(SDob& record, std::unique_ptr<SDob> stored, Load load, Save save) {
  if (stored == nullptr) {
    return false;
  }
  if (!load(*stored)) {
    return save(record);
  }
  const std::unique_ptr<SDob> fresh(record.CreateNew());
  if (fresh == nullptr) {
    return false;
  }
  fresh->Copy(record);
  fresh->ClearStamps();
  stored->Merge(*fresh);
  return save(*stored);
}

// False if there was nothing to merge; the record then holds what could be read.
template <class Load>
bool MergeStored(SDob& record, SDob& stored, Load load) {
  if (!load(stored)) {
    load(record);
    return false;
  }
  record.Merge(stored);
  return true;
}
template <class Load>
bool MergeStored(SDob& record, std::unique_ptr<SDob> stored, Load load) {
  return stored != nullptr && MergeStored(record, *stored, load);
}

}  // namespace kivstore
