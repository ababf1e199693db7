// Nearest-neighbour resize of one plane by an exact integer factor K (2, 3
// or 4), pixels moved as whole units U (uint8_t, uint16_t or uint32_t: one
// pixel with all its components, so chroma pairs stay intact).
//
//   decimate: dst(x, y) = src(K x, K y)
//   enlarge:  dst(x, y) = src(x / K, y / K); row K j is built from source
//             row j, rows K j + 1 ... K j + K - 1 are block copies of it.
//
// With L = 16 / sizeof(U) units a register, a decimation step reads K L
// units with de-interleaving loads and keeps every K-th; an enlargement step
// reads two registers and stores each K times interleaved. Steps are taken
// only while they lie wholly inside the row, the rest goes one pixel at a
// time, so nothing is read past a source row's last pixel. Enlargement writes
// K × srcHeight whole destination strides, padding included: the destination
// must hold them all.
#ifndef ZEL_NEON_IMGPROC_RESIZE_NEAREST_EXACT_H_
#define ZEL_NEON_IMGPROC_RESIZE_NEAREST_EXACT_H_

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "base/neon_compat.h"

namespace zel::neon::imgproc::internal_resize_v00 {

template <typename U, int K>
struct ResizeNearestExact {
  static_assert(K >= 2 && K <= 4, "exact ratios are 2, 3 and 4");
  static_assert(sizeof(U) == 1 || sizeof(U) == 2 || sizeof(U) == 4,
                "a pixel is 1, 2 or 4 bytes");

  // Strides are byte counts and positive; widths and heights are the
  // destination's (decimate) or the source's (enlarge), in pixels.
  static void decimate(const uint8_t* src, uint8_t* dst, int32_t dstWidth,
                       int32_t dstHeight, int32_t srcStride, int32_t dstStride);
  static void decimate_C(const uint8_t* src, uint8_t* dst, int32_t dstWidth,
                         int32_t dstHeight, int32_t srcStride,
                         int32_t dstStride);
  static void enlarge(const uint8_t* src, uint8_t* dst, int32_t srcWidth,
                      int32_t srcHeight, int32_t srcStride, int32_t dstStride);
  static void enlarge_C(const uint8_t* src, uint8_t* dst, int32_t srcWidth,
                        int32_t srcHeight, int32_t srcStride,
                        int32_t dstStride);

 private:
  static constexpr int32_t kLanes = 16 / static_cast<int32_t>(sizeof(U));
  static constexpr std::size_t kUnit = sizeof(U);
  // Decimation prefetches the sampled row this far ahead of the one read.
  static constexpr int32_t kAhead = 2;

