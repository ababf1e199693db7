// The image library's stride convention: 0 means a packed row and a negative
// stride means rows at decreasing addresses from the given pointer. Kernels
// normalise both cases to a positive stride from the lowest row.
#ifndef ZEL_CPP_CORE_NORMALISESTRIDE_H_
#define ZEL_CPP_CORE_NORMALISESTRIDE_H_

#include <cstddef>

#include "zel/cpp/core/wrap32.h"

namespace zel::cpp {

// How the offset (height - 1) x stride of a bottom-up image is formed: in
// full, or in 32 bits as the resize defines it (the same below 2 GiB).
enum class RowOffset { kExact, kWrap32 };

// `packed` is the stride of a packed row; `height` the image's rows.
// Strides count `P`s.
template <RowOffset offset = RowOffset::kExact, typename P>
void normaliseStride(P*& image, int& stride, int packed, int height) {
  if (stride == 0) {
    stride = packed;
  } else if (stride < 0) {
    if constexpr (offset == RowOffset::kWrap32) {
      image += mulWrap32(height - 1, stride);
    } else {
      image += static_cast<ptrdiff_t>(height - 1) * stride;
    }
    stride = negWrap32(stride);
  }
}

}  // namespace zel::cpp

#endif  // ZEL_CPP_CORE_NORMALISESTRIDE_H_
