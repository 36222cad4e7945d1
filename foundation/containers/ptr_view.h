// A list of pointers to objects of one type, which belong to somebody else: an SPtrArray with its
// type told. Whoever keeps one sees to it that the objects outlive their places in it.
//
// The one cast from the array's void* stands here. Indices must lie within the size.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <new>
#include <utility>

#include "foundation/containers/array.h"

namespace kivstore {

template <class T>
class SPtrView {
 public:
  // Walks the objects themselves, not the pointers.
  template <class Object>
  class Iterator {
   public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = Object;
    using difference_type = std::ptrdiff_t;
    using pointer = Object*;
    using reference = Object&;

    Iterator() = default;
    explicit Iterator(void* const* at) : at(at) {}
    Object& operator*() const { return *static_cast<Object*>(*at); }
    Object* operator->() const { return static_cast<Object*>(*at); }
    Iterator& operator++() {
      ++at;
      return *this;
    }
    Iterator operator++(int) { return Iterator(at++); }
    bool operator==(const Iterator&) const = default;

   private:
    void* const* at = nullptr;
  };

  int32_t GetSize() const { return pointers.GetSize(); }
  bool IsEmpty() const { return pointers.GetSize() == 0; }
  T* At(int32_t index) const { return static_cast<T*>(pointers[index]); }
  T& operator[](int32_t index) const { return *At(index); }
  template <class Object = T>
  Iterator<Object> begin() const {
    return Iterator<Object>(pointers.Data());
  }
  template <class Object = T>
  Iterator<Object> end() const {
    return Iterator<Object>(pointers.Data() + GetSize());
  }

  // False, with everything as it was, if there is no memory.
  bool Add(T* object) {
    const int32_t before = GetSize();
    pointers.Add(object);
    return GetSize() > before;
  }
  bool InsertAt(int32_t index, T* object) {
    const int32_t before = GetSize();
    pointers.InsertAt(index, object);
    return GetSize() > before;
  }
  // Room for `count` in all, so that adding up to there cannot fail.
  bool Reserve(int32_t count) { return pointers.Reserve(count); }

  void Set(int32_t index, T* object) { pointers[index] = object; }
  void RemoveAt(int32_t index, int32_t count = 1) { pointers.RemoveAt(index, count); }
  // Drops what stands at `size` and behind; the room is kept.
  void CutTo(int32_t size) { pointers.RemoveAt(size, GetSize() - size); }
  void RemoveAll() { pointers.RemoveAll(); }
  void Swap(SPtrView& other) { pointers.Swap(other.pointers); }

  // The place of this very object; -1 if it has none.
  int32_t Find(const T* object) const {
    void* const* const found = std::find(pointers.Data(), pointers.Data() + GetSize(), object);
    return found != pointers.Data() + GetSize() ? static_cast<int32_t>(found - pointers.Data())
                                                : -1;
  }

  // An order answers below, equal to or above 0 for two objects. Equal ones keep their places; a
  // list in order costs one pass.
  template <class Order>
  void Sort(Order order) {
    const auto isBelow = [&order](const void* a, const void* b) {
      return order(*static_cast<const T*>(a), *static_cast<const T*>(b)) < 0;
    };
    SortIfNeeded(pointers.Data(), pointers.Data() + GetSize(), isBelow);
  }

  // The same for an order that a number taken from each object nearly always decides: only objects
  // of equal numbers are compared. The numbers must ascend as the order does. `tell(object,
  // number)` is called for each in the order that they have then.
  template <class KeyOf, class Order, class Tell>
  void SortByKey(KeyOf keyOf, Order order, Tell tell);

  // Where `order(value, object)` is 0, in a list sorted by that order; -1 if nowhere.
  template <class Value, class Order>
  int32_t FindSorted(const Value& value, Order order) const;
  // In front of the first object that is not below the value; the objects are in this order.
  template <class Value, class Order>
  int32_t PlaceFor(const Value& value, Order order) const {
    int32_t low = 0, high = GetSize();
    while (low < high) {
      const int32_t middle = low + (high - low) / 2;
      if (order(value, (*this)[middle]) > 0) {
        low = middle + 1;
      } else {
        high = middle;
      }
    }
    return low;
  }

 private:
  template <class Element, class IsBelow>
  static bool SortIfNeeded(Element* begin, Element* end, IsBelow isBelow) {
    if (std::is_sorted(begin, end, isBelow)) {
      return false;
    }
    std::stable_sort(begin, end, isBelow);  // does without its buffer if there is no memory
    return true;
  }

  SPtrArray pointers;
};

template <class T>
template <class KeyOf, class Order, class Tell>
void SPtrView<T>::SortByKey(KeyOf keyOf, Order order, Tell tell) {
  struct Keyed {
    decltype(keyOf(std::declval<const T&>())) key;
    T* object;
  };
  const int32_t count = GetSize();
  const std::unique_ptr<Keyed[]> keyed(
      count > 1 ? new (std::nothrow) Keyed[static_cast<size_t>(count)] : nullptr);
  if (keyed == nullptr) {
    Sort(order);
    std::for_each(begin(), end(), [&](T& object) { tell(object, keyOf(object)); });
    return;
  }
  for (int32_t i = 0; i < count; ++i) {
    keyed[i] = {keyOf((*this)[i]), At(i)};
  }
  const auto isBelow = [&order](const Keyed& a, const Keyed& b) {
    return a.key != b.key ? a.key < b.key : order(*a.object, *b.object) < 0;
  };
  if (SortIfNeeded(keyed.get(), keyed.get() + count, isBelow)) {
    std::transform(keyed.get(), keyed.get() + count, pointers.Data(),
                   [](const Keyed& element) { return element.object; });
  }
  std::for_each(keyed.get(), keyed.get() + count,
                [&](const Keyed& element) { tell(*element.object, element.key); });
}

template <class T>
template <class Value, class Order>
int32_t SPtrView<T>::FindSorted(const Value& value, Order order) const {
  int32_t low = 0, high = GetSize();
  while (low < high) {
    const int32_t middle = low + (high - low) / 2;
    const int sign = order(value, (*this)[middle]);
    if (sign == 0) {
      return middle;
    }
    if (sign < 0) {
      high = middle;
    } else {
      low = middle + 1;
    }
  }
  return -1;
}

}  // namespace kivstore
