// How a record tells its fields: once, in one table, from which all its operations follow.
//
// A record class lists its fields in the order of the transfer, which is the file format:
//
//   static constexpr auto Fields() {
//     using R = STOMissionDob;
//     return std::tuple(StampedField(&R::Notebook, "Notebook", 2), ...);
//   }
//
// and derives from SFieldRecord (field_record.h), which walks the table in every operation. The
// walks are folds over a constant tuple: the compiler sees plain straight code for each field.
//
//   StampedField   takes part in merging: value, stamp and difference flag (SStamped)
//   PlainField     no stamp: copied and merged whole
//   ChildField     a member that is a record itself, or has a record's operations
//
// The value of the first two is a number, a bool, or an array, whose default is an ArrayDefault. A
// record with a field of another kind writes a descriptor of its own with the same operations, on
// top of FieldOperations, which does nothing.
//
// A record in the binary form mostly lies ready in a buffer. Then it is read without an archive:
// each field adds to the record's length (Measure), and if there is as much, takes its part (Take),
// which is Reset and reading in one.
#pragma once

#include <cstdint>
#include <string_view>
#include <type_traits>

#include "archive/dob.h"
#include "archive/dob_archive.h"
#include "archive/stamped.h"
#include "archive/stored_form.h"
#include "records/handle_array.h"

namespace kivstore {

template <class T>
struct ArrayDefault {
  int16_t length;
  T fill;
};

// What values and arrays do differently.
template <class T>
struct FieldValue {
  using Initial = T;
  static void Reset(T& value, Initial initial) { value = initial; }
  static void Transfer(IDobArchive& archive, const char* key, T& value) {
    kivstore::Transfer(archive, key, value);
  }
  static bool Measure(std::string_view, int64_t& length) {
    static_assert(kStoredWidth<T> > 0);
    length += kStoredWidth<T>;
    return true;
  }
  static void Take(T& value, const uint8_t*& from, Initial) { TakeStored(from, value); }
};

template <class T>
struct FieldValue<SHandleArray<T>> {
  using Initial = ArrayDefault<T>;
  static void Reset(SHandleArray<T>& array, Initial initial) {
    array.SetFill(initial.fill);
    array.ResetTo(initial.length);
  }
  static void Transfer(IDobArchive& archive, const char* key, SHandleArray<T>& array) {
    array.Transfer(archive, key);
  }
  static bool Measure(std::string_view bytes, int64_t& length) {
    return SHandleArray<T>::Measure(bytes, length);
  }
  static void Take(SHandleArray<T>& array, const uint8_t*& from, Initial initial) {
    array.SetFill(initial.fill);
    array.Take(from);
  }
};

// Those operations of a descriptor that not every kind of field has.
struct FieldOperations {
  template <class Record>
  void MarkDifference(Record&, const Record&) const {}
  template <class Record>
  bool HasDifference(const Record&) const {
    return false;
  }
  template <class Record>
  void RaiseModified(const Record&, SDateTime&) const {}
  template <class Record>
  void ClearStamp(Record&) const {}
  template <class Record>
  void SetClean(Record&) const {}
  template <class Record>
  bool IsDirty(const Record&) const {
    return false;
  }
  template <class Record, class Function>
  void VisitStamped(Record&, Function&) const {}
};

inline void Raise(SDateTime& highest, SDateTime other) {
  if (highest < other) {
    highest = other;
  }
}

template <class Record, class T>
struct StampedField : FieldOperations {
  using Initial = typename FieldValue<T>::Initial;
  constexpr StampedField(SStamped<T> Record::*member, const char* key, Initial initial)
      : member(member), key(key), initial(initial) {}

