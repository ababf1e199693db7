// Nearest-centre assignment, four samples a step.
//
// Body (samples 0 ... 4*(count/4)-1): four samples are three channel
// vectors loaded from the planes; for each centre in order
//   d = (dr*dr + dg*dg) + db*db,   d = sample - centre,
//   closer = d < nearest (vcltq_f32, false for NaN),
//   nearest, label = closer ? d, i : nearest, label   (vbslq).
// Looping over centres inside the sample block sees, for every sample, the
// same comparisons in the same centre order as the plain loop over centres
// outside, so results are identical to assignNearest_C. Two blocks of four
// go through the centre loop together: the compare-and-select chain of one
// block then overlaps the other's arithmetic instead of waiting on itself.
// The first chunk of centres starts at kFar and label 0 in registers, and
// centre 0 needs no label select: a sample it takes keeps label 0. Centres
// are taken a chunk at a time, broadcast into vectors once a call; a
// sample's best distance and label carry from one chunk to the next through
// nearest and labels, so the centre order is still 0 ... k-1.
// Tail (the count mod 4 samples left) uses the weighted distance, scalar.
//
// Reads count floats of each plane and k centres; writes only
// nearest/labels[0 ... count-1].
#include "src/neon/kmeans_assign.h"

#include <algorithm>
#include <cstring>

#include "base/neon_compat.h"

