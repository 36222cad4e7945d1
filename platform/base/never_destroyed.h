// Room for a static object that outlives every other static: it is built as a constant and its
// destructor never runs.
#pragma once

namespace kivstore {

template <class T>
union NeverDestroyed {
  constexpr NeverDestroyed() : object() {}
  constexpr ~NeverDestroyed() {}
  T object;
};

}  // namespace kivstore
