#include "zel/neon/imgproc/resize_nearest_general.h"

#include <cstddef>
#include <cstring>
#include <memory>

#include "zel/neon/imgproc/pixel_unit.h"

namespace zel::neon::imgproc::internal_resize_v00 {
namespace {

// Lines the prefetch steps by: the usual data-cache line.
constexpr std::size_t kLine = 64;
// Sampled rows prefetched ahead of the one being copied.
constexpr int32_t kRowsAhead = 2;

template <typename U>
void copyPixel(const uint8_t* row, int32_t column, uint8_t* d, int32_t x) {
  U pixel;
  std::memcpy(&pixel, row + static_cast<std::size_t>(column) * sizeof(U),
              sizeof(U));
  std::memcpy(d + static_cast<std::size_t>(x) * sizeof(U), &pixel, sizeof(U));
}

// Each output row samples one source row that is usually cold (a frame
// reduced 32 times touches one source row in 32, each far from the last,
// where hardware prefetchers do not look ahead), so the span of sampled
// columns of the row kRowsAhead further down is prefetched a line at a
// time before the current row is copied.
template <typename U>
void copySampledRows(const uint8_t* src, uint8_t* dst, const int32_t* column,
                     int32_t dstWidth, int32_t dstHeight, float scaleY,
                     int32_t srcStride, int32_t dstStride) {
  const auto sourceRow = [&](int32_t y) {
    const int32_t sy = static_cast<int32_t>(static_cast<float>(y) * scaleY);
    return src + static_cast<std::ptrdiff_t>(sy) * srcStride;
  };
  const std::size_t first = static_cast<std::size_t>(column[0]) * sizeof(U);
  const std::size_t last =
      static_cast<std::size_t>(column[dstWidth - 1]) * sizeof(U);
  const auto prefetchRow = [&](int32_t y) {
    const uint8_t* row = sourceRow(y);
    for (std::size_t offset = first; offset <= last; offset += kLine) {
      __builtin_prefetch(row + offset);
    }
    __builtin_prefetch(row + last);
  };
  for (int32_t y = 0; y < kRowsAhead && y < dstHeight; ++y) prefetchRow(y);
  for (int32_t y = 0; y < dstHeight; ++y) {
    if (y + kRowsAhead < dstHeight) prefetchRow(y + kRowsAhead);
    const uint8_t* row = sourceRow(y);
    uint8_t* d = dst + static_cast<std::ptrdiff_t>(y) * dstStride;
    // Four pixels a step: the loop's own work is shared by four copies.
    int32_t x = 0;
    for (; x + 4 <= dstWidth; x += 4) {
      copyPixel<U>(row, column[x], d, x);
      copyPixel<U>(row, column[x + 1], d, x + 1);
      copyPixel<U>(row, column[x + 2], d, x + 2);
      copyPixel<U>(row, column[x + 3], d, x + 3);
    }
    for (; x < dstWidth; ++x) copyPixel<U>(row, column[x], d, x);
  }
}

}  // namespace

int32_t resizeNearestGeneral(const uint8_t* src, uint8_t* dst,
                             int32_t pixelBytes, int32_t srcWidth,
                             int32_t srcHeight, int32_t dstWidth,
                             int32_t dstHeight, int32_t srcStride,
                             int32_t dstStride) {
  const float scaleX =
      static_cast<float>(srcWidth) / static_cast<float>(dstWidth);
  const float scaleY =
      static_cast<float>(srcHeight) / static_cast<float>(dstHeight);
  const std::unique_ptr<int32_t[]> column(new int32_t[dstWidth]());
  for (int32_t x = 0; x < dstWidth; ++x) {
    column[x] = static_cast<int32_t>(static_cast<float>(x) * scaleX);
  }
  switch (pixelBytes) {
    case 1:
      copySampledRows<PixelUnit<1>::type>(src, dst, column.get(), dstWidth,
                                          dstHeight, scaleY, srcStride,
                                          dstStride);
      break;
    case 2:
      copySampledRows<PixelUnit<2>::type>(src, dst, column.get(), dstWidth,
                                          dstHeight, scaleY, srcStride,
                                          dstStride);
      break;
    default:
      copySampledRows<PixelUnit<4>::type>(src, dst, column.get(), dstWidth,
                                          dstHeight, scaleY, srcStride,
                                          dstStride);
      break;
  }
  return 0;
}

}  // namespace zel::neon::imgproc::internal_resize_v00
