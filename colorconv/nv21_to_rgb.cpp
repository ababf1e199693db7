// Semi-planar YUV to float RGB: the scalar reference and the NEON kernel.
//
// One chroma pair (U, V) serves a 2x2 block. With offset = 2^(bits-1) and
// max = 2^bits - 1, in single precision and in exactly this order:
//   dv = (float)V + (-offset)            du = (float)U + (-offset)
//   rV = dv * 1.402f   gV = dv * 0.714f   gU = du * 0.344f   bU = du * 1.772f
//   R = rV + y         G = (y - gV) - gU  B = bU + y
// and each component v becomes 0 if v < 0, else (float)(int)(min(v, max)
// + 0.5f). The coefficients are full-range BT.601 (JPEG) rounded to three
// decimals; luma enters as it is, with no 16..235 expansion.
//
// The vector kernel runs the same float operations lane by lane, the
// clamp and the rounding included. It reads only elements [0, width) of each
// luma and chroma row and writes only floats [0, 3 * width) of output rows [0,
// height); the last few pixels of a row are done by the scalar block code.

#include "colorconv/nv21_to_rgb.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>

// Every value this kernel computes is finite (below 2^18 in magnitude even
// for 16-bit samples above 1023), and only clamped values, 0 to 1024, are
// converted to integers: where SIMDe stands in for NEON it may use the
// plain x86 float min, max and conversions instead of emulating what NEON
// does with NaNs and out-of-range values.
#define SIMDE_FAST_CONVERSION_RANGE
#define SIMDE_FAST_NANS
#include "base/neon_compat.h"

