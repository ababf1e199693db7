// YUV 4:2:0 semi-planar (NV21, NV12, 10-bit) to packed float RGB, one triple
// a pixel, in the units of the sample depth (0..255 or 0..1023).
//
// T is the sample type of both planes, uFirst says the chroma pairs are
// stored U then V (NV12 and 10-bit) rather than V then U (NV21), bits is the
// sample depth and shift is always 0. All strides are in bytes.
#ifndef PAVONA_COLORCONV_NV21_TO_RGB_H_
#define PAVONA_COLORCONV_NV21_TO_RGB_H_

#include <cstdint>
#include <type_traits>

#include "base/export.h"
#include "zel/cpp/core/wrap32.h"

namespace pavona {

// The result type of every conversion: int for the sample types and depths
// that exist (8-bit samples in bytes or 16-bit words, 10-bit samples in
// 16-bit words); any other combination fails to compile.
template <typename T, int bits>
using ConversionResult = typename std::enable_if<
    ((std::is_same<T, unsigned char>::value && bits == 8) ||
     (std::is_same<T, unsigned short>::value && bits == 8)) ||
        (std::is_same<T, unsigned short>::value && bits == 10),
    int>::type;

namespace internal {

// Converts whole 2x2 blocks and trusts its arguments: width and height must
// be even. Always returns 0.
template <typename T, bool uFirst, int bits, int shift>
PAVONA_EXPORT ConversionResult<T, bits> nv21_to_rgb_impl(
    const T* srcY, const T* srcUV, float* dstRGB, int width, int height,
    int srcYStride, int srcUVStride, int dstStride);

// The same conversion one 2x2 block at a time in plain C++: the reference
// that the vector kernel must match bit for bit.
template <typename T, bool uFirst, int bits, int shift>
ConversionResult<T, bits> nv21_to_rgb_impl_C(const T* srcY, const T* srcUV,
                                             float* dstRGB, int width,
                                             int height, int srcYStride,
                                             int srcUVStride, int dstStride);

}  // namespace internal

// Validates, rounds the size down to even and converts. Returns -1 when a
// precondition fails, else the kernel's 0. An odd last row or column is left
// unconverted and its output untouched.
template <typename T, bool uFirst, int bits, int shift>
PAVONA_EXPORT ConversionResult<T, bits> nv21_to_rgb(
    const T* srcY, const T* srcUV, float* dstRGB, int width, int height,
    int srcYStride, int srcUVStride, int dstStride) {
  if (dstRGB == nullptr || srcY == nullptr || srcUV == nullptr) {
    return -1;
  }
  // Floats compared with bytes, looser than the 12 bytes a pixel needs; the
  // strides this accepts are part of the entry's contract, so it stays.
  if (zel::cpp::mulWrap32(3, width) > dstStride) {
    return -1;
  }
  if (width < 1 || height < 1) {
    return -1;
  }
  // Samples compared with bytes, equally loose for 16-bit samples.
  if (srcYStride < width) {
    return -1;
  }
  return internal::nv21_to_rgb_impl<T, uFirst, bits, shift>(
      srcY, srcUV, dstRGB, width & ~1, height & ~1, srcYStride, srcUVStride,
      dstStride);
}

namespace internal {
extern template int nv21_to_rgb_impl<uint8_t, false, 8, 0>(const uint8_t*,
                                                           const uint8_t*,
                                                           float*, int, int,
                                                           int, int, int);
extern template int nv21_to_rgb_impl<uint8_t, true, 8, 0>(const uint8_t*,
                                                          const uint8_t*,
                                                          float*, int, int, int,
                                                          int, int);
extern template int nv21_to_rgb_impl<uint16_t, true, 10, 0>(const uint16_t*,
                                                            const uint16_t*,
                                                            float*, int, int,
                                                            int, int, int);
extern template int nv21_to_rgb_impl_C<uint8_t, false, 8, 0>(const uint8_t*,
                                                             const uint8_t*,
                                                             float*, int, int,
                                                             int, int, int);
extern template int nv21_to_rgb_impl_C<uint8_t, true, 8, 0>(const uint8_t*,
                                                            const uint8_t*,
                                                            float*, int, int,
                                                            int, int, int);
extern template int nv21_to_rgb_impl_C<uint16_t, true, 10, 0>(const uint16_t*,
                                                              const uint16_t*,
                                                              float*, int, int,
                                                              int, int, int);
}  // namespace internal

extern template int nv21_to_rgb<uint8_t, false, 8, 0>(const uint8_t*,
                                                      const uint8_t*, float*,
                                                      int, int, int, int, int);
extern template int nv21_to_rgb<uint8_t, true, 8, 0>(const uint8_t*,
                                                     const uint8_t*, float*,
                                                     int, int, int, int, int);
extern template int nv21_to_rgb<uint16_t, true, 10, 0>(const uint16_t*,
                                                       const uint16_t*, float*,
                                                       int, int, int, int, int);

}  // namespace pavona

#endif  // PAVONA_COLORCONV_NV21_TO_RGB_H_