  static uint8x16_t loadEveryKth(const uint8_t* p);
  static void storeEachKTimes(uint8_t* p, uint8x16_t v);
  static void repeatRow(uint8_t* row, int32_t dstStride);
};

// By 4: two two-way loads and an unzip instead of a four-way load, which
// hosts without NEON emulate element by element. Two-way loads work on bytes
// for byte pixels and on 32-bit lanes otherwise (whole pixels, or pairs of
// 16-bit pixels of which the unzip keeps the first): the forms that map to
// plain SSE2 masks and packs there. On AArch64 each is two LD2 and a UZP1.
template <typename U, int K>
uint8x16_t ResizeNearestExact<U, K>::loadEveryKth(const uint8_t* p) {
  if constexpr (sizeof(U) == 1) {
    if constexpr (K == 2) return vld2q_u8(p).val[0];
    if constexpr (K == 3) return vld3q_u8(p).val[0];
    if constexpr (K == 4) {
      return vuzp1q_u8(vld2q_u8(p).val[0], vld2q_u8(p + 32).val[0]);
    }
  } else if constexpr (sizeof(U) == 2) {
    const uint16_t* q = reinterpret_cast<const uint16_t*>(p);
    if constexpr (K == 2) return vreinterpretq_u8_u16(vld2q_u16(q).val[0]);
    if constexpr (K == 3) return vreinterpretq_u8_u16(vld3q_u16(q).val[0]);
    if constexpr (K == 4) {
      const uint32_t* w = reinterpret_cast<const uint32_t*>(p);
      return vreinterpretq_u8_u16(
          vuzp1q_u16(vreinterpretq_u16_u32(vld2q_u32(w).val[0]),
                     vreinterpretq_u16_u32(vld2q_u32(w + 8).val[0])));
    }
  } else {
    const uint32_t* q = reinterpret_cast<const uint32_t*>(p);
    if constexpr (K == 2) return vreinterpretq_u8_u32(vld2q_u32(q).val[0]);
    if constexpr (K == 3) return vreinterpretq_u8_u32(vld3q_u32(q).val[0]);
    if constexpr (K == 4) {
      return vreinterpretq_u8_u32(
          vuzp1q_u32(vld2q_u32(q).val[0], vld2q_u32(q + 8).val[0]));
    }
  }
}

template <typename U, int K>
void ResizeNearestExact<U, K>::storeEachKTimes(uint8_t* p, uint8x16_t v) {
  if constexpr (sizeof(U) == 1) {
    if constexpr (K == 2) {
      const uint8x16x2_t copies = {{v, v}};
      vst2q_u8(p, copies);
    }
    if constexpr (K == 3) {
      const uint8x16x3_t copies = {{v, v, v}};
      vst3q_u8(p, copies);
    }
    if constexpr (K == 4) {
      const uint8x16x4_t copies = {{v, v, v, v}};
      vst4q_u8(p, copies);
    }
  } else if constexpr (sizeof(U) == 2) {
    uint16_t* q = reinterpret_cast<uint16_t*>(p);
    const uint16x8_t w = vreinterpretq_u16_u8(v);
    if constexpr (K == 2) {
      const uint16x8x2_t copies = {{w, w}};
      vst2q_u16(q, copies);
    }
    if constexpr (K == 3) {
      const uint16x8x3_t copies = {{w, w, w}};
      vst3q_u16(q, copies);
    }
    if constexpr (K == 4) {
      const uint16x8x4_t copies = {{w, w, w, w}};
      vst4q_u16(q, copies);
    }
  } else {
    uint32_t* q = reinterpret_cast<uint32_t*>(p);
    const uint32x4_t w = vreinterpretq_u32_u8(v);
    if constexpr (K == 2) {
      const uint32x4x2_t copies = {{w, w}};
      vst2q_u32(q, copies);
    }
    if constexpr (K == 3) {
      const uint32x4x3_t copies = {{w, w, w}};
      vst3q_u32(q, copies);
    }
    if constexpr (K == 4) {
      const uint32x4x4_t copies = {{w, w, w, w}};
      vst4q_u32(q, copies);
    }
  }
}

// Repeated rows are byte copies of the whole stride, not recomputed.
template <typename U, int K>
void ResizeNearestExact<U, K>::repeatRow(uint8_t* row, int32_t dstStride) {
  for (int k = 1; k < K; ++k) {
    std::memcpy(row + static_cast<std::ptrdiff_t>(k) * dstStride, row,
                static_cast<std::size_t>(dstStride));
  }
}

template <typename U, int K>
void ResizeNearestExact<U, K>::decimate(const uint8_t* src, uint8_t* dst,
                                        int32_t dstWidth, int32_t dstHeight,
                                        int32_t srcStride, int32_t dstStride) {
  for (int32_t y = 0; y < dstHeight; ++y) {
    const uint8_t* s = src + static_cast<std::ptrdiff_t>(K) * y * srcStride;
    uint8_t* d = dst + static_cast<std::ptrdiff_t>(y) * dstStride;
    // Sampled rows lie K rows apart, each a fresh stream to the hardware:
    // the one kAhead further down is prefetched as this one is read, at the
    // same offsets.
    const uint8_t* ahead =
        y + kAhead < dstHeight
            ? s + static_cast<std::ptrdiff_t>(K) * kAhead * srcStride
            : s;
    int32_t x = 0;
    for (; dstWidth - x >= kLanes; x += kLanes) {
      __builtin_prefetch(ahead + K * x * kUnit);
      vst1q_u8(d + x * kUnit, loadEveryKth(s + K * x * kUnit));
    }
    for (; x < dstWidth; ++x) {
      std::memcpy(d + x * kUnit, s + K * x * kUnit, kUnit);
    }
  }
}

template <typename U, int K>
void ResizeNearestExact<U, K>::decimate_C(const uint8_t* src, uint8_t* dst,
                                          int32_t dstWidth, int32_t dstHeight,
                                          int32_t srcStride,
                                          int32_t dstStride) {
  for (int32_t y = 0; y < dstHeight; ++y) {
    const uint8_t* s = src + static_cast<std::ptrdiff_t>(K) * y * srcStride;
    uint8_t* d = dst + static_cast<std::ptrdiff_t>(y) * dstStride;
    for (int32_t x = 0; x < dstWidth; ++x) {
      std::memcpy(d + x * kUnit, s + K * x * kUnit, kUnit);
    }
  }
}

template <typename U, int K>
void ResizeNearestExact<U, K>::enlarge(const uint8_t* src, uint8_t* dst,
                                       int32_t srcWidth, int32_t srcHeight,
                                       int32_t srcStride, int32_t dstStride) {
  for (int32_t j = 0; j < srcHeight; ++j) {
    const uint8_t* s = src + static_cast<std::ptrdiff_t>(j) * srcStride;
    uint8_t* d = dst + static_cast<std::ptrdiff_t>(K) * j * dstStride;
    int32_t x = 0;
    for (; srcWidth - x >= 2 * kLanes; x += 2 * kLanes) {
      const uint8x16_t a = vld1q_u8(s + x * kUnit);
      const uint8x16_t b = vld1q_u8(s + (x + kLanes) * kUnit);
      storeEachKTimes(d + K * x * kUnit, a);
      storeEachKTimes(d + K * (x + kLanes) * kUnit, b);
    }
    for (; x < srcWidth; ++x) {
      for (int k = 0; k < K; ++k) {
        std::memcpy(d + (K * x + k) * kUnit, s + x * kUnit, kUnit);
      }
    }
    repeatRow(d, dstStride);
  }
}

template <typename U, int K>
void ResizeNearestExact<U, K>::enlarge_C(const uint8_t* src, uint8_t* dst,
                                         int32_t srcWidth, int32_t srcHeight,
                                         int32_t srcStride, int32_t dstStride) {
  for (int32_t j = 0; j < srcHeight; ++j) {
    const uint8_t* s = src + static_cast<std::ptrdiff_t>(j) * srcStride;
    uint8_t* d = dst + static_cast<std::ptrdiff_t>(K) * j * dstStride;
    for (int32_t x = 0; x < srcWidth * K; ++x) {
      std::memcpy(d + x * kUnit, s + (x / K) * kUnit, kUnit);
    }
    repeatRow(d, dstStride);
  }
}

extern template struct ResizeNearestExact<uint8_t, 2>;
extern template struct ResizeNearestExact<uint8_t, 3>;
extern template struct ResizeNearestExact<uint8_t, 4>;
extern template struct ResizeNearestExact<uint16_t, 2>;
extern template struct ResizeNearestExact<uint16_t, 3>;
extern template struct ResizeNearestExact<uint16_t, 4>;
extern template struct ResizeNearestExact<uint32_t, 2>;
extern template struct ResizeNearestExact<uint32_t, 3>;
extern template struct ResizeNearestExact<uint32_t, 4>;

}  // namespace zel::neon::imgproc::internal_resize_v00

#endif  // ZEL_NEON_IMGPROC_RESIZE_NEAREST_EXACT_H_
