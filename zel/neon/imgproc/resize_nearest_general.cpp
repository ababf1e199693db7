#include "zel/neon/imgproc/resize_nearest_general.h"

#include <cstddef>
#include <cstring>
#include <memory>

#include "zel/neon/imgproc/pixel_unit.h"

namespace zel::neon::imgproc::internal_resize_v00 {
namespace {

// Each output row samples a new source row, usually cold (a frame reduced
// 32 times uses one source row in 32). Once a row is under way the hardware
// follows its constant stride; the first lines of the next sampled row are
// requested early so that its start does not wait for the jump.
constexpr std::size_t kCacheLine = 64;
constexpr std::size_t kLeadLines = 2;

template <typename U>
void copySampledRows(const uint8_t* src, uint8_t* dst, const int32_t* column,
                     int32_t dstWidth, int32_t dstHeight, float scaleY,
                     int32_t srcStride, int32_t dstStride) {
  const auto sourceRow = [&](int32_t y) {
    const int32_t sy = static_cast<int32_t>(static_cast<float>(y) * scaleY);
    return src + static_cast<std::ptrdiff_t>(sy) * srcStride;
  };
  const std::size_t first = static_cast<std::size_t>(column[0]) * sizeof(U);
  const uint8_t* row = sourceRow(0);
  for (int32_t y = 0; y < dstHeight; ++y) {
    const uint8_t* next = y + 1 < dstHeight ? sourceRow(y + 1) : row;
    for (std::size_t line = 0; line < kLeadLines; ++line) {
      __builtin_prefetch(next + first + line * kCacheLine);
    }
    uint8_t* d = dst + static_cast<std::ptrdiff_t>(y) * dstStride;
    int32_t x = 0;
    for (; dstWidth - x >= 4; x += 4) {
      U px[4];
      for (int k = 0; k < 4; ++k) {
        std::memcpy(&px[k],
                    row + static_cast<std::size_t>(column[x + k]) * sizeof(U),
                    sizeof(U));
      }
      std::memcpy(d + x * sizeof(U), px, sizeof(px));
    }
    for (; x < dstWidth; ++x) {
      std::memcpy(d + x * sizeof(U),
                  row + static_cast<std::size_t>(column[x]) * sizeof(U),
                  sizeof(U));
    }
    row = next;
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
