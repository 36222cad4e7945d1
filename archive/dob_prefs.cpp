// The operations of a record for preference files.
#include "archive/dob.h"
#include "archive/dob_merging.h"
#include "archive/dob_pref_archive.h"

namespace kivstore {
namespace {

bool TransferSection(SDob& record, int32_t mode, const SFileSpec& spec, const char* section) {
  SDobPrefArchive archive(mode, spec);
  if (archive.HasError()) {
    return false;
  }
  archive.PushSection(section);
  record.Serialize(archive);
  archive.PopSection();
  archive.Finish();
  return !archive.HasError();
}

std::unique_ptr<SDob> NewCleared(const SDob& record) {
  std::unique_ptr<SDob> cleared(record.CreateNew());
  if (cleared != nullptr) {
    cleared->Clear();
  }
  return cleared;
}

}  // namespace

bool SDob::SaveToPref(const SFileSpec& spec, const char* section) {
  return TransferSection(*this, SDobPrefArchive::kWrite, spec, section);
}

bool SDob::LoadFromPref(const SFileSpec& spec, const char* section) {
  return TransferSection(*this, SDobPrefArchive::kRead, spec, section);
}

bool SDob::DeleteFromPref(const SFileSpec& spec, const char* section) {
  return TransferSection(*this, SDobPrefArchive::kDelete, spec, section);
}

bool SDob::LoadAny(const SFileSpec& spec, const char* section) {
  return LoadFromFile(spec) || LoadFromPref(spec, section);
}

bool SDob::SaveMergedToPref(const SFileSpec& spec, const char* section) {
  return SaveMerged(
      *this, NewCleared(*this), [&](SDob& record) { return record.LoadFromPref(spec, section); },
      [&](SDob& record) { return record.SaveToPref(spec, section); });
}

bool SDob::MergeFromPref(const SFileSpec& spec, const char* section) {
  return MergeStored(*this, NewCleared(*this),
                     [&](SDob& record) { return record.LoadFromPref(spec, section); });
}

bool SDob::MergeFromAny(const SFileSpec& spec, const char* section) {
  return MergeStored(*this, NewCleared(*this),
                     [&](SDob& record) { return record.LoadAny(spec, section); });
}

}  // namespace kivstore
