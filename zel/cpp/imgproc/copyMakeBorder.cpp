#include "zel/cpp/imgproc/copyMakeBorder.h"

#include <cstdint>
#include <cstring>
#include <memory>

#include "zel/cpp/core/wrap32.h"

namespace zel::cpp::imgproc {
namespace internal_copyMakeBorder_v01 {

template <typename T, int cn, int elemSize, BorderType borderType>
int copyMakeBorder_v01_impl(const T*, T* dst, size_t srcWidth, size_t srcHeight,
                            size_t dstWidth, size_t, size_t, size_t dstStride,
                            size_t top, size_t bottom, size_t left,
                            size_t right, const T* value) {
  static_assert(elemSize == 1, "sizes count elements of T; nothing else built");
  static_assert(borderType == BORDER_CONSTANT, "only a constant border exists");

  // Every frame piece is a block copy from one template row, found through a
  // table of template rows that a constant border fills with a single entry.
  // Declared row first, so the row is released if the table cannot be had.
  const size_t rowElems = dstWidth * cn;
  std::unique_ptr<T[]> row(new T[rowElems]());
  std::unique_ptr<T*[]> rows(new T*[1]);
  rows[0] = row.get();
  if (value != nullptr) {
    for (size_t x = 0; x < dstWidth; ++x) {
      for (int c = 0; c < cn; ++c) {
        row[x * cn + c] = value[c];
      }
    }
  }

  // Row offsets and the right piece's column are 32-bit products, as in the
  // rest of the library's destination arithmetic.
  const int32_t stride = static_cast<int32_t>(dstStride);
  auto rowStart = [&](size_t r) {
    return dst + mulWrap32(static_cast<int32_t>(r), stride);
  };
  const int32_t rightColumn =
      mulWrap32(static_cast<int32_t>(left + srcWidth), cn);
  const T* fill = rows[0];

  for (size_t r = 0; r < top; ++r) {
    std::memcpy(rowStart(r), fill, rowElems * sizeof(T));
  }
  for (size_t r = top; r < top + srcHeight; ++r) {
    std::memcpy(rowStart(r), fill, left * cn * sizeof(T));
    std::memcpy(rowStart(r) + rightColumn, fill, right * cn * sizeof(T));
  }
  for (size_t r = top + srcHeight; r < top + srcHeight + bottom; ++r) {
    std::memcpy(rowStart(r), fill, rowElems * sizeof(T));
  }
  return 0;
}

template int copyMakeBorder_v01_impl<unsigned char, 3, 1, BORDER_CONSTANT>(
    const unsigned char*, unsigned char*, size_t, size_t, size_t, size_t,
    size_t, size_t, size_t, size_t, size_t, size_t, const unsigned char*);

}  // namespace internal_copyMakeBorder_v01

template int copyMakeBorder_v01<unsigned char, 3, 1, BORDER_CONSTANT>(
    const unsigned char*, unsigned char*, int, int, int, int, int, int, int,
    int, const unsigned char*);

}  // namespace zel::cpp::imgproc