  void Reset(Record& r) const {
    SStamped<T>& field = r.*member;
    FieldValue<T>::Reset(field.value, initial);
    field.stamp = SDateTime::None();
    field.differs = false;
  }
  void Transfer(Record& r, IDobArchive& archive) const {
    FieldValue<T>::Transfer(archive, key, (r.*member).value);
    archive.TransferTimeStamp(key, (r.*member).stamp);
  }
  // False if the record cannot be taken like that. `bytes` begin with the record, of which
  // `length` are ahead of the field.
  bool Measure(const Record&, std::string_view bytes, int64_t& length) const {
    const bool isKnown = FieldValue<T>::Measure(bytes, length);
    length += kStoredWidth<SDateTime>;
    return isKnown;
  }
  void Take(Record& r, const uint8_t*& from) const {
    SStamped<T>& field = r.*member;
    FieldValue<T>::Take(field.value, from, initial);
    TakeStored(from, field.stamp);
    field.differs = false;
  }
  bool IsEqual(const Record& a, const Record& b) const {
    return (a.*member).value == (b.*member).value;
  }
  void Copy(Record& r, const Record& other) const { r.*member = other.*member; }
  void Merge(Record& r, const Record& other) const { (r.*member).Merge(other.*member); }
  void MarkDifference(Record& r, const Record& other) const {
    (r.*member).MarkDifference(other.*member);
  }
  bool HasDifference(const Record& r) const { return (r.*member).differs; }
  void RaiseModified(const Record& r, SDateTime& highest) const {
    Raise(highest, (r.*member).stamp);
  }
  void ClearStamp(Record& r) const { (r.*member).ClearStamp(); }
  void SetClean(Record& r) const { (r.*member).stamp = SDateTime::None(); }
  template <class Function>
  void VisitStamped(Record& r, Function& function) const {
    function(key, r.*member);
  }

  SStamped<T> Record::*member;
  const char* key;
  Initial initial;
};

template <class Record, class T>
StampedField(SStamped<T> Record::*, const char*, typename FieldValue<T>::Initial)
    -> StampedField<Record, T>;

template <class Record, class T>
struct PlainField : FieldOperations {
  using Initial = typename FieldValue<T>::Initial;
  constexpr PlainField(T Record::*member, const char* key, Initial initial)
      : member(member), key(key), initial(initial) {}

  void Reset(Record& r) const { FieldValue<T>::Reset(r.*member, initial); }
  void Transfer(Record& r, IDobArchive& archive) const {
    FieldValue<T>::Transfer(archive, key, r.*member);
  }
  bool Measure(const Record&, std::string_view bytes, int64_t& length) const {
    return FieldValue<T>::Measure(bytes, length);
  }
  void Take(Record& r, const uint8_t*& from) const {
    FieldValue<T>::Take(r.*member, from, initial);
  }
  bool IsEqual(const Record& a, const Record& b) const { return a.*member == b.*member; }
  void Copy(Record& r, const Record& other) const { r.*member = other.*member; }
  void Merge(Record& r, const Record& other) const { r.*member = other.*member; }

  T Record::*member;
  const char* key;
  Initial initial;
};

template <class Record, class T>
PlainField(T Record::*, const char*, typename FieldValue<T>::Initial) -> PlainField<Record, T>;

template <class Record, class Child>
struct ChildField : FieldOperations {
  // Without a section the child names its own.
  constexpr explicit ChildField(Child Record::*member, const char* section = nullptr)
      : member(member), section(section) {}

  void Reset(Record& r) const { (r.*member).Clear(); }
  void Transfer(Record& r, IDobArchive& archive) const {
    if (section != nullptr) {
      archive.PushSection(section);
    }
    (r.*member).Serialize(archive);
    if (section != nullptr) {
      archive.PopSection();
    }
  }
  bool Measure(const Record& r, std::string_view bytes, int64_t& length) const {
    return (r.*member).Measure(bytes, length);
  }
  void Take(Record& r, const uint8_t*& from) const { (r.*member).Take(from); }
  bool IsEqual(const Record& a, const Record& b) const { return (a.*member).IsEqual(b.*member); }
  void Copy(Record& r, const Record& other) const { (r.*member).Copy(other.*member); }
  void Merge(Record& r, const Record& other) const { (r.*member).Merge(other.*member); }
  void MarkDifference(Record& r, const Record& other) const {
    (r.*member).MarkDifferences(other.*member);
  }
  bool HasDifference(const Record& r) const { return (r.*member).HasDifferences(); }
  void RaiseModified(const Record& r, SDateTime& highest) const {
    Raise(highest, (r.*member).GetModified());
  }
  void ClearStamp(Record& r) const { (r.*member).ClearStamps(); }
  void SetClean(Record& r) const { (r.*member).SetDirty(false); }
  bool IsDirty(const Record& r) const { return (r.*member).IsDirty(); }

  Child Record::*member;
  const char* section;
};

}  // namespace kivstore
