// What the archive tests share: bytes at hand, a file in a temporary folder, and a small record.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "archive/dob.h"
#include "archive/stamped.h"
#include "archive/stream_string.h"
#include "foundation/files/file_spec.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_clock.h"

namespace kivtest {

// What a stream holds from its start on.
inline std::string BytesOf(kivstore::SStreamSource& stream) {
  std::string bytes(static_cast<size_t>(stream.GetLength()), '\0');
  stream.Rewind();
  return stream.Read(bytes.data(), stream.GetLength(), false) ? bytes : "unreadable";
}

// Files in a folder, "f" where there is one only, under a clock that stands still.
class FileTest : public testing::Test {
 protected:
  kivstore::SFileSpec SpecOf(const std::string& name) const {
    return kivstore::SFileSpec(kivstore::SString(folder.Path(name).c_str()));
  }
  kivstore::SFileSpec FileOf(const std::string& bytes, const char* name = "f") const {
    folder.WriteFile(name, bytes);
    return SpecOf(name);
  }
  std::string Stored(const char* name = "f") const { return folder.ReadFile(name); }

  TempFolder folder;
  TestClock clock;
};

// 2001-02-03 04:05:06, where a TestClock starts, as a stamp.
inline constexpr uint32_t kTestNow = 0xB6A133F2;

// 20 bytes: Speed and its stamp, Sound and its stamp, Name with its NUL.
class SampleDob : public kivstore::SDob {
 public:
  void Clear() override {
    Speed = {.value = 10};
    Sound = {.value = true};
    Name.Empty();
    SetDirty(true);
  }
  void Serialize(kivstore::IDobArchive& archive) override {
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
  void SetDirty(bool value) override {
    SDob::SetDirty(value);
    if (!value) Speed.stamp = Sound.stamp = kivstore::SDateTime::None();
  }
  bool IsEqual(const SDob& other) const override {
    if (other.GetClassId() != StaticClassId()) return false;
    const auto& same = static_cast<const SampleDob&>(other);
    return Speed.value == same.Speed.value && Sound.value == same.Sound.value && Name == same.Name;
  }
  void Copy(const SDob& other) override {
    SDob::Copy(other);
    if (!other.IsA(*this)) return;
    const auto& same = static_cast<const SampleDob&>(other);
    Speed = same.Speed;
    Sound = same.Sound;
    Name = same.Name;
  }
  void Merge(const SDob& other) override {
    SDob::Merge(other);
    if (!other.IsA(*this)) return;
    const auto& same = static_cast<const SampleDob&>(other);
    Speed.Merge(same.Speed);
    Sound.Merge(same.Sound);
    Name = same.Name;
  }
  void ClearStamps() override {
    Speed.ClearStamp();
    Sound.ClearStamp();
  }
  ClassId GetClassId() const override { return StaticClassId(); }
  bool IsA(const SDob& other) const override {
    return IsOneOf(other, {StaticClassId(), SDob::StaticClassId()});
  }
  SDob* CreateNew() const override { return new SampleDob; }
  uint32_t GetVersion() const override { return 0x00010000; }
  static ClassId StaticClassId() {
    static char token;
    return &token;
  }

  void SetSpeed(int16_t speed) { SetDirty(Speed.Set(speed) || dirty); }
  void SetSound(bool sound) { SetDirty(Sound.Set(sound) || dirty); }

  kivstore::SStamped<int16_t> Speed{.value = 10};
  kivstore::SStamped<bool> Sound{.value = true};
  kivstore::SString Name;
};

}  // namespace kivtest
