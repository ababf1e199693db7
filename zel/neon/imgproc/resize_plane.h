// Nearest-neighbour resize of one plane of cn-component pixels:
//   dst(x, y) = src(trunc(x × scaleX), trunc(y × scaleY)),
//   scaleX = srcWidth / dstWidth, scaleY = srcHeight / dstHeight (float).
// Exact ratios 2, 3 and 4 either way take whole-vector strided copies;
// other ratios take the byte-lookup kernel when the source row is at least
// B × R pixels wide (R = ceil(scaleX) <= Rmax, B = 16 / sizeof(T),
// Rmax = 16 / (cn × sizeof(T)): a span of 16 R pixels is at most 256 bytes),
// else a scalar table walk. Exact enlargements write whole destination
// strides (repeated rows are block copies of the stride); no path reads past
// a source row's last pixel.
#ifndef ZEL_NEON_IMGPROC_RESIZE_PLANE_H_
#define ZEL_NEON_IMGPROC_RESIZE_PLANE_H_

#include <array>
#include <cmath>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "base/export.h"
#include "zel/neon/imgproc/pixel_unit.h"
#include "zel/neon/imgproc/resize_nearest_exact.h"
#include "zel/neon/imgproc/resize_nearest_flex.h"
#include "zel/neon/imgproc/resize_nearest_general.h"
#include "zel/neon/imgproc/resize_nearest_upscale.h"
#include "zel/types.h"

namespace zel::neon::imgproc::internal_resize_v00 {

template <typename T, int cn, int reserved, InterpMode mode, typename WorkType,
          int shift, bool isChroma>
struct PAVONA_EXPORT Resize_v00 {
  static_assert(reserved == 1, "the third parameter is always 1");
  static_assert(mode == INTERP_NEAREST, "only nearest neighbour is built");
  static_assert(std::is_same_v<WorkType, float>,
                "scale factors are single precision");
  static_assert(cn == 1 || cn == 2, "luma or interleaved chroma pairs");

  // Widths and heights in pixels, strides in bytes and positive. Samples
  // are copied bit for bit; shift is never applied. Always returns 0.
  static int32_t resize(const T* src, T* dst, int32_t srcWidth,
                        int32_t srcHeight, int32_t dstWidth, int32_t dstHeight,
                        int32_t srcStride, int32_t dstStride);

 private:
  using Unit = PixelUnitOf<T, cn>;

  using FlexKernel = int32_t (*)(const T*, T*, int32_t, int32_t, int32_t,
                                 int32_t, int32_t, int32_t);
  // Entry R - 1 is the byte-lookup kernel for R, span width N = R × unit.
  template <std::size_t... i>
  static constexpr std::array<FlexKernel, sizeof...(i)> flexKernels(
      std::index_sequence<i...>) {
    return {
        {&ResizeNearestFlex<T, cn, 1,
                            (static_cast<int>(i) + 1) *
                                static_cast<int>(sizeof(Unit))>::resize...}};
  }
};

template <typename T, int cn, int reserved, InterpMode mode, typename WorkType,
          int shift, bool isChroma>
int32_t Resize_v00<T, cn, reserved, mode, WorkType, shift, isChroma>::resize(
    const T* src, T* dst, int32_t srcWidth, int32_t srcHeight, int32_t dstWidth,
    int32_t dstHeight, int32_t srcStride, int32_t dstStride) {
  constexpr int kUnit = static_cast<int>(sizeof(Unit));
  constexpr int kMinBlocks = 16 / static_cast<int>(sizeof(T));
  constexpr int kMaxRatio = 16 / kUnit;
  if (dstHeight < 1) return 0;
  const uint8_t* s = reinterpret_cast<const uint8_t*>(src);
  uint8_t* d = reinterpret_cast<uint8_t*>(dst);
  // 64-bit, so that K × size cannot overflow.
  const int64_t sw = srcWidth, sh = srcHeight, dw = dstWidth, dh = dstHeight;

  if (sw == 2 * dw && sh == 2 * dh) {
    ResizeNearestExact<Unit, 2>::decimate(s, d, dstWidth, dstHeight, srcStride,
                                          dstStride);
    return 0;
  }
  if (sw == 3 * dw && sh == 3 * dh) {
    ResizeNearestExact<Unit, 3>::decimate(s, d, dstWidth, dstHeight, srcStride,
                                          dstStride);
    return 0;
  }
  if (sw == 4 * dw && sh == 4 * dh) {
    ResizeNearestExact<Unit, 4>::decimate(s, d, dstWidth, dstHeight, srcStride,
                                          dstStride);
    return 0;
  }
  if (dw == 2 * sw && dh == 2 * sh) {
    ResizeNearestExact<Unit, 2>::enlarge(s, d, srcWidth, srcHeight, srcStride,
                                         dstStride);
    return 0;
  }
  if (dw == 3 * sw && dh == 3 * sh) {
    if constexpr (cn == 1) {
      ResizeNearestExact<Unit, 3>::enlarge(s, d, srcWidth, srcHeight, srcStride,
                                           dstStride);
      return 0;
    } else {
      return ResizeNearestUpscale<T, cn, 1, 3>::resize(
          src, dst, srcWidth, srcHeight, srcStride, dstStride);
    }
  }
  if (dw == 4 * sw && dh == 4 * sh) {
    return ResizeNearestUpscale<T, cn, 1, 4>::resize(
        src, dst, srcWidth, srcHeight, srcStride, dstStride);
  }

  const WorkType ratio = std::ceil(static_cast<WorkType>(srcWidth) /
                                   static_cast<WorkType>(dstWidth));
  if (ratio >= 1 && ratio <= static_cast<WorkType>(kMaxRatio)) {
    const int r = static_cast<int>(ratio);
    if (srcWidth >= kMinBlocks * r) {
      constexpr std::array<FlexKernel, kMaxRatio> kFlex =
          flexKernels(std::make_index_sequence<kMaxRatio>());
      return kFlex[r - 1](src, dst, srcWidth, srcHeight, dstWidth, dstHeight,
                          srcStride, dstStride);
    }
  }
  return resizeNearestGeneral(s, d, kUnit, srcWidth, srcHeight, dstWidth,
                              dstHeight, srcStride, dstStride);
}

extern template struct Resize_v00<uint8_t, 1, 1, INTERP_NEAREST, float, 0,
                                  false>;
extern template struct Resize_v00<uint8_t, 2, 1, INTERP_NEAREST, float, 0,
                                  true>;
extern template struct Resize_v00<uint16_t, 1, 1, INTERP_NEAREST, float, 6,
                                  false>;
extern template struct Resize_v00<uint16_t, 2, 1, INTERP_NEAREST, float, 6,
                                  true>;

}  // namespace zel::neon::imgproc::internal_resize_v00

#endif  // ZEL_NEON_IMGPROC_RESIZE_PLANE_H_
