// The one place that chooses the NEON implementation: the compiler's own on
// AArch64, SIMDe's portable translation everywhere else. Every NEON kernel
// includes this header and nothing else for its intrinsics, so the same
// source is built and tested on both.
#ifndef PAVONA_BASE_NEON_COMPAT_H_
#define PAVONA_BASE_NEON_COMPAT_H_

#if defined(__aarch64__)
#include <arm_neon.h>
#else
#define SIMDE_ENABLE_NATIVE_ALIASES
#include <simde/arm/neon.h>
// SIMDe 0.7 lacks vsqrtq_f32; SSE's square root rounds correctly as A64's.
static inline float32x4_t vsqrtq_f32(float32x4_t v) {
  return simde_float32x4_from_m128(_mm_sqrt_ps(simde_float32x4_to_m128(v)));
}
#endif

#include <cstddef>
#include <cstdint>

namespace pavona {

// For operands that are never NaN, nor zeros of both signs: A64 has one
// instruction each, while SIMDe follows A64's NaN rules lane by lane on
// SSE2, where SSE's own forms give the same results for such operands.
#if defined(__aarch64__)
inline float32x4_t minNumbers(float32x4_t a, float32x4_t b) {
  return vminq_f32(a, b);
}
inline float32x4_t maxNumbers(float32x4_t a, float32x4_t b) {
  return vmaxq_f32(a, b);
}
inline float minAcross(float32x4_t v) { return vminvq_f32(v); }
inline float maxAcross(float32x4_t v) { return vmaxvq_f32(v); }
#else
inline float32x4_t minNumbers(float32x4_t a, float32x4_t b) {
  return simde_float32x4_from_m128(
      _mm_min_ps(simde_float32x4_to_m128(a), simde_float32x4_to_m128(b)));
}
inline float32x4_t maxNumbers(float32x4_t a, float32x4_t b) {
  return simde_float32x4_from_m128(
      _mm_max_ps(simde_float32x4_to_m128(a), simde_float32x4_to_m128(b)));
}
inline float minAcross(float32x4_t v) {
  __m128 m = simde_float32x4_to_m128(v);
  m = _mm_min_ps(m, _mm_movehl_ps(m, m));
  return _mm_cvtss_f32(_mm_min_ss(m, _mm_shuffle_ps(m, m, 1)));
}
inline float maxAcross(float32x4_t v) {
  __m128 m = simde_float32x4_to_m128(v);
  m = _mm_max_ps(m, _mm_movehl_ps(m, m));
  return _mm_cvtss_f32(_mm_max_ss(m, _mm_shuffle_ps(m, m, 1)));
}
#endif

// The smaller of a and b, lane by lane, or b where a is a quiet NaN; for b
// never NaN, and no zeros of both signs. A64's minimum of numbers does
// that in one instruction, as SSE's minimum does, which returns its second
// operand where the first is NaN.
inline float32x4_t minOrSecond(float32x4_t a, float32x4_t b) {
#if defined(__aarch64__)
  return vminnmq_f32(a, b);
#else
  return minNumbers(a, b);
#endif
}

// Bit l set where lane l of the comparison mask m is (SSE2 reads the top
// bit of each lane, A64 adds the lanes' weights).
inline uint32_t laneBits(uint32x4_t m) {
#if defined(__aarch64__)
  const uint32x4_t bits = {1, 2, 4, 8};
  return vaddvq_u32(vandq_u32(m, bits));
#else
  return static_cast<uint32_t>(
      _mm_movemask_ps(_mm_castsi128_ps(simde_uint32x4_to_m128i(m))));
#endif
}

// Whether every lane of the comparison mask m is set.
inline bool allLanes(uint32x4_t m) {
#if defined(__aarch64__)
  return vminvq_u32(m) != 0;
#else
  return laneBits(m) == 0xf;
#endif
}

// Whether any lane of the comparison mask m is set.
inline bool anyLane(uint32x4_t m) {
#if defined(__aarch64__)
  return vmaxvq_u32(m) != 0;
#else
  return laneBits(m) != 0;
#endif
}

// The same for sixteen lanes, a's first.
inline uint32_t laneBits(uint32x4_t a, uint32x4_t b, uint32x4_t c,
                         uint32x4_t d) {
#if defined(__aarch64__)
  // A byte a lane, weighted by its bit within each half.
  const uint8x16_t bytes =
      vuzp1q_u8(vreinterpretq_u8_u16(vuzp1q_u16(vreinterpretq_u16_u32(a),
                                                vreinterpretq_u16_u32(b))),
                vreinterpretq_u8_u16(vuzp1q_u16(vreinterpretq_u16_u32(c),
                                                vreinterpretq_u16_u32(d))));
  const uint8x16_t weights = {1, 2, 4, 8, 16, 32, 64, 128,
                              1, 2, 4, 8, 16, 32, 64, 128};
  const uint8x16_t weighted = vandq_u8(bytes, weights);
  return vaddv_u8(vget_low_u8(weighted)) |
         static_cast<uint32_t>(vaddv_u8(vget_high_u8(weighted))) << 8;
#else
  return laneBits(a) | laneBits(b) << 4 | laneBits(c) << 8 | laneBits(d) << 12;
#endif
}

// Lanes base[index[0]] ... base[index[3]], loaded into the registers (a
// vector load of lanes just stored would wait for the stores on x86). A64
// loads each into its lane; SSE2 has no lane load, and its own build of a
// vector from four scalars is shorter than SIMDe's lane by lane.
inline float32x4_t gatherLanes(const float* base, const int* index) {
#if defined(__aarch64__)
  float32x4_t v = vld1q_dup_f32(base + index[0]);
  v = vld1q_lane_f32(base + index[1], v, 1);
  v = vld1q_lane_f32(base + index[2], v, 2);
  return vld1q_lane_f32(base + index[3], v, 3);
#else
  return simde_float32x4_from_m128(_mm_setr_ps(base[index[0]], base[index[1]],
                                               base[index[2]], base[index[3]]));
#endif
}

#if !defined(__aarch64__)
// The set lanes of each eight-lane mask, in order, and how many.
struct Lanes {
  uint8_t lane[8];
  std::size_t count;
};
struct SetLanesTable {
  Lanes of[256];
};
constexpr SetLanesTable setLanesTable() {
  SetLanesTable t{};
  for (int bits = 0; bits < 256; ++bits) {
    for (int l = 0; l < 8; ++l) {
      if (bits >> l & 1)
        t.of[bits].lane[t.of[bits].count++] = static_cast<uint8_t>(l);
    }
  }
  return t;
}
inline constexpr SetLanesTable kSetLanes = setLanesTable();
#endif

// Calls visit(first + l) for each set lane l of the eight-lane masks a, b
// (lanes 0 to 3, then 4 to 7) given to add, in order. A64 visits the set
// lanes at once, for the fewest instructions. x86 copies a mask's set
// lanes from a table, with no branch on the mask where one would
// mispredict, and visits a batch at a time; finish visits the rest.
template <class Visit>
class SetLanes {
 public:
  explicit SetLanes(Visit visit) : visit_(visit) {}

#if defined(__aarch64__)
  void add(uint32x4_t a, uint32x4_t b, int first) {
    if (!anyLane(vorrq_u32(a, b))) return;
    for (uint32_t bits = laneBits(a) | laneBits(b) << 4; bits != 0;
         bits &= bits - 1) {
      visit_(first + __builtin_ctz(bits));
    }
  }

