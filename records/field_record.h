// The operations of a record, from its field table (field_table.h).
//
//   class STOMissionDob : public SFieldRecord<STOMissionDob, SDob> { ... static ... Fields() ... };
//
// A class derived further names its base record; each operation then does the base's fields first.
// The record's own default constructor ends the set-up: ResetFields and SetDirty(false).
#pragma once

#include <concepts>
#include <cstdint>
#include <new>
#include <string_view>
#include <tuple>
#include <type_traits>

#include "records/field_table.h"

namespace kivstore {

// `other` as a Record if its class is Record's or derived from it, else null.
template <class Record>
const Record* AsRecord(const SDob& other) {
  // IsA asks for nothing but the class of what it is given.
  struct ClassProbe : SDob {
    ClassId GetClassId() const override { return Record::StaticClassId(); }
  };
  return other.GetClassId() == Record::StaticClassId() || other.IsA(ClassProbe())
             ? static_cast<const Record*>(&other)
             : nullptr;
}

template <class Record, class Base>
class SFieldRecord : public Base {
 public:
  using Base::Base;

  void Clear() override {
    ResetFields();
    Self().SetDirty(true);
  }

  void Serialize(IDobArchive& archive) override {
    if (archive.IsReading()) {
      if (TakeWhole(archive)) {
        return;
      }
      Self().Clear();
      Self().SetDirty(false);
    }
    TransferFields(archive);
  }

  void SetDirty(bool value) override {
    Base::SetDirty(value);
    if (value) {
      return;
    }
    EachField([this](const auto& field) { field.SetClean(Self()); });
  }

  bool IsDirty() const override {
    return Base::IsDirty() || AnyField([this](const auto& field) { return field.IsDirty(Self()); });
  }

  SDateTime GetModified() const override {
    SDateTime highest = Base::GetModified();
    EachField([&](const auto& field) { field.RaiseModified(Self(), highest); });
    return highest;
  }

  bool HasDifferences() const override {
    return Base::HasDifferences() ||
           AnyField([this](const auto& field) { return field.HasDifference(Self()); });
  }

  bool IsEqual(const SDob& other) const override {
    return other.GetClassId() == StaticClassId() && FieldsEqual(static_cast<const Record&>(other));
  }

  void Copy(const SDob& other) override {
    if (this == &other) {
      return;
    }
    const Record* const same = AsRecord<Record>(other);
    same != nullptr ? CopyFields(*same) : Base::Copy(other);
  }

  void Merge(const SDob& other) override {
    if (this == &other) {
      return;
    }
    const Record* const same = AsRecord<Record>(other);
    same != nullptr ? MergeFields(*same) : Base::Merge(other);
  }

  void MarkDifferences(const SDob& other) override {
    if (this == &other) {
      return;
    }
    if (const Record* const same = AsRecord<Record>(other)) {
      MarkFields(*same);
    }
  }

  void ClearStamps() override {
    Base::ClearStamps();
    EachField([this](const auto& field) { field.ClearStamp(Self()); });
  }

  SDob::ClassId GetClassId() const override { return StaticClassId(); }

  bool IsA(const SDob& other) const override {
    return other.GetClassId() == StaticClassId() || Base::IsA(other);
  }

  SDob* CreateNew() const override { return new (std::nothrow) Record; }

  static SDob::ClassId StaticClassId() {
    static char token;
    return &token;
  }

  // Reading without an archive, for records that are fields and nothing else. How many bytes the
  // record takes of those that stand behind the first `length`; false if it is to be read through
  // an archive.
  bool Measure(std::string_view bytes, int64_t& length) const {
    if constexpr (kIsDerived) {
      if (!Base::Measure(bytes, length)) {
        return false;
      }
    }
    return !AnyField([&](const auto& field) { return !field.Measure(Self(), bytes, length); });
  }
  // So many bytes, behind which `from` stands then. The record is clean.
  void Take(const uint8_t*& from) {
    if constexpr (kIsDerived) {
      Base::Take(from);
    }
    const uint8_t* at = from;  // a local of its own: one that no field can be
    EachField([&](const auto& field) { field.Take(Self(), at); });
    from = at;
    this->dirty = false;
  }

