#include "zel/cpp/memory/copyRect.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "base/status.h"
#include "zel/cpp/core/normaliseStride.h"
#include "zel/cpp/core/wrap32.h"

namespace zel::cpp::memory {

template <typename T>
int copyRect_v00(const T* src, T* dst, int width, int height, int srcStride,
                 int dstStride, int srcCol, int srcRow, int dstCol,
                 int dstRow) {
  if (src == nullptr || dst == nullptr) {
    return pavona::kStatusInvalidArgument;
  }
  if (height < 1) {
    return 0;
  }
  normaliseStride(src, srcStride, width, height);
  normaliseStride(dst, dstStride, width, height);

  // The destination offset is a 32-bit product by definition; it wraps only
  // beyond 2 GiB, where the source side's 64-bit product would not.
  const T* from = src + static_cast<int64_t>(srcStride) * srcRow + srcCol;
  T* to = dst + mulWrap32(dstStride, dstRow) + dstCol;
  const size_t rowBytes = static_cast<size_t>(width) * sizeof(T);
  auto srcRowAt = [&](int i) {
    return from + static_cast<ptrdiff_t>(i) * srcStride;
  };
  auto dstRowAt = [&](int i) {
    return to + static_cast<ptrdiff_t>(i) * dstStride;
  };

  if (from == to) {
    // Rows of one image restrided in place: walk away from the rows still
    // to be read.
    if (srcStride > dstStride) {
      for (int i = 0; i < height; ++i) {
        std::memmove(dstRowAt(i), srcRowAt(i), rowBytes);
      }
    } else if (srcStride < dstStride) {
      for (int i = height - 1; i >= 0; --i) {
        std::memmove(dstRowAt(i), srcRowAt(i), rowBytes);
      }
    }
    return 0;
  }

  const uintptr_t srcLow = reinterpret_cast<uintptr_t>(from);
  const uintptr_t srcHigh = reinterpret_cast<uintptr_t>(srcRowAt(height));
  const uintptr_t dstLow = reinterpret_cast<uintptr_t>(to);
  const uintptr_t dstHigh = reinterpret_cast<uintptr_t>(dstRowAt(height));
  const bool overlap = srcLow < dstHigh && srcHigh > dstLow;
  const bool contiguous = srcStride == width && dstStride == width;
  const size_t blockBytes = rowBytes * static_cast<size_t>(height);

  if (overlap && contiguous) {
    std::memmove(to, from, blockBytes);
  } else if (overlap) {
    if (srcLow >= dstLow) {
      for (int i = 0; i < height; ++i) {
        std::memmove(dstRowAt(i), srcRowAt(i), rowBytes);
      }
    } else {
      for (int i = height - 1; i >= 0; --i) {
        std::memmove(dstRowAt(i), srcRowAt(i), rowBytes);
      }
    }
  } else if (contiguous) {
    std::memcpy(to, from, blockBytes);
  } else {
    for (int i = 0; i < height; ++i) {
      std::memcpy(dstRowAt(i), srcRowAt(i), rowBytes);
    }
  }
  return 0;
}

template int copyRect_v00<unsigned char>(const unsigned char*, unsigned char*,
                                         int, int, int, int, int, int, int,
                                         int);

}  // namespace zel::cpp::memory
