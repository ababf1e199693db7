// Nearest-centre assignment, four samples a step.
//
// Body (samples 0 ... 4*(count/4)-1): vld3q_f32 de-interleaves four r,g,b
// samples into three channel vectors; for each centre in order
//   d = (dr*dr + dg*dg) + db*db,   d = sample - centre,
//   closer = d < nearest (vcltq_f32, false for NaN),
//   nearest, label = closer ? d, i : nearest, label   (vbslq).
// Looping over centres inside the four-sample block sees, for every sample,
// the same comparisons in the same centre order as the plain loop over
// centres outside, so results are identical to assignNearest_C.
// Tail (the count mod 4 samples left) uses the weighted distance, scalar.
//
// Reads exactly count samples (whole 12-byte records, nothing past the
// last), k centres, and nearest/labels[0 ... count-1]; writes only
// nearest/labels[0 ... count-1].
#include "src/neon/kmeans_assign.h"

#include "zel/neon/neon_compat.h"

namespace pavona::internal {

namespace {

void assignTail(const _Point* samples, int first, int count,
                const _Point* centres, int k, float* nearest, int* labels) {
  for (int i = 0; i < k; ++i) {
    for (int j = first; j < count; ++j) {
      const float d = weightedDistance(samples[j], centres[i]);
      if (d < nearest[j]) {
        nearest[j] = d;
        labels[j] = i;
      }
    }
  }
}

}  // namespace

void assignNearest_NEON(const _Point* samples, int count, const _Point* centres,
                        int k, float* nearest, int* labels) {
  const int body = count / 4 * 4;
  for (int j = 0; j < body; j += 4) {
    const float32x4x3_t s = vld3q_f32(&samples[j].r);
    float32x4_t best = vld1q_f32(nearest + j);
    int32x4_t label = vld1q_s32(labels + j);
    for (int i = 0; i < k; ++i) {
      const float32x4_t dr = vsubq_f32(s.val[0], vdupq_n_f32(centres[i].r));
      const float32x4_t dg = vsubq_f32(s.val[1], vdupq_n_f32(centres[i].g));
      const float32x4_t db = vsubq_f32(s.val[2], vdupq_n_f32(centres[i].b));
      const float32x4_t d = vaddq_f32(
          vaddq_f32(vmulq_f32(dr, dr), vmulq_f32(dg, dg)), vmulq_f32(db, db));
      const uint32x4_t closer = vcltq_f32(d, best);
      best = vbslq_f32(closer, d, best);
      label = vbslq_s32(closer, vdupq_n_s32(i), label);
    }
    vst1q_f32(nearest + j, best);
    vst1q_s32(labels + j, label);
  }
  assignTail(samples, body, count, centres, k, nearest, labels);
}

void assignNearest_C(const _Point* samples, int count, const _Point* centres,
                     int k, float* nearest, int* labels) {
  const int body = count / 4 * 4;
  for (int i = 0; i < k; ++i) {
    for (int j = 0; j < body; ++j) {
      const float d = plainDistance(samples[j], centres[i]);
      if (d < nearest[j]) {
        nearest[j] = d;
        labels[j] = i;
      }
    }
  }
  assignTail(samples, body, count, centres, k, nearest, labels);
}

}  // namespace pavona::internal