  void finish() {}

 private:
  Visit visit_;
#else
  void add(uint32x4_t a, uint32x4_t b, int first) {
    const Lanes& set = kSetLanes.of[laneBits(a) | laneBits(b) << 4];
    const __m128i lanes = _mm_unpacklo_epi8(
        _mm_loadl_epi64(reinterpret_cast<const __m128i*>(set.lane)),
        _mm_setzero_si128());
    const __m128i from = _mm_set1_epi32(first);
    int* out = listed_ + count_;
    _mm_storeu_si128(
        reinterpret_cast<__m128i*>(out),
        _mm_add_epi32(_mm_unpacklo_epi16(lanes, _mm_setzero_si128()), from));
    _mm_storeu_si128(
        reinterpret_cast<__m128i*>(out + 4),
        _mm_add_epi32(_mm_unpackhi_epi16(lanes, _mm_setzero_si128()), from));
    count_ += set.count;
    if (count_ > kBatch - 8) finish();
  }

  void finish() {
    for (std::size_t i = 0; i < count_; ++i) visit_(listed_[i]);
    count_ = 0;
  }

 private:
  static constexpr std::size_t kBatch = 256;
  Visit visit_;
  int listed_[kBatch];
  // Not an int, which the stores to listed_ could alias: so it stays in a
  // register.
  std::size_t count_ = 0;
#endif
};

}  // namespace pavona

#endif  // PAVONA_BASE_NEON_COMPAT_H_
