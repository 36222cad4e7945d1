#include "foundation/containers/array.h"

#include "foundation/containers/array_inl.h"

namespace kivstore {

template class SArray<uint32_t>;
template class SArray<int16_t>;
template class SArray<int32_t>;
template class SArray<double>;
template class SArray<void*>;
template class SArray<bool>;

}  // namespace kivstore
