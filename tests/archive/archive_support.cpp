#include "tests/archive/archive_support.h"

namespace kivtest {

using kivstore::SDateTime;

void SampleDob::Clear() {
  Speed = {.value = 10};
  Sound = {.value = true};
  Name.Empty();
  SetDirty(true);
}

void SampleDob::Serialize(kivstore::IDobArchive& archive) {
  if (archive.IsReading()) {
    Clear();
    SetDirty(false);
  }
  archive.TransferShort("Speed", Speed.value);
  archive.TransferTimeStamp("Speed", Speed.stamp);
  archive.TransferBool("Sound", Sound.value);
  archive.TransferTimeStamp("Sound", Sound.stamp);
  archive.TransferString("Name", Name);
}

void SampleDob::SetDirty(bool value) {
  SDob::SetDirty(value);
  if (!value) Speed.stamp = Sound.stamp = SDateTime::None();
}

bool SampleDob::IsEqual(const SDob& other) const {
  if (other.GetClassId() != StaticClassId()) return false;
  const auto& same = static_cast<const SampleDob&>(other);
  return Speed.value == same.Speed.value && Sound.value == same.Sound.value && Name == same.Name;
}

void SampleDob::Copy(const SDob& other) {
  SDob::Copy(other);
  if (!other.IsA(*this)) return;
  const auto& same = static_cast<const SampleDob&>(other);
  Speed = same.Speed;
  Sound = same.Sound;
  Name = same.Name;
}

void SampleDob::Merge(const SDob& other) {
  SDob::Merge(other);
  if (!other.IsA(*this)) return;
  const auto& same = static_cast<const SampleDob&>(other);
  Speed.Merge(same.Speed);
  Sound.Merge(same.Sound);
  Name = same.Name;
}

void SampleDob::ClearStamps() {
  Speed.ClearStamp();
  Sound.ClearStamp();
}

}  // namespace kivtest
