// Frames an image with a constant border: the kernel that paints the frame
// round an interior, and the operation that copies an image into the middle
// of a larger one and frames it.
//
// T is the element type, cn the interleaved channels a pixel, elemSize the
// unit the sizes count (only 1, elements of T, is built) and borderType the
// fill rule (only BORDER_CONSTANT exists).
#ifndef ZEL_CPP_IMGPROC_COPYMAKEBORDER_H_
#define ZEL_CPP_IMGPROC_COPYMAKEBORDER_H_

#include <cstddef>

#include "base/export.h"
#include "zel/cpp/core/normaliseStride.h"
#include "zel/cpp/memory/copyRect.h"
#include "zel/types.h"

namespace zel::cpp::imgproc {
namespace internal_copyMakeBorder_v01 {

// Paints `top` rows above and `bottom` rows below the srcWidth x srcHeight
// interior of `dst`, and `left` and `right` pixels beside each interior row,
// in colour `value` (cn elements; null paints zeros). Never reads `src` and
// never writes the interior. dstWidth is srcWidth + left + right; dstStride
// counts elements and must be positive. Always returns 0.
template <typename T, int cn, int elemSize, BorderType borderType>
PAVONA_EXPORT int copyMakeBorder_v01_impl(const T* src, T* dst, size_t srcWidth,
                                          size_t srcHeight, size_t dstWidth,
                                          size_t dstHeight, size_t srcStride,
                                          size_t dstStride, size_t top,
                                          size_t bottom, size_t left,
                                          size_t right, const T* value);

}  // namespace internal_copyMakeBorder_v01

// Copies the srcWidth x srcHeight image `src` into `dst` at pixel (left,
// top) and frames it; `dst` is (srcWidth + left + right) x (srcHeight + top
// + bottom) pixels. Strides count elements, 0 meaning packed and negative
// meaning rows at decreasing addresses. Returns copyRect_v00's status if it
// fails (the frame is then not painted), else the kernel's 0.
template <typename T, int cn, int elemSize, BorderType borderType>
PAVONA_EXPORT int copyMakeBorder_v01(const T* src, T* dst, int srcWidth,
                                     int srcHeight, int srcStride,
                                     int dstStride, int top, int bottom,
                                     int left, int right, const T* value) {
  const int dstWidth = srcWidth + left + right;
  const int dstHeight = srcHeight + top + bottom;
  normaliseStride(src, srcStride, srcWidth * cn, srcHeight);
  normaliseStride(dst, dstStride, dstWidth * cn, dstHeight);
  const int status =
      memory::copyRect_v00<T>(src, dst, srcWidth * cn, srcHeight, srcStride,
                              dstStride, 0, 0, left * cn, top);
  if (status != 0) {
    return status;
  }
  // Sizes reach the kernel sign-extended, as a 64-bit caller would pass them.
  auto size = [](int v) { return static_cast<size_t>(v); };
  return internal_copyMakeBorder_v01::copyMakeBorder_v01_impl<T, cn, elemSize,
                                                              borderType>(
      src, dst, size(srcWidth), size(srcHeight), size(dstWidth),
      size(dstHeight), size(srcStride), size(dstStride), size(top),
      size(bottom), size(left), size(right), value);
}

namespace internal_copyMakeBorder_v01 {
extern template int
copyMakeBorder_v01_impl<unsigned char, 3, 1, BORDER_CONSTANT>(
    const unsigned char*, unsigned char*, size_t, size_t, size_t, size_t,
    size_t, size_t, size_t, size_t, size_t, size_t, const unsigned char*);
}  // namespace internal_copyMakeBorder_v01

extern template int copyMakeBorder_v01<unsigned char, 3, 1, BORDER_CONSTANT>(
    const unsigned char*, unsigned char*, int, int, int, int, int, int, int,
    int, const unsigned char*);

}  // namespace zel::cpp::imgproc

#endif  // ZEL_CPP_IMGPROC_COPYMAKEBORDER_H_
