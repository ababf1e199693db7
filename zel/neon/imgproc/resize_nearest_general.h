// Nearest-neighbour resize of one plane through a table of source columns,
// for any ratio: output (x, y) is a copy of the pixelBytes bytes (1, 2 or 4)
// of source pixel (trunc(x × scaleX), trunc(y × scaleY)), with
// scaleX = srcWidth / dstWidth and scaleY = srcHeight / dstHeight in single
// precision. Reads only the sampled pixels; writes only the output pixels.
#ifndef ZEL_NEON_IMGPROC_RESIZE_NEAREST_GENERAL_H_
#define ZEL_NEON_IMGPROC_RESIZE_NEAREST_GENERAL_H_

#include <cstdint>

namespace zel::neon::imgproc::internal_resize_v00 {

// Strides in bytes, positive. Always returns 0; the column table is the only
// allocation and is released before returning.
int32_t resizeNearestGeneral(const uint8_t* src, uint8_t* dst,
                             int32_t pixelBytes, int32_t srcWidth,
                             int32_t srcHeight, int32_t dstWidth,
                             int32_t dstHeight, int32_t srcStride,
                             int32_t dstStride);

}  // namespace zel::neon::imgproc::internal_resize_v00

#endif  // ZEL_NEON_IMGPROC_RESIZE_NEAREST_GENERAL_H_
