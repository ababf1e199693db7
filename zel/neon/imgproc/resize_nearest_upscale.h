// Nearest-neighbour enlargement of one plane by exactly K (3 or 4):
//   dst(x, y) = src(x / K, y / K), output K srcWidth × K srcHeight pixels.
// Each source row is read two registers (32 bytes) a step and stored with
// K-way interleaving stores of one register, lanes the size of a pixel
// (1-byte luma, 2-byte 8-bit pairs or 16-bit luma, 4-byte 16-bit pairs);
// the row's remaining pixels go one at a time. Rows K j + 1 ... K j + K - 1
// are block copies of row K j over the whole dstStride, so the destination
// must hold K × srcHeight full strides. Nothing past a source row's last
// pixel is read.
#ifndef ZEL_NEON_IMGPROC_RESIZE_NEAREST_UPSCALE_H_
#define ZEL_NEON_IMGPROC_RESIZE_NEAREST_UPSCALE_H_

#include <cstdint>

#include "base/export.h"
#include "zel/neon/imgproc/pixel_unit.h"
#include "zel/neon/imgproc/resize_nearest_exact.h"

namespace zel::neon::imgproc::internal_resize_v00 {

template <typename T, int cn, int reserved, int K>
struct PAVONA_EXPORT ResizeNearestUpscale {
  static_assert(reserved == 1, "the third parameter is always 1");

  // Strides in bytes, positive. Always returns 0.
  static int32_t resize(const T* src, T* dst, int32_t srcWidth,
                        int32_t srcHeight, int32_t srcStride,
                        int32_t dstStride);
  PAVONA_HIDDEN static int32_t resize_C(const T* src, T* dst, int32_t srcWidth,
                                        int32_t srcHeight, int32_t srcStride,
                                        int32_t dstStride);

 private:
  using Rows = ResizeNearestExact<PixelUnitOf<T, cn>, K>;
};

template <typename T, int cn, int reserved, int K>
int32_t ResizeNearestUpscale<T, cn, reserved, K>::resize(const T* src, T* dst,
                                                         int32_t srcWidth,
                                                         int32_t srcHeight,
                                                         int32_t srcStride,
                                                         int32_t dstStride) {
  Rows::enlarge(reinterpret_cast<const uint8_t*>(src),
                reinterpret_cast<uint8_t*>(dst), srcWidth, srcHeight, srcStride,
                dstStride);
  return 0;
}

template <typename T, int cn, int reserved, int K>
int32_t ResizeNearestUpscale<T, cn, reserved, K>::resize_C(const T* src, T* dst,
                                                           int32_t srcWidth,
                                                           int32_t srcHeight,
                                                           int32_t srcStride,
                                                           int32_t dstStride) {
  Rows::enlarge_C(reinterpret_cast<const uint8_t*>(src),
                  reinterpret_cast<uint8_t*>(dst), srcWidth, srcHeight,
                  srcStride, dstStride);
  return 0;
}

extern template struct ResizeNearestUpscale<uint8_t, 1, 1, 4>;
extern template struct ResizeNearestUpscale<uint8_t, 2, 1, 3>;
extern template struct ResizeNearestUpscale<uint8_t, 2, 1, 4>;
extern template struct ResizeNearestUpscale<uint16_t, 1, 1, 4>;
extern template struct ResizeNearestUpscale<uint16_t, 2, 1, 3>;
extern template struct ResizeNearestUpscale<uint16_t, 2, 1, 4>;

}  // namespace zel::neon::imgproc::internal_resize_v00

#endif  // ZEL_NEON_IMGPROC_RESIZE_NEAREST_UPSCALE_H_