  // Changes an option as a person does: SetOption(&STeacherOptionsDob::VocabLevel, 3). A new value
  // takes the fresh mark; an equal one does so only where it closes a noted difference.
  template <class Owner, class T>
  requires std::derived_from<Record, Owner>
  void SetOption(SStamped<T> Owner::*option, std::type_identity_t<T> value) {
    if ((Self().*option).Set(value)) {
      this->SetDirty(true);
    }
  }

  // Calls function(key, SStamped<T>&) for every stamped field, in the order of the transfer, the
  // base record's first. T is int16_t, bool, or an array of bool. Who sets a field this way calls
  // SetDirty(true) if Set answers true.
  template <class Function>
  void ForEachField(Function&& function) {
    if constexpr (kIsDerived) {
      Base::ForEachField(function);
    }
    EachField([&](const auto& field) { field.VisitStamped(Self(), function); });
  }

 protected:
  // The work on the fields alone, without the tests that stand before it, for derived records.
  void ResetFields() {
    if constexpr (kIsDerived) {
      Base::ResetFields();
    }
    EachField([this](const auto& field) { field.Reset(Self()); });
  }

  void TransferFields(IDobArchive& archive) {
    if constexpr (kIsDerived) {
      Base::TransferFields(archive);
    }
    EachField([&](const auto& field) { field.Transfer(Self(), archive); });
  }

  bool FieldsEqual(const Record& other) const {
    if constexpr (kIsDerived) {
      if (!Base::FieldsEqual(other)) {
        return false;
      }
    }
    return !AnyField([&](const auto& field) { return !field.IsEqual(Self(), other); });
  }

  void CopyFields(const Record& other) {
    if constexpr (kIsDerived) {
      Base::CopyFields(other);
    } else {
      this->dirty = other.dirty;
    }
    EachField([&](const auto& field) { field.Copy(Self(), other); });
  }

  void MergeFields(const Record& other) {
    if constexpr (kIsDerived) {
      Base::MergeFields(other);
    } else {
      this->dirty = this->dirty || other.dirty;
    }
    EachField([&](const auto& field) { field.Merge(Self(), other); });
  }

  void MarkFields(const Record& other) {
    if constexpr (kIsDerived) {
      Base::MarkFields(other);
    }
    EachField([&](const auto& field) { field.MarkDifference(Self(), other); });
  }

 private:
  static constexpr bool kIsDerived = !std::is_same_v<Base, SDob>;
  static constexpr bool kTakesWhole = !kIsDerived || requires(Base & base, const uint8_t* from) {
    base.Take(from);
  };

  Record& Self() { return static_cast<Record&>(*this); }
  const Record& Self() const { return static_cast<const Record&>(*this); }

  bool TakeWhole(IDobArchive& archive) {
    if constexpr (kTakesWhole) {
      const std::string_view ready = archive.PeekReady();
      int64_t length = 0;
      if (!ready.empty() && this->GetClassId() == StaticClassId() && Measure(ready, length) &&
          length <= static_cast<int64_t>(ready.size())) {
        const uint8_t* from = archive.TakeReady(static_cast<int32_t>(length));
        Take(from);
        return true;
      }
    }
    return false;
  }

  template <class Function>
  static void EachField(Function function) {
    static constexpr auto kFields = Record::Fields();
    std::apply([&](const auto&... field) { (function(field), ...); }, kFields);
  }

  template <class Function>
  static bool AnyField(Function function) {
    static constexpr auto kFields = Record::Fields();
    return std::apply([&](const auto&... field) { return (function(field) || ...); }, kFields);
  }
};

}  // namespace kivstore
