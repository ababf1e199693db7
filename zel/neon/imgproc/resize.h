// Nearest-neighbour resize of a YUV 4:2:0 semi-planar image (a luma plane
// and a half-size plane of interleaved chroma pairs), 8-bit or 16-bit
// samples. Samples are copied bit for bit:
//   dst(x, y) = src(trunc(x × scaleX), trunc(y × scaleY)) on each plane,
//   scaleX = srcWidth / dstWidth, scaleY = srcHeight / dstHeight (float).
#ifndef ZEL_NEON_IMGPROC_RESIZE_H_
#define ZEL_NEON_IMGPROC_RESIZE_H_

#include <cstdint>
#include <type_traits>

#include "base/export.h"
#include "base/status.h"
#include "zel/cpp/core/normaliseStride.h"
#include "zel/neon/imgproc/resize_plane.h"
#include "zel/types.h"

namespace zel::neon::imgproc {

// Resizes srcWidth × srcHeight to dstWidth × dstHeight (luma pixels; the
// chroma plane has half of each). Strides are bytes from one row to the
// next: 0 for packed rows, negative for rows at decreasing addresses; both
// planes are walked from their lowest address, so a negative stride on only
// one side flips the image. Returns 0, or kStatusInvalidArgument (769) and
// writes nothing if a plane is null or a size is odd or below 1.
template <typename TIn, typename TOut, YUV420SemiPlanarFormat format,
          InterpMode mode, typename WorkType, int shift>
PAVONA_EXPORT int32_t resize_v00(const TIn* srcY, const TIn* srcUV, TOut* dstY,
                                 TOut* dstUV, int32_t srcWidth,
                                 int32_t srcHeight, int32_t dstWidth,
                                 int32_t dstHeight, int32_t srcYStride,
                                 int32_t srcUVStride, int32_t dstYStride,
                                 int32_t dstUVStride) {
  static_assert(std::is_same_v<TIn, TOut>, "nearest neighbour only copies");
  static_assert(sizeof(TIn) == (format == YUV420SP_8BIT ? 1u : 2u),
                "8-bit layouts hold bytes, 10-bit layouts 16-bit words");
  using Luma =
      internal_resize_v00::Resize_v00<TIn, 1, 1, mode, WorkType, shift, false>;
  using Chroma =
      internal_resize_v00::Resize_v00<TIn, 2, 1, mode, WorkType, shift, true>;

  if (srcY == nullptr || srcUV == nullptr || dstY == nullptr ||
      dstUV == nullptr) {
    return pavona::kStatusInvalidArgument;
  }
  if (((dstWidth | srcWidth | dstHeight | srcHeight) & 1) != 0) {
    return pavona::kStatusInvalidArgument;
  }
  if (srcWidth < 1 || srcHeight < 1 || dstWidth < 1 || dstHeight < 1) {
    return pavona::kStatusInvalidArgument;
  }

  // A chroma row of w / 2 pairs holds as many samples as a luma row.
  const int32_t srcPacked = static_cast<int32_t>(
      static_cast<uint32_t>(srcWidth) * static_cast<uint32_t>(sizeof(TIn)));
  const int32_t dstPacked = static_cast<int32_t>(
      static_cast<uint32_t>(dstWidth) * static_cast<uint32_t>(sizeof(TOut)));
  // Strides count bytes, so the planes are walked as bytes.
  using cpp::normaliseStride;
  using cpp::RowOffset;
  auto sy = reinterpret_cast<const uint8_t*>(srcY);
  auto suv = reinterpret_cast<const uint8_t*>(srcUV);
  auto dy = reinterpret_cast<uint8_t*>(dstY);
  auto duv = reinterpret_cast<uint8_t*>(dstUV);
  normaliseStride<RowOffset::kWrap32>(sy, srcYStride, srcPacked, srcHeight);
  normaliseStride<RowOffset::kWrap32>(suv, srcUVStride, srcPacked,
                                      srcHeight / 2);
  normaliseStride<RowOffset::kWrap32>(dy, dstYStride, dstPacked, dstHeight);
  normaliseStride<RowOffset::kWrap32>(duv, dstUVStride, dstPacked,
                                      dstHeight / 2);

  const int32_t status = Luma::resize(
      reinterpret_cast<const TIn*>(sy), reinterpret_cast<TOut*>(dy), srcWidth,
      srcHeight, dstWidth, dstHeight, srcYStride, dstYStride);
  if (status != 0) return status;
  return Chroma::resize(reinterpret_cast<const TIn*>(suv),
                        reinterpret_cast<TOut*>(duv), srcWidth >> 1,
                        srcHeight >> 1, dstWidth >> 1, dstHeight >> 1,
                        srcUVStride, dstUVStride);
}

extern template int32_t
resize_v00<uint8_t, uint8_t, YUV420SP_8BIT, INTERP_NEAREST, float, 0>(
    const uint8_t*, const uint8_t*, uint8_t*, uint8_t*, int32_t, int32_t,
    int32_t, int32_t, int32_t, int32_t, int32_t, int32_t);
extern template int32_t
resize_v00<uint16_t, uint16_t, YUV420SP_10BIT, INTERP_NEAREST, float, 6>(
    const uint16_t*, const uint16_t*, uint16_t*, uint16_t*, int32_t, int32_t,
    int32_t, int32_t, int32_t, int32_t, int32_t, int32_t);

}  // namespace zel::neon::imgproc

#endif  // ZEL_NEON_IMGPROC_RESIZE_H_