namespace pavona::internal {
namespace {

constexpr float kVToR = 1.402f;
constexpr float kVToG = 0.714f;
constexpr float kUToG = 0.344f;
constexpr float kUToB = 1.772f;

template <int bits>
constexpr float kNegOffset = -static_cast<float>(1 << (bits - 1));
template <int bits>
constexpr float kMaxValue = static_cast<float>((1 << bits) - 1);

template <typename T>
T* rowAt(T* plane, int row, int strideBytes) {
  using Byte = typename std::conditional<std::is_const<T>::value, const uint8_t,
                                         uint8_t>::type;
  return reinterpret_cast<T*>(reinterpret_cast<Byte*>(plane) +
                              static_cast<ptrdiff_t>(row) * strideBytes);
}

template <int bits>
inline float toOutput(float v) {
  if (v < 0.0f) {
    return 0.0f;
  }
  const float clamped = v < kMaxValue<bits> ? v : kMaxValue<bits>;
  return static_cast<float>(static_cast<int>(clamped + 0.5f));
}

struct ChromaTerms {
  float rV;
  float gV;
  float gU;
  float bU;
};

template <int bits>
inline void convertPixel(float y, const ChromaTerms& c, float* out) {
  out[0] = toOutput<bits>(c.rV + y);
  out[1] = toOutput<bits>((y - c.gV) - c.gU);
  out[2] = toOutput<bits>(c.bU + y);
}

// The 2x2 block at even column x of a row pair.
template <typename T, bool uFirst, int bits>
inline void convertBlock(const T* y0, const T* y1, const T* uv, float* out0,
                         float* out1, int x) {
  const float dv =
      static_cast<float>(uv[x + (uFirst ? 1 : 0)]) + kNegOffset<bits>;
  const float du =
      static_cast<float>(uv[x + (uFirst ? 0 : 1)]) + kNegOffset<bits>;
  const ChromaTerms c{dv * kVToR, dv * kVToG, du * kUToG, du * kUToB};
  convertPixel<bits>(static_cast<float>(y0[x]), c, out0 + 3 * x);
  convertPixel<bits>(static_cast<float>(y0[x + 1]), c, out0 + 3 * x + 3);
  convertPixel<bits>(static_cast<float>(y1[x]), c, out1 + 3 * x);
  convertPixel<bits>(static_cast<float>(y1[x + 1]), c, out1 + 3 * x + 3);
}

// `pixels` (16 or 8) samples widened to 16 bits into out[0..pixels/8).
// Both sample types meet here; the 16-wide path uses only 128-bit
// operations, which SIMDe maps one to one onto SSE2.
template <int pixels>
inline void loadSamples(const uint8_t* p, uint16x8_t out[2]) {
  if (pixels == 8) {
    out[0] = vmovl_u8(vld1_u8(p));
  } else {
    const uint8x16_t v = vld1q_u8(p);
    out[0] = vreinterpretq_u16_u8(vzip1q_u8(v, vdupq_n_u8(0)));
    out[1] = vreinterpretq_u16_u8(vzip2q_u8(v, vdupq_n_u8(0)));
  }
}

template <int pixels>
inline void loadSamples(const uint16_t* p, uint16x8_t out[2]) {
  out[0] = vld1q_u16(p);
  if (pixels == 16) {
    out[1] = vld1q_u16(p + 8);
  }
}

// Samples fit in 16 bits, so the signed convert is exact; it is also the one
// with a direct SSE2 form when built through SIMDe.
inline float32x4_t toFloat(uint32x4_t v) {
  return vcvtq_f32_s32(vreinterpretq_s32_u32(v));
}

// Lanes 0-3 (quarter 0) or 4-7 (quarter 1) of eight 16-bit samples.
inline float32x4_t widenQuarter(uint16x8_t v, int quarter) {
  const uint16x8_t zero = vdupq_n_u16(0);
  return toFloat(vreinterpretq_u32_u16(quarter == 0 ? vzip1q_u16(v, zero)
                                                    : vzip2q_u16(v, zero)));
}

// The scalar rule, clamp first: max(v, 0) is 0 exactly when v < 0, and
// trunc(0 + 0.5f) is 0 too.
template <int bits>
inline float32x4_t toOutput4(float32x4_t v) {
  const float32x4_t clamped =
      vminq_f32(vmaxq_f32(v, vdupq_n_f32(0.0f)), vdupq_n_f32(kMaxValue<bits>));
  return vcvtq_f32_s32(vcvtq_s32_f32(vaddq_f32(clamped, vdupq_n_f32(0.5f))));
}

template <int bits>
inline void convertPixels4(float32x4_t y, float32x4_t rV, float32x4_t gV,
                           float32x4_t gU, float32x4_t bU, float* out) {
  float32x4x3_t rgb;
  rgb.val[0] = toOutput4<bits>(vaddq_f32(rV, y));
  rgb.val[1] = toOutput4<bits>(vsubq_f32(vsubq_f32(y, gV), gU));
  rgb.val[2] = toOutput4<bits>(vaddq_f32(bU, y));
  vst3q_f32(out, rgb);
}

// `pixels` (16 or 8) pixels of both rows of a pair, from column x on.
template <typename T, bool uFirst, int bits, int pixels>
inline void convertStep(const T* y0, const T* y1, const T* uv, float* out0,
                        float* out1, int x) {
  uint16x8_t chroma[2];
  uint16x8_t luma0[2];
  uint16x8_t luma1[2];
  loadSamples<pixels>(uv + x, chroma);
  loadSamples<pixels>(y0 + x, luma0);
  loadSamples<pixels>(y1 + x, luma1);
  const float32x4_t negOffset = vdupq_n_f32(kNegOffset<bits>);
  for (int g = 0; g < pixels / 4; ++g) {
    // A 32-bit lane holds one chroma pair (first element low); zipping the
    // pairs with themselves gives each pixel the pair that serves it.
    const uint32x4_t pairs = vreinterpretq_u32_u16(chroma[g / 2]);
    const uint32x4_t pixelPairs =
        g % 2 == 0 ? vzip1q_u32(pairs, pairs) : vzip2q_u32(pairs, pairs);
    const float32x4_t first =
        toFloat(vandq_u32(pixelPairs, vdupq_n_u32(0xFFFF)));
    const float32x4_t second = toFloat(vshrq_n_u32(pixelPairs, 16));
    const float32x4_t dv = vaddq_f32(uFirst ? second : first, negOffset);
    const float32x4_t du = vaddq_f32(uFirst ? first : second, negOffset);
    const float32x4_t rV = vmulq_f32(dv, vdupq_n_f32(kVToR));
    const float32x4_t gV = vmulq_f32(dv, vdupq_n_f32(kVToG));
    const float32x4_t gU = vmulq_f32(du, vdupq_n_f32(kUToG));
    const float32x4_t bU = vmulq_f32(du, vdupq_n_f32(kUToB));
    const int column = 3 * (x + 4 * g);
    convertPixels4<bits>(widenQuarter(luma0[g / 2], g % 2), rV, gV, gU, bU,
                         out0 + column);
    convertPixels4<bits>(widenQuarter(luma1[g / 2], g % 2), rV, gV, gU, bU,
                         out1 + column);
  }
}

}  // namespace

template <typename T, bool uFirst, int bits, int shift>
ConversionResult<T, bits> nv21_to_rgb_impl_C(const T* srcY, const T* srcUV,
                                             float* dstRGB, int width,
                                             int height, int srcYStride,
                                             int srcUVStride, int dstStride) {
  static_assert(shift == 0, "samples enter unshifted; no other shift exists");
  for (int row = 0; row < height; row += 2) {
    const T* y0 = rowAt(srcY, row, srcYStride);
    const T* y1 = rowAt(srcY, row + 1, srcYStride);
    const T* uv = rowAt(srcUV, row / 2, srcUVStride);
    float* out0 = rowAt(dstRGB, row, dstStride);
    float* out1 = rowAt(dstRGB, row + 1, dstStride);
    for (int x = 0; x < width; x += 2) {
      convertBlock<T, uFirst, bits>(y0, y1, uv, out0, out1, x);
    }
  }
  return 0;
}

template <typename T, bool uFirst, int bits, int shift>
ConversionResult<T, bits> nv21_to_rgb_impl(const T* srcY, const T* srcUV,
                                           float* dstRGB, int width, int height,
                                           int srcYStride, int srcUVStride,
                                           int dstStride) {
  static_assert(shift == 0, "samples enter unshifted; no other shift exists");
  // Output rows closer than 12 bytes a pixel overlap (the entry lets such a
  // stride through); then the order of the writes decides the final bytes,
  // and that order is the scalar one.
  if (static_cast<int64_t>(dstStride) < 12 * static_cast<int64_t>(width)) {
    return nv21_to_rgb_impl_C<T, uFirst, bits, shift>(
        srcY, srcUV, dstRGB, width, height, srcYStride, srcUVStride, dstStride);
  }
  for (int row = 0; row < height; row += 2) {
    const T* y0 = rowAt(srcY, row, srcYStride);
    const T* y1 = rowAt(srcY, row + 1, srcYStride);
    const T* uv = rowAt(srcUV, row / 2, srcUVStride);
    float* out0 = rowAt(dstRGB, row, dstStride);
    float* out1 = rowAt(dstRGB, row + 1, dstStride);
    int x = 0;
    for (; x <= width - 16; x += 16) {
      convertStep<T, uFirst, bits, 16>(y0, y1, uv, out0, out1, x);
    }
    if (x <= width - 8) {
      convertStep<T, uFirst, bits, 8>(y0, y1, uv, out0, out1, x);
      x += 8;
    }
    for (; x < width; x += 2) {
      convertBlock<T, uFirst, bits>(y0, y1, uv, out0, out1, x);
    }
  }
  return 0;
}

template int nv21_to_rgb_impl<uint8_t, false, 8, 0>(const uint8_t*,
                                                    const uint8_t*, float*, int,
                                                    int, int, int, int);
template int nv21_to_rgb_impl<uint8_t, true, 8, 0>(const uint8_t*,
                                                   const uint8_t*, float*, int,
                                                   int, int, int, int);
template int nv21_to_rgb_impl<uint16_t, true, 10, 0>(const uint16_t*,
                                                     const uint16_t*, float*,
                                                     int, int, int, int, int);
template int nv21_to_rgb_impl_C<uint8_t, false, 8, 0>(const uint8_t*,
                                                      const uint8_t*, float*,
                                                      int, int, int, int, int);
template int nv21_to_rgb_impl_C<uint8_t, true, 8, 0>(const uint8_t*,
                                                     const uint8_t*, float*,
                                                     int, int, int, int, int);
template int nv21_to_rgb_impl_C<uint16_t, true, 10, 0>(const uint16_t*,
                                                       const uint16_t*, float*,
                                                       int, int, int, int, int);

}  // namespace pavona::internal

namespace pavona {

template int nv21_to_rgb<uint8_t, false, 8, 0>(const uint8_t*, const uint8_t*,
                                               float*, int, int, int, int, int);
template int nv21_to_rgb<uint8_t, true, 8, 0>(const uint8_t*, const uint8_t*,
                                              float*, int, int, int, int, int);
template int nv21_to_rgb<uint16_t, true, 10, 0>(const uint16_t*,
                                                const uint16_t*, float*, int,
                                                int, int, int, int);

}  // namespace pavona