namespace pavona::internal {

namespace {

// Centres broadcast at a time: enough for every k the palette engine asks.
constexpr int kChunk = 20;

struct CentreVectors {
  float32x4_t r;
  float32x4_t g;
  float32x4_t b;
};

float32x4x3_t loadSamples(SamplePlanes samples, int j) {
  return {{vld1q_f32(samples.r + j), vld1q_f32(samples.g + j),
           vld1q_f32(samples.b + j)}};
}

_Point sampleAt(SamplePlanes samples, int j) {
  return {samples.r[j], samples.g[j], samples.b[j]};
}

float32x4_t distance(const float32x4x3_t& s, const CentreVectors& c) {
  const float32x4_t dr = vsubq_f32(s.val[0], c.r);
  const float32x4_t dg = vsubq_f32(s.val[1], c.g);
  const float32x4_t db = vsubq_f32(s.val[2], c.b);
  return vaddq_f32(vaddq_f32(vmulq_f32(dr, dr), vmulq_f32(dg, dg)),
                   vmulq_f32(db, db));
}

// Blocks of four samples that go through the centre loop together, starting
// from kFar and label 0 (kFromFar) or from what nearest and labels hold.
template <int kBlocks, bool kFromFar>
void assignBlocks(SamplePlanes samples, int first, int last,
                  const CentreVectors* centres, int firstLabel, int k,
                  float* nearest, int* labels) {
  constexpr int kStep = 4 * kBlocks;
  const float32x4_t far = vreinterpretq_f32_u8(vdupq_n_u8(kFarByte));
  for (int j = first; j + kStep <= last; j += kStep) {
    float32x4x3_t s[kBlocks];
    float32x4_t best[kBlocks];
    int32x4_t label[kBlocks];
    int i = 0;
    for (int b = 0; b < kBlocks; ++b) {
      s[b] = loadSamples(samples, j + 4 * b);
      if constexpr (kFromFar) {
        const float32x4_t d = distance(s[b], centres[0]);
        best[b] = vbslq_f32(vcltq_f32(d, far), d, far);
        label[b] = vdupq_n_s32(0);
      } else {
        best[b] = vld1q_f32(nearest + j + 4 * b);
        label[b] = vld1q_s32(labels + j + 4 * b);
      }
    }
    if constexpr (kFromFar) i = 1;
    int32x4_t index = vdupq_n_s32(firstLabel + i);
    for (; i < k; ++i) {
      for (int b = 0; b < kBlocks; ++b) {
        const float32x4_t d = distance(s[b], centres[i]);
        const uint32x4_t closer = vcltq_f32(d, best[b]);
        best[b] = vbslq_f32(closer, d, best[b]);
        label[b] = vbslq_s32(closer, index, label[b]);
      }
      index = vaddq_s32(index, vdupq_n_s32(1));
    }
    for (int b = 0; b < kBlocks; ++b) {
      vst1q_f32(nearest + j + 4 * b, best[b]);
      vst1q_s32(labels + j + 4 * b, label[b]);
    }
  }
}

// Samples [first, last) through k centres, a pair of blocks at a time and a
// last single block.
template <bool kFromFar>
void assignBody(SamplePlanes samples, int first, int last,
                const CentreVectors* centres, int firstLabel, int k,
                float* nearest, int* labels) {
  const int pairs = first + (last - first) / 8 * 8;
  assignBlocks<2, kFromFar>(samples, first, pairs, centres, firstLabel, k,
                            nearest, labels);
  assignBlocks<1, kFromFar>(samples, pairs, last, centres, firstLabel, k,
                            nearest, labels);
}

// Samples [first, count) from what nearest and labels hold.
template <class Sample>
void assignTail(Sample sample, int first, int count, const _Point* centres,
                int k, float* nearest, int* labels) {
  for (int i = 0; i < k; ++i) {
    for (int j = first; j < count; ++j) {
      const float d = weightedDistance(sample(j), centres[i]);
      if (d < nearest[j]) {
        nearest[j] = d;
        labels[j] = i;
      }
    }
  }
}

// The body in chunks of centres; only the first chunk may start from far.
void assignChunks(SamplePlanes samples, int body, const _Point* centres, int k,
                  float* nearest, int* labels) {
  CentreVectors chunk[kChunk];
  for (int first = 0; first < k; first += kChunk) {
    const int n = std::min(kChunk, k - first);
    for (int i = 0; i < n; ++i) {
      chunk[i] = {vdupq_n_f32(centres[first + i].r),
                  vdupq_n_f32(centres[first + i].g),
                  vdupq_n_f32(centres[first + i].b)};
    }
    if (first == 0) {
      assignBody<true>(samples, 0, body, chunk, first, n, nearest, labels);
    } else {
      assignBody<false>(samples, 0, body, chunk, first, n, nearest, labels);
    }
  }
}

}  // namespace

SamplePlanes splitSamples_NEON(const _Point* samples, int count,
                               float* planes) {
  const SamplePlanes split{planes, planes + count, planes + 2 * count};
  float* r = planes;
  float* g = planes + count;
  float* b = planes + 2 * count;
  int j = 0;
  for (; j + 4 <= count; j += 4) {
    const float32x4x3_t s = vld3q_f32(&samples[j].r);
    vst1q_f32(r + j, s.val[0]);
    vst1q_f32(g + j, s.val[1]);
    vst1q_f32(b + j, s.val[2]);
  }
  for (; j < count; ++j) {
    r[j] = samples[j].r;
    g[j] = samples[j].g;
    b[j] = samples[j].b;
  }
  return split;
}

SamplePlanes splitSamples_C(const _Point* samples, int count, float* planes) {
  for (int j = 0; j < count; ++j) {
    planes[j] = samples[j].r;
    planes[count + j] = samples[j].g;
    planes[2 * count + j] = samples[j].b;
  }
  return {planes, planes + count, planes + 2 * count};
}

void assignNearest_NEON(SamplePlanes samples, int count, const _Point* centres,
                        int k, float* nearest, int* labels) {
  // Without a centre the body never reaches the registers' start.
  const int body = k < 1 ? 0 : count / 4 * 4;
  std::memset(nearest + body, kFarByte, sizeof(float) * (count - body));
  std::memset(labels + body, 0, sizeof(int) * (count - body));
  assignChunks(samples, body, centres, k, nearest, labels);
  assignTail([&](int j) { return sampleAt(samples, j); }, body, count, centres,
             k, nearest, labels);
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
  assignTail([&](int j) { return samples[j]; }, body, count, centres, k,
             nearest, labels);
}

}  // namespace pavona::internal
