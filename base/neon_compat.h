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

#endif  // PAVONA_BASE_NEON_COMPAT_H_
