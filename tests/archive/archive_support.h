// What the archive tests share: bytes at hand, specs into a temporary folder, and a small record.
#pragma once

#include <string>
#include <string_view>

#include "archive/dob.h"
#include "archive/stamped.h"
#include "archive/stream_memory.h"
#include "foundation/file_spec.h"
#include "foundation/platform/platform.h"
#include "tests/support/temp_folder.h"

namespace kivtest {

inline kivstore::SFileSpec SpecOf(const TempFolder& folder, const std::string& name) {
  return kivstore::SFileSpec(kivstore::SString(folder.Path(name).c_str()));
}

// What a stream holds from its start on.
inline std::string BytesOf(kivstore::SStreamSource& stream) {
  std::string bytes(static_cast<size_t>(stream.GetLength()), '\0');
  stream.Rewind();
  return stream.Read(bytes.data(), stream.GetLength(), false) ? bytes : "unreadable";
}

// 2001-02-03 04:05:06, where a TestClock starts, as a stamp.
inline constexpr uint32_t kTestNow = 0xB6A133F2;

// 20 bytes: Speed and its stamp, Sound and its stamp, Name with its NUL.
class SampleDob : public kivstore::SDob {
 public:
  SampleDob() {
    Reset();
    SampleDob::SetDirty(false);
  }

  void Clear() override;
  void Serialize(kivstore::IDobArchive& archive) override;
  void SetDirty(bool value) override;
  bool IsEqual(const SDob& other) const override;
  void Copy(const SDob& other) override;
  void Merge(const SDob& other) override;
  void ClearStamps() override;
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

  kivstore::SStamped<int16_t> Speed;
  kivstore::SStamped<bool> Sound;
  kivstore::SString Name;

 private:
  void Reset();
};

class DerivedSampleDob : public SampleDob {
 public:
  ClassId GetClassId() const override { return StaticClassId(); }
  bool IsA(const SDob& other) const override {
    return IsOneOf(other, {StaticClassId(), SampleDob::StaticClassId(), SDob::StaticClassId()});
  }
  SDob* CreateNew() const override { return new DerivedSampleDob; }
  static ClassId StaticClassId() {
    static char token;
    return &token;
  }
};

}  // namespace kivtest
