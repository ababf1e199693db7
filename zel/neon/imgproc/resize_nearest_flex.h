// Nearest-neighbour resize of one plane for any ratio with R <= 16 / unit,
// by byte table lookups:
//   dst(x, y) = src(col[x], trunc(y × scaleY)), col[x] = trunc(x × scaleX),
//   scaleX = srcWidth / dstWidth, scaleY = srcHeight / dstHeight (float),
//   unit = cn × sizeof(T) bytes a pixel, R = N / unit = ceil(scaleX).
// A block is 16 output pixels (unit 16-byte vectors). Its source span is the
// 16 × N bytes from the block base, min(srcWidth - 16 R, col[first pixel])
// compared as unsigned 64-bit numbers, so that the last spans end at the
// row's end; 16 neighbouring columns lie within 15 R + 1 pixels, so every
// source byte of a block is at a relative index below 16 × N and one byte
// names it. The span is looked up in groups of up to 64 bytes (vqtbl1q_u8 ...
// vqtbl4q_u8, then vqtbx*q_u8 with the indices reduced by 64 a group).
// The vector loop reads only spans that lie inside the source row: where
// srcWidth < 16 R (possible for 16-bit pixels) or an index would not fit a
// byte (float rounding on very wide rows), those blocks go through the scalar
// remainder, as do the dstWidth mod 16 pixels at the row's end. Only output
// pixels are written.
#ifndef ZEL_NEON_IMGPROC_RESIZE_NEAREST_FLEX_H_
#define ZEL_NEON_IMGPROC_RESIZE_NEAREST_FLEX_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>

#include "base/export.h"
#include "base/neon_compat.h"
#include "zel/neon/imgproc/resize_nearest_general.h"

namespace zel::neon::imgproc::internal_resize_v00 {

// Bytes of the `count` registers (1 to 4) at t selected by idx; 0 where idx
// is 16 × count or more.
inline uint8x16_t spanLookup(const uint8x16_t* t, int count, uint8x16_t idx) {
  switch (count) {
    case 1:
      return vqtbl1q_u8(t[0], idx);
    case 2: {
      const uint8x16x2_t table = {{t[0], t[1]}};
      return vqtbl2q_u8(table, idx);
    }
    case 3: {
      const uint8x16x3_t table = {{t[0], t[1], t[2]}};
      return vqtbl3q_u8(table, idx);
    }
    default: {
      const uint8x16x4_t table = {{t[0], t[1], t[2], t[3]}};
      return vqtbl4q_u8(table, idx);
    }
  }
}

// As spanLookup, keeping `prev` where idx is 16 × count or more.
inline uint8x16_t spanLookupExtend(uint8x16_t prev, const uint8x16_t* t,
                                   int count, uint8x16_t idx) {
  switch (count) {
    case 1:
      return vqtbx1q_u8(prev, t[0], idx);
    case 2: {
      const uint8x16x2_t table = {{t[0], t[1]}};
      return vqtbx2q_u8(prev, table, idx);
    }
    case 3: {
      const uint8x16x3_t table = {{t[0], t[1], t[2]}};
      return vqtbx3q_u8(prev, table, idx);
    }
    default: {
      const uint8x16x4_t table = {{t[0], t[1], t[2], t[3]}};
      return vqtbx4q_u8(prev, table, idx);
    }
  }
}

template <typename T, int cn, int reserved, int N>
struct PAVONA_EXPORT ResizeNearestFlex {
  static_assert(reserved == 1, "the third parameter is always 1");
  static_assert(N % (cn * static_cast<int>(sizeof(T))) == 0 && N >= 1 &&
                    N <= 16,
                "a span is 16 × R whole pixels, at most 256 bytes");

