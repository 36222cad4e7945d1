#include "game/kiv_game_dob.h"

namespace kivstore {

namespace {

SKivTeacherOptionsGameDob* MakeGameOptions(IGameHost* host) {
  return host != nullptr ? host->CreateGameOptions() : new (std::nothrow) STeacherOptionsGameDob;
}

}  // namespace

SKivGameDob::SKivGameDob(IGameHost* host) : options(MakeGameOptions(host)), host(host) {}

SKivGameDob::SKivGameDob(const SKivGameDob& other)
    : SDob(other), options(MakeGameOptions(other.host)), host(other.host) {
  CopyFields(other);
}

SKivGameDob::~SKivGameDob() {
  delete options;
}

SDob::ClassId SKivGameDob::StaticClassId() {
  static char token;
  return &token;
}

bool SKivGameDob::IsA(const SDob& other) const {
  return other.GetClassId() == StaticClassId() || SDob::IsA(other);
}

void SKivGameDob::Clear() {
  ResetFields();
  SetDirty(true);
}

void SKivGameDob::ResetFields() {
  publicFile = false;
  if (options != nullptr) {
    options->Clear();
  }
}

void SKivGameDob::Serialize(IDobArchive& archive) {
  if (archive.IsReading()) {
    Clear();
    SetDirty(false);
  }
  TransferFields(archive);
}

void SKivGameDob::TransferFields(IDobArchive& archive) {
  archive.TransferString("FirstName", firstName);
  archive.TransferString("LastName", lastName);
  archive.TransferString("LongFileName", longFileName);
  archive.TransferBool("PublicFile", publicFile);
  if (options != nullptr) {
    options->Serialize(archive);
  }
}

void SKivGameDob::SetDirty(bool value) {
  SDob::SetDirty(value);
  if (!value && options != nullptr) {
    options->SetDirty(false);
  }
}

bool SKivGameDob::IsDirty() const {
  return dirty || (options != nullptr && options->IsDirty());
}

SDateTime SKivGameDob::GetModified() const {
  SDateTime highest = DirtyMark();
  if (options != nullptr) {
    Raise(highest, options->GetModified());
  }
  return highest;
}

bool SKivGameDob::HasDifferences() const {
  return options != nullptr && options->HasDifferences();
}

bool SKivGameDob::IsEqual(const SDob& other) const {
  return other.GetClassId() == StaticClassId() &&
         FieldsEqual(static_cast<const SKivGameDob&>(other));
}

bool SKivGameDob::FieldsEqual(const SKivGameDob& other) const {
  if (!fileSpec.IsEqual(other.fileSpec) || longFileName != other.longFileName ||
      firstName != other.firstName || lastName != other.lastName ||
      publicFile != other.publicFile) {
    return false;
  }
  if (options == nullptr || other.options == nullptr) {
    return options == other.options;
  }
  return options->IsEqual(*other.options);
}

void SKivGameDob::Copy(const SDob& other) {
  if (this == &other) {
    return;
  }
  const SKivGameDob* const same = AsRecord<SKivGameDob>(other);
  same != nullptr ? CopyFields(*same) : SDob::Copy(other);
}

void SKivGameDob::Merge(const SDob& other) {
  if (this == &other) {
    return;
  }
  const SKivGameDob* const same = AsRecord<SKivGameDob>(other);
  same != nullptr ? MergeFields(*same) : SDob::Merge(other);
}

void SKivGameDob::CopyFields(const SKivGameDob& other) {
  dirty = other.dirty;
  fileSpec = other.fileSpec;
  longFileName = other.longFileName;
  firstName = other.firstName;
  lastName = other.lastName;
  publicFile = other.publicFile;
  if (options != nullptr && other.options != nullptr) {
    options->Copy(*other.options);
  }
}

void SKivGameDob::MarkDifferences(const SDob& other) {
  if (this == &other) {
    return;
  }
  if (const SKivGameDob* const same = AsRecord<SKivGameDob>(other)) {
    MarkFields(*same);
  }
}

void SKivGameDob::MarkFields(const SKivGameDob& other) {
  if (options != nullptr) {
    options->MarkDifferences(other);
  }
}

void SKivGameDob::ClearStamps() {
  if (options != nullptr) {
    options->ClearStamps();
  }
}

void SKivGameDob::SetText(SString& text, const SString& value) {
  if (text != value) {
    text = value;
    SetDirty(true);
  }
}

SString SKivGameDob::GetFirstNameUpper() const {
  SString upper = firstName;
  upper.MakeUpper();
  return upper;
}

SString SKivGameDob::GetLastNameUpper() const {
  SString upper = lastName;
  upper.MakeUpper();
  return upper;
}

SString SKivGameDob::GetFullName() const {
  SString name = firstName;
  if (!lastName.IsEmpty()) {
    if (!firstName.IsEmpty()) {
      name += ' ';
    }
    name += lastName;
  }
  return name;
}

SString SKivGameDob::GetFullNameUpper() const {
  SString upper = GetFullName();
  upper.MakeUpper();
  return upper;
}

}  // namespace kivstore
