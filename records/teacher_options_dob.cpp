#include "records/teacher_options_dob.h"

namespace kivstore {

SKivTeacherOptionsDob::SKivTeacherOptionsDob() {
  Clear();
}

SKivTeacherOptionsDob::SKivTeacherOptionsDob(const SKivTeacherOptionsDob& other) : SFieldRecord() {
  CopyFields(other);
}

SKivTeacherOptionsDob::~SKivTeacherOptionsDob() {
  delete gameOptions;
}

SKivTeacherOptionsGameDob* SKivTeacherOptionsDob::CreateGameOptions() const {
  return new (std::nothrow) SKivTeacherOptionsGameDob;
}

namespace {

// False, with ours deleted, if the other has none, or without memory.
bool MatchPresence(SKivTeacherOptionsDob& r, const SKivTeacherOptionsDob& other) {
  if (other.gameOptions == nullptr) {
    delete r.gameOptions;
    r.gameOptions = nullptr;
  } else if (r.gameOptions == nullptr) {
    r.gameOptions = static_cast<SKivTeacherOptionsGameDob*>(other.gameOptions->CreateNew());
  }
  return r.gameOptions != nullptr;
}

// Null for one of another kind.
STeacherOptionsGameDob* AsTutors(SKivTeacherOptionsGameDob* options) {
  return options != nullptr && options->GetClassId() == STeacherOptionsGameDob::StaticClassId()
             ? static_cast<STeacherOptionsGameDob*>(options)
             : nullptr;
}

}  // namespace

void GameOptionsField::Reset(Record& r) const {
  if (r.gameOptions == nullptr) {
    r.gameOptions = r.CreateGameOptions();
  }
  if (r.gameOptions != nullptr) {
    r.gameOptions->Clear();
  }
}

void GameOptionsField::Transfer(Record& r, IDobArchive& archive) const {
  uint16_t exists = r.gameOptions != nullptr;
  archive.PushKey("TOGameDob");
  archive.TransferUShort("Exists", exists);
  if (exists == 0) {
    // The keys of a record that was there once go too.
    if (archive.IsDeleting()) {
      SKivTeacherOptionsGameDob().Serialize(archive);
    }
  } else {
    if (archive.IsReading() && r.gameOptions == nullptr) {
      r.gameOptions = r.CreateGameOptions();
    }
    if (r.gameOptions != nullptr) {
      r.gameOptions->Serialize(archive);
    }
  }
  archive.PopKey();
}

// With a record of the tutor's kind in its place, or without one.
bool GameOptionsField::Measure(const Record& r, std::string_view bytes, int64_t& length) const {
  const int32_t exists = StoredCountAt(bytes, length);
  length += kStoredWidth<uint16_t>;
  const auto* const game = AsTutors(r.gameOptions);
  return exists == 0 || (exists > 0 && game != nullptr && game->Measure(bytes, length));
}

void GameOptionsField::Take(Record& r, const uint8_t*& from) const {
  uint16_t exists;
  TakeStored(from, exists);
  if (exists != 0) {
    AsTutors(r.gameOptions)->Take(from);
  } else if (r.gameOptions != nullptr) {
    r.gameOptions->Clear();
    r.gameOptions->SetDirty(false);
  }
}

bool GameOptionsField::IsEqual(const Record& a, const Record& b) const {
  if (a.gameOptions == nullptr || b.gameOptions == nullptr) {
    return a.gameOptions == b.gameOptions;
  }
  return a.gameOptions->IsEqual(*b.gameOptions);
}

void GameOptionsField::Copy(Record& r, const Record& other) const {
  if (MatchPresence(r, other)) {
    r.gameOptions->Copy(*other.gameOptions);
  }
}

void GameOptionsField::Merge(Record& r, const Record& other) const {
  if (MatchPresence(r, other)) {
    r.gameOptions->Merge(*other.gameOptions);
  }
}

void GameOptionsField::MarkDifference(Record& r, const Record& other) const {
  if (r.gameOptions != nullptr && other.gameOptions != nullptr) {
    r.gameOptions->MarkDifferences(*other.gameOptions);
  }
}

bool GameOptionsField::HasDifference(const Record& r) const {
  return r.gameOptions != nullptr && r.gameOptions->HasDifferences();
}

void GameOptionsField::RaiseModified(const Record& r, SDateTime& highest) const {
  if (r.gameOptions != nullptr) {
    Raise(highest, r.gameOptions->GetModified());
  }
}

void GameOptionsField::ClearStamp(Record& r) const {
  if (r.gameOptions != nullptr) {
    r.gameOptions->ClearStamps();
  }
}

void GameOptionsField::SetClean(Record& r) const {
  if (r.gameOptions != nullptr) {
    r.gameOptions->SetDirty(false);
  }
}

bool GameOptionsField::IsDirty(const Record& r) const {
  return r.gameOptions != nullptr && r.gameOptions->IsDirty();
}

}  // namespace kivstore
