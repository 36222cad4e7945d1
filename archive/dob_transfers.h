// The typed transfers of an archive, told once for all forms of storage.
//
// A form derives from SDobTransfers<Form> and says what one field of each type becomes there:
//
//   bool TransferField(const char* name, T& value);   // T: every type of IDobArchive but blobs
//
// Its source file instantiates SDobTransfers<Form> behind these bodies.
#pragma once

#include "archive/dob_archive.h"

namespace kivstore {

template <class Form>
class SDobTransfers : public IDobArchive {
 public:
  bool TransferDateTime(const char* name, SDateTime& v) final { return Field(name, v); }
  bool TransferRect(const char* name, SRect& v) final { return Field(name, v); }
  bool TransferSize(const char* name, SSize& v) final { return Field(name, v); }
  bool TransferPoint(const char* name, SPoint& v) final { return Field(name, v); }
  bool TransferString(const char* name, SString& v) final { return Field(name, v); }
  bool TransferDouble(const char* name, double& v) final { return Field(name, v); }
  bool TransferULong(const char* name, uint32_t& v) final { return Field(name, v); }
  bool TransferLong(const char* name, int32_t& v) final { return Field(name, v); }
  bool TransferUShort(const char* name, uint16_t& v) final { return Field(name, v); }
  bool TransferShort(const char* name, int16_t& v) final { return Field(name, v); }
  bool TransferUChar(const char* name, uint8_t& v) final { return Field(name, v); }
  bool TransferChar(const char* name, char& v) final { return Field(name, v); }
  bool TransferBool(const char* name, bool& v) final { return Field(name, v); }
  // Reading into a stamp that holds the fresh mark leaves it: what the file says was overtaken
  // here.
  bool TransferTimeStamp(const char* name, SDateTime& stamp) final {
    Form& form = static_cast<Form&>(*this);
    if (name != nullptr) {
      form.PushKey(name);
    }
    const bool transferred = form.TransferField("ts", stamp.IsFresh() ? now : stamp);
    if (name != nullptr) {
      form.PopKey();
    }
    return transferred;
  }

 protected:
  explicit SDobTransfers(SDateTime now) : now(now) {}
  ~SDobTransfers() = default;

 private:
  template <class T>
  bool Field(const char* name, T& value) {
    return static_cast<Form*>(this)->TransferField(name, value);
  }

  SDateTime now;  // goes out in place of the fresh mark
};

}  // namespace kivstore
