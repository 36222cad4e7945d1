// A list that owns its elements: what is added belongs to it, what is removed or stands in it at
// its end is destroyed, what is taken belongs to the taker. It is moved, never copied.
//
// Elements keep their addresses for life. What cannot be added for want of memory is destroyed and
// the list stays as it was. Indices must lie within the size.
//
// An order is anything that answers below, equal to or above 0 for two elements, such as
// `int (*)(const T&, const T&)`. Equal elements keep their order.
#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <utility>

#include "foundation/containers/ptr_view.h"

namespace kivstore {

template <class T>
class SOwningList {
 public:
  SOwningList() = default;
  ~SOwningList() { RemoveAll(); }
  SOwningList(SOwningList&& other) noexcept { elements.Swap(other.elements); }
  SOwningList& operator=(SOwningList&& other) noexcept {
    SOwningList moved(std::move(other));
    elements.Swap(moved.elements);
    return *this;
  }

  int32_t GetSize() const { return elements.GetSize(); }
  bool IsEmpty() const { return elements.IsEmpty(); }
  T* At(int32_t index) { return elements.At(index); }
  const T* At(int32_t index) const { return elements.At(index); }
  T& operator[](int32_t index) { return elements[index]; }
  const T& operator[](int32_t index) const { return elements[index]; }
  auto begin() { return elements.begin(); }
  auto end() { return elements.end(); }
  auto begin() const { return elements.template begin<const T>(); }
  auto end() const { return elements.template end<const T>(); }

  // Room for `count` elements in all, so that adding them one by one moves nothing; false if there
  // is no memory.
  bool Reserve(int32_t count) { return elements.Reserve(count); }
  // False, and nothing added, for a null element or if there is no memory.
  bool Add(std::unique_ptr<T> element) {
    return element != nullptr && elements.Add(element.get()) && Kept(element);
  }
  bool InsertAt(int32_t index, std::unique_ptr<T> element) {
    return element != nullptr && elements.InsertAt(index, element.get()) && Kept(element);
  }
  // All of the other list's elements, which is empty then; false, with both as they were, if there
  // is no memory. Nothing for the list itself.
  bool Append(SOwningList&& other);

  std::unique_ptr<T> Take(int32_t index) {
    std::unique_ptr<T> element(At(index));
    elements.RemoveAt(index);
    return element;
  }
  void RemoveAt(int32_t index) { Take(index); }
  void RemoveAll();
  // Removes the elements for which `isUnwanted` answers true, asked of each once and in order;
  // returns how many there were.
  template <class Pick>
  int32_t RemoveIf(Pick isUnwanted);
  // Moves those picked to the end of `target`, another list, both in their order; false, with both
  // as they were, if there is no memory.
  template <class Pick>
  bool MoveIf(SOwningList& target, Pick isWanted);

  template <class Order>
  void Sort(Order order) {
    elements.Sort(order);
  }
  // For an order that a number taken from each element nearly always decides, and along which the
  // numbers ascend. `tell(element, number)` is called for each in the order that they have then.
  template <class KeyOf, class Order, class Tell>
  void SortByKey(KeyOf keyOf, Order order, Tell tell) {
    elements.SortByKey(keyOf, order, tell);
  }
  template <class KeyOf, class Order>
  void SortByKey(KeyOf keyOf, Order order) {
    SortByKey(keyOf, order, [](const T&, auto) {});
  }
  // A binary search of a list sorted by this order; -1 if no element equals the value.
  template <class Value, class Order>
  int32_t FindSorted(const Value& value, Order order) const {
    return elements.FindSorted(value, order);
  }
  // In front of the first element that is not below it; returns the index, -1 for a null element
  // or if there is no memory.
  template <class Order>
  int32_t InsertSorted(std::unique_ptr<T> element, Order order) {
    const int32_t place = element != nullptr ? elements.PlaceFor(*element, order) : 0;
    return InsertAt(place, std::move(element)) ? place : -1;
  }

 private:
  static bool Kept(std::unique_ptr<T>& element) {
    element.release();
    return true;
  }

  SPtrView<T> elements;
};

template <class T>
void SOwningList<T>::RemoveAll() {
  for (T& element : elements) {
    delete &element;
  }
  elements.RemoveAll();
}

template <class T>
bool SOwningList<T>::Append(SOwningList&& other) {
  return &other == this || other.MoveIf(*this, [](const T&) { return true; });
}

template <class T>
template <class Pick>
int32_t SOwningList<T>::RemoveIf(Pick isUnwanted) {
  const int32_t count = GetSize();
  int32_t kept = 0;
  for (int32_t i = 0; i < count; ++i) {
    T* const element = elements.At(i);
    if (isUnwanted(std::as_const(*element))) {
      delete element;
    } else {
      elements.Set(kept++, element);
    }
  }
  elements.CutTo(kept);
  return count - kept;
}

template <class T>
template <class Pick>
bool SOwningList<T>::MoveIf(SOwningList& target, Pick isWanted) {
  const int32_t count = GetSize();
  if (count > std::numeric_limits<int32_t>::max() - target.GetSize() ||
      !target.Reserve(target.GetSize() + count)) {
    return false;
  }
  int32_t kept = 0;
  for (int32_t i = 0; i < count; ++i) {
    T* const element = elements.At(i);
    if (isWanted(std::as_const(*element))) {
      target.elements.Add(element);
    } else {
      elements.Set(kept++, element);
    }
  }
  elements.CutTo(kept);
  return true;
}

}  // namespace kivstore
