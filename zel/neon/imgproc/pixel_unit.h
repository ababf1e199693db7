// The unsigned integer exactly as wide as one pixel (all cn components).
// Resize kernels move a pixel as one lane or one scalar of this type, so an
// interleaved chroma pair is never split.
#ifndef ZEL_NEON_IMGPROC_PIXEL_UNIT_H_
#define ZEL_NEON_IMGPROC_PIXEL_UNIT_H_

#include <cstdint>

namespace zel::neon::imgproc::internal_resize_v00 {

template <int bytes>
struct PixelUnit;

template <>
struct PixelUnit<1> {
  using type = uint8_t;
};

template <>
struct PixelUnit<2> {
  using type = uint16_t;
};

template <>
struct PixelUnit<4> {
  using type = uint32_t;
};

template <typename T, int cn>
using PixelUnitOf = typename PixelUnit<cn* static_cast<int>(sizeof(T))>::type;

}  // namespace zel::neon::imgproc::internal_resize_v00

#endif  // ZEL_NEON_IMGPROC_PIXEL_UNIT_H_