  // Strides in bytes, positive. Always returns 0.
  static int32_t resize(const T* src, T* dst, int32_t srcWidth,
                        int32_t srcHeight, int32_t dstWidth, int32_t dstHeight,
                        int32_t srcStride, int32_t dstStride);
  PAVONA_HIDDEN static int32_t resize_C(const T* src, T* dst, int32_t srcWidth,
                                        int32_t srcHeight, int32_t dstWidth,
                                        int32_t dstHeight, int32_t srcStride,
                                        int32_t dstStride);
};

template <typename T, int cn, int reserved, int N>
int32_t ResizeNearestFlex<T, cn, reserved, N>::resize(
    const T* src, T* dst, int32_t srcWidth, int32_t srcHeight, int32_t dstWidth,
    int32_t dstHeight, int32_t srcStride, int32_t dstStride) {
  constexpr int kUnit = cn * static_cast<int>(sizeof(T));
  constexpr int kRatio = N / kUnit;
  constexpr int kBlockBytes = 16 * kUnit;
  constexpr int kSpanBytes = 16 * N;
  constexpr int kGroups = (N + 3) / 4;
  const float scaleX =
      static_cast<float>(srcWidth) / static_cast<float>(dstWidth);
  const float scaleY =
      static_cast<float>(srcHeight) / static_cast<float>(dstHeight);

  const std::unique_ptr<uint64_t[]> column(new uint64_t[dstWidth]());
  for (int32_t x = 0; x < dstWidth; ++x) {
    column[x] = static_cast<uint64_t>(
        static_cast<int32_t>(static_cast<float>(x) * scaleX));
  }

  const int32_t blocks = dstWidth / 16;
  const std::unique_ptr<uint64_t[]> base(new uint64_t[blocks]());
  const std::unique_ptr<uint8_t[]> index(
      new uint8_t[static_cast<std::size_t>(blocks) * kBlockBytes]());
  // Sign-extended: where the row is narrower than a span this is huge and
  // the block's own first column wins.
  const uint64_t lastSpanStart =
      static_cast<uint64_t>(static_cast<int64_t>(srcWidth) - 16 * kRatio);
  const uint64_t rowBytes = static_cast<uint64_t>(srcWidth) * kUnit;
  int32_t vectorBlocks = 0;
  for (int32_t b = 0; b < blocks; ++b) {
    const uint64_t* c = column.get() + 16 * b;
    const uint64_t start = std::min(lastSpanStart, c[0]) * kUnit;
    base[b] = start;
    uint8_t* idx = index.get() + static_cast<std::size_t>(b) * kBlockBytes;
    for (int p = 0; p < 16; ++p) {
      for (int k = 0; k < kUnit; ++k) {
        idx[p * kUnit + k] = static_cast<uint8_t>(c[p] * kUnit + k - start);
      }
    }
    const bool inRow = start + kSpanBytes <= rowBytes;
    const bool fits = (c[15] + 1) * kUnit - start <= kSpanBytes;
    if (vectorBlocks == b && inRow && fits) vectorBlocks = b + 1;
  }

  const uint8_t* srcBytes = reinterpret_cast<const uint8_t*>(src);
  uint8_t* dstBytes = reinterpret_cast<uint8_t*>(dst);
  for (int32_t y = 0; y < dstHeight; ++y) {
    const int32_t sy = static_cast<int32_t>(static_cast<float>(y) * scaleY);
    const uint8_t* s = srcBytes + static_cast<std::ptrdiff_t>(sy) * srcStride;
    uint8_t* d = dstBytes + static_cast<std::ptrdiff_t>(y) * dstStride;
    for (int32_t b = 0; b < vectorBlocks; ++b) {
      const uint8_t* span = s + base[b];
      uint8x16_t t[N];
      for (int r = 0; r < N; ++r) t[r] = vld1q_u8(span + 16 * r);
      const uint8_t* idx =
          index.get() + static_cast<std::size_t>(b) * kBlockBytes;
      uint8_t* out = d + static_cast<std::size_t>(b) * kBlockBytes;
      for (int v = 0; v < kUnit; ++v) {
        const uint8x16_t i = vld1q_u8(idx + 16 * v);
        uint8x16_t bytes = spanLookup(t, std::min(N, 4), i);
        for (int g = 1; g < kGroups; ++g) {
          const uint8x16_t reduced =
              vsubq_u8(i, vdupq_n_u8(static_cast<uint8_t>(64 * g)));
          bytes = spanLookupExtend(bytes, t + 4 * g, std::min(N - 4 * g, 4),
                                   reduced);
        }
        vst1q_u8(out + 16 * v, bytes);
      }
    }
    for (int32_t x = 16 * vectorBlocks; x < dstWidth; ++x) {
      std::memcpy(d + static_cast<std::size_t>(x) * kUnit,
                  s + column[x] * kUnit, kUnit);
    }
  }
  return 0;
}

template <typename T, int cn, int reserved, int N>
int32_t ResizeNearestFlex<T, cn, reserved, N>::resize_C(
    const T* src, T* dst, int32_t srcWidth, int32_t srcHeight, int32_t dstWidth,
    int32_t dstHeight, int32_t srcStride, int32_t dstStride) {
  constexpr int kUnit = cn * static_cast<int>(sizeof(T));
  return resizeNearestGeneral(
      reinterpret_cast<const uint8_t*>(src), reinterpret_cast<uint8_t*>(dst),
      kUnit, srcWidth, srcHeight, dstWidth, dstHeight, srcStride, dstStride);
}

extern template struct ResizeNearestFlex<uint8_t, 1, 1, 1>;
extern template struct ResizeNearestFlex<uint8_t, 1, 1, 2>;
extern template struct ResizeNearestFlex<uint8_t, 1, 1, 3>;
extern template struct ResizeNearestFlex<uint8_t, 1, 1, 4>;
extern template struct ResizeNearestFlex<uint8_t, 1, 1, 5>;
extern template struct ResizeNearestFlex<uint8_t, 1, 1, 6>;
extern template struct ResizeNearestFlex<uint8_t, 1, 1, 7>;
extern template struct ResizeNearestFlex<uint8_t, 1, 1, 8>;
extern template struct ResizeNearestFlex<uint8_t, 1, 1, 9>;
extern template struct ResizeNearestFlex<uint8_t, 1, 1, 10>;
extern template struct ResizeNearestFlex<uint8_t, 1, 1, 11>;
extern template struct ResizeNearestFlex<uint8_t, 1, 1, 12>;
extern template struct ResizeNearestFlex<uint8_t, 1, 1, 13>;
extern template struct ResizeNearestFlex<uint8_t, 1, 1, 14>;
extern template struct ResizeNearestFlex<uint8_t, 1, 1, 15>;
extern template struct ResizeNearestFlex<uint8_t, 1, 1, 16>;
extern template struct ResizeNearestFlex<uint8_t, 2, 1, 2>;
extern template struct ResizeNearestFlex<uint8_t, 2, 1, 4>;
extern template struct ResizeNearestFlex<uint8_t, 2, 1, 6>;
extern template struct ResizeNearestFlex<uint8_t, 2, 1, 8>;
extern template struct ResizeNearestFlex<uint8_t, 2, 1, 10>;
extern template struct ResizeNearestFlex<uint8_t, 2, 1, 12>;
extern template struct ResizeNearestFlex<uint8_t, 2, 1, 14>;
extern template struct ResizeNearestFlex<uint8_t, 2, 1, 16>;
extern template struct ResizeNearestFlex<uint16_t, 1, 1, 2>;
extern template struct ResizeNearestFlex<uint16_t, 1, 1, 4>;
extern template struct ResizeNearestFlex<uint16_t, 1, 1, 6>;
extern template struct ResizeNearestFlex<uint16_t, 1, 1, 8>;
extern template struct ResizeNearestFlex<uint16_t, 1, 1, 10>;
extern template struct ResizeNearestFlex<uint16_t, 1, 1, 12>;
extern template struct ResizeNearestFlex<uint16_t, 1, 1, 14>;
extern template struct ResizeNearestFlex<uint16_t, 1, 1, 16>;
extern template struct ResizeNearestFlex<uint16_t, 2, 1, 4>;
extern template struct ResizeNearestFlex<uint16_t, 2, 1, 8>;
extern template struct ResizeNearestFlex<uint16_t, 2, 1, 12>;
extern template struct ResizeNearestFlex<uint16_t, 2, 1, 16>;

}  // namespace zel::neon::imgproc::internal_resize_v00

#endif  // ZEL_NEON_IMGPROC_RESIZE_NEAREST_FLEX_H_
