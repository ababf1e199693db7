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
// Bounds (assignBounded). Let e_i = |x - c_i| be the real distance of a
// body sample x to centre i, D_i its float distance above, a its label,
// G = min_{i != a} e_i - e_a its real gap, and u = 2^-24. R (gapMargins,
// in double rounded up) bounds every e_i of a pass from the samples' box
// and the centres.
// Rounding: D_i rounds five times over non-negative terms and a square may
// underflow, so |D_i - e_i^2| <= 5.01u e_i^2 + 2^-147 and
//   |fl(sqrt D_i) - e_i| <= 3.6u e_i + 2^-72.                      (1)
// Drift: when the centres move by real shifts s_i, every e_i moves by at
// most s_i, so G falls by at most s_a + max_{i != a} s_i, at most the two
// largest shifts. C_p sums those over the passes up to p (double, rounded
// up), and a gap measured in pass p is in pass q at least
//   G_q >= G_p - (C_q - C_p).                                      (2)
// Measure (pass p, in full): beside the nearest distance D_a keep the
// second nearest D_2 = min_{i != a} D_i (the nearest so far when a centre
// comes nearer, else the smaller of d and D_2 so far) and store
//   H = fl(fl(fl(sqrt D_2) - fl(sqrt D_a)) + base),
//   base = C_p - 16u (R + C_p) - 2^-60 rounded down.
// By (1), sqrt being monotone, the difference is at most
// G_p + 8.3u R + 2^-71 after its rounding, and the sum rounds by at most
// u (1.01 R + C_p), so H <= G_p + C_p.
// Keep (pass q): keep = C_q + 16u R + 2^-60 rounded up. If H > keep, (2)
// gives G_q > 16u R + 2^-60, every e_i >= e_a + 16u R + 2^-60, and by (1)
// D_i > D_a for every i != a: the full evaluation, strict comparison and
// ties alike, gives label a again. R < 2^36 keeps every D below kFar
// (about 2^73.8), so the starting distance never decides. (With k = 1, D_2
// is kFar and every label is 0 anyway.) A held H is read, never rewritten.
// In full: the first pass and those before the centres settle (measuring
// costs more than a plain pass), any pass with a centre or a sample not
// finite or R too large, k > kMaxBoundedCentres, the tail (weighted), and
// every sample with H not above keep, gathered four or eight at a time
// through the compare-and-select chain of the body above, so its labels
// are assignNearest's. A gap is only held from a bounded pass right before.
//
// Reads count floats of each plane and k centres; writes only
// nearest/labels[0 ... count-1] (gaps in place of nearest).
#include "src/neon/kmeans_assign.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "base/neon_compat.h"

namespace pavona::internal {

namespace {

// Gaps are first measured once the two largest centre shifts of a pass sum
// to less than this share of the reach: earlier most of them would fail.
constexpr double kSettled = 1.0 / 16;

// Centres broadcast at a time: enough for every k the palette engine asks.
constexpr int kChunk = 20;

struct CentreVectors {
  float32x4_t r;
  float32x4_t g;
  float32x4_t b;
};

CentreVectors broadcast(const _Point& centre) {
  return {vdupq_n_f32(centre.r), vdupq_n_f32(centre.g), vdupq_n_f32(centre.b)};
}

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
    for (int i = 0; i < n; ++i) chunk[i] = broadcast(centres[first + i]);
    if (first == 0) {
      assignBody<true>(samples, 0, body, chunk, first, n, nearest, labels);
    } else {
      assignBody<false>(samples, 0, body, chunk, first, n, nearest, labels);
    }
  }
}

// The gap a full evaluation stores: (sqrt D_2 - sqrt D_a) + base.
float32x4_t gapOf(float32x4_t best, float32x4_t second, float base) {
  return vaddq_f32(vsubq_f32(vsqrtq_f32(second), vsqrtq_f32(best)),
                   vdupq_n_f32(base));
}

// Blocks of four samples evaluated in full from kFar and label 0, keeping
// the second nearest distance, into gap and label.
template <int kBlocks>
void measure(const float32x4x3_t* s, const CentreVectors* centres, int k,
             float base, float32x4_t* gap, int32x4_t* label) {
  const float32x4_t far = vreinterpretq_f32_u8(vdupq_n_u8(kFarByte));
  float32x4_t best[kBlocks];
  float32x4_t second[kBlocks];
  for (int b = 0; b < kBlocks; ++b) {
    const float32x4_t d = distance(s[b], centres[0]);
    best[b] = vbslq_f32(vcltq_f32(d, far), d, far);
    second[b] = far;
    label[b] = vdupq_n_s32(0);
  }
  int32x4_t index = vdupq_n_s32(1);
  for (int i = 1; i < k; ++i) {
    for (int b = 0; b < kBlocks; ++b) {
      const float32x4_t d = distance(s[b], centres[i]);
      const uint32x4_t closer = vcltq_f32(d, best[b]);
      const float32x4_t other =
          vbslq_f32(vcltq_f32(d, second[b]), d, second[b]);
      second[b] = vbslq_f32(closer, best[b], other);
      best[b] = vbslq_f32(closer, d, best[b]);
      label[b] = vbslq_s32(closer, index, label[b]);
    }
    index = vaddq_s32(index, vdupq_n_s32(1));
  }
  for (int b = 0; b < kBlocks; ++b) gap[b] = gapOf(best[b], second[b], base);
}

// Samples j ... j + 4 kBlocks - 1 measured.
template <int kBlocks>
void measureBlocks(SamplePlanes samples, int j, const CentreVectors* centres,
                   int k, float base, float* gaps, int* labels) {
  float32x4x3_t s[kBlocks];
  float32x4_t gap[kBlocks];
  int32x4_t label[kBlocks];
  for (int b = 0; b < kBlocks; ++b) s[b] = loadSamples(samples, j + 4 * b);
  measure<kBlocks>(s, centres, k, base, gap, label);
  for (int b = 0; b < kBlocks; ++b) {
    vst1q_f32(gaps + j + 4 * b, gap[b]);
    vst1q_s32(labels + j + 4 * b, label[b]);
  }
}

// Samples [0, last) measured, a pair of blocks at a time.
void measureBody(SamplePlanes samples, int last, const CentreVectors* centres,
                 int k, float base, float* gaps, int* labels) {
  int j = 0;
  for (; j + 8 <= last; j += 8)
    measureBlocks<2>(samples, j, centres, k, base, gaps, labels);
  for (; j < last; j += 4)
    measureBlocks<1>(samples, j, centres, k, base, gaps, labels);
}

// Samples whose gaps failed, gathered eight at a time from scattered
// blocks: near a cluster's border only some lanes of a block fail.
class Remeasure {
 public:
  Remeasure(SamplePlanes samples, const CentreVectors* centres, int k,
            float base, float* gaps, int* labels)
      : samples_(samples),
        centres_(centres),
        k_(k),
        base_(base),
        gaps_(gaps),
        labels_(labels) {}

  // The block at j, whose lanes kept (all bits set) or not. Appending is
  // branch-free: which lanes fail is hard to predict.
  void block(int j, uint32x4_t kept) {
    uint32_t lanes[4];
    vst1q_u32(lanes, kept);
    for (int l = 0; l < 4; ++l) {
      index_[count_] = j + l;
      count_ += lanes[l] == 0;
    }
    if (count_ >= 8) {
      measureLanes<2>();
      count_ -= 8;
      for (int l = 0; l < count_; ++l) index_[l] = index_[l + 8];
    }
  }

  // Measures what is left, repeating the last index to fill the lanes.
  void flush() {
    if (count_ == 0) return;
    const int lanes = count_ > 4 ? 8 : 4;
    for (int l = count_; l < lanes; ++l) index_[l] = index_[count_ - 1];
    if (lanes == 8) {
      measureLanes<2>();
    } else {
      measureLanes<1>();
    }
    count_ = 0;
  }

 private:
  SamplePlanes samples_;
  const CentreVectors* centres_;
  int k_;
  float base_;
  float* gaps_;
  int* labels_;
  // Up to seven left over and the four lanes of the next block: two
  // blocks of lanes go through the centres together, as in the body.
  int index_[12] = {};
  int count_ = 0;

  template <int kBlocks>
  void measureLanes() {
    float channel[kBlocks][3][4];
    float32x4x3_t s[kBlocks];
    for (int b = 0; b < kBlocks; ++b) {
      for (int l = 0; l < 4; ++l) {
        channel[b][0][l] = samples_.r[index_[4 * b + l]];
        channel[b][1][l] = samples_.g[index_[4 * b + l]];
        channel[b][2][l] = samples_.b[index_[4 * b + l]];
      }
      s[b] = {{vld1q_f32(channel[b][0]), vld1q_f32(channel[b][1]),
               vld1q_f32(channel[b][2])}};
    }
    float32x4_t gap[kBlocks];
    int32x4_t label[kBlocks];
    measure<kBlocks>(s, centres_, k_, base_, gap, label);
    float gapLanes[4 * kBlocks];
    int labelLanes[4 * kBlocks];
    for (int b = 0; b < kBlocks; ++b) {
      vst1q_f32(gapLanes + 4 * b, gap[b]);
      vst1q_s32(labelLanes + 4 * b, label[b]);
    }
    for (int l = 0; l < 4 * kBlocks; ++l) {
      gaps_[index_[l]] = gapLanes[l];
      labels_[index_[l]] = labelLanes[l];
    }
  }
};

// Samples whose held gaps are above keep keep their labels; the others
// are measured again. Pairs of blocks are tested with one reduction.
void carryBody(SamplePlanes samples, int last, const CentreVectors* centres,
               int k, const GapMargins& margins, float* gaps, int* labels) {
  const float32x4_t keep = vdupq_n_f32(margins.keep);
  Remeasure remeasure(samples, centres, k, margins.base, gaps, labels);
  int j = 0;
  for (; j + 8 <= last; j += 8) {
    const uint32x4_t a = vcgtq_f32(vld1q_f32(gaps + j), keep);
    const uint32x4_t b = vcgtq_f32(vld1q_f32(gaps + j + 4), keep);
    if (vminvq_u32(vandq_u32(a, b)) != 0) continue;
    remeasure.block(j, a);
    remeasure.block(j + 4, b);
  }
  if (j < last) remeasure.block(j, vcgtq_f32(vld1q_f32(gaps + j), keep));
  remeasure.flush();
}

// Scalar twin of measure, for sample j.
void measure_C(const _Point* samples, int j, const _Point* centres, int k,
               float base, float* gaps, int* labels) {
  float far;
  std::memset(&far, kFarByte, sizeof far);
  float best = far;
  float second = far;
  int label = 0;
  for (int i = 0; i < k; ++i) {
    const float d = plainDistance(samples[j], centres[i]);
    if (d < best) {
      second = best;
      best = d;
      label = i;
    } else if (d < second) {
      second = d;
    }
  }
  gaps[j] = (std::sqrt(second) - std::sqrt(best)) + base;
  labels[j] = label;
}

// The tail as assignNearest leaves it.
template <class Sample>
void assignTailFromFar(Sample sample, int body, int count,
                       const _Point* centres, int k, float* nearest,
                       int* labels) {
  std::memset(nearest + body, kFarByte, sizeof(float) * (count - body));
  std::memset(labels + body, 0, sizeof(int) * (count - body));
  assignTail(sample, body, count, centres, k, nearest, labels);
}

double maxAbs(double a, float b, float c) {
  return std::max(a, std::fabs(static_cast<double>(b) - c));
}

bool finite(const _Point& p) {
  return std::isfinite(p.r) && std::isfinite(p.g) && std::isfinite(p.b);
}

void widen(SampleBox& box, const _Point& p) {
  box.low = {std::min(box.low.r, p.r), std::min(box.low.g, p.g),
             std::min(box.low.b, p.b)};
  box.high = {std::max(box.high.r, p.r), std::max(box.high.g, p.g),
              std::max(box.high.b, p.b)};
}

SampleBox notFinite() {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  return {{nan, nan, nan}, {nan, nan, nan}};
}

// The smallest float not below x, and the largest not above.
float roundUp(double x) {
  const float f = static_cast<float>(x);
  return static_cast<double>(f) < x ? std::nextafter(f, INFINITY) : f;
}

float roundDown(double x) {
  const float f = static_cast<float>(x);
  return static_cast<double>(f) > x ? std::nextafter(f, -INFINITY) : f;
}

}  // namespace

SampleBox sampleBox_NEON(SamplePlanes samples, int count) {
  const uint32x4_t exponent = vdupq_n_u32(0x7f800000u);
  float32x4_t low[3];
  float32x4_t high[3];
  uint32x4_t special = vdupq_n_u32(0);
  const float* plane[3] = {samples.r, samples.g, samples.b};
  for (int c = 0; c < 3; ++c) low[c] = high[c] = vdupq_n_f32(plane[c][0]);
  int j = 0;
  for (; j + 4 <= count; j += 4) {
    for (int c = 0; c < 3; ++c) {
      const float32x4_t v = vld1q_f32(plane[c] + j);
      low[c] = vbslq_f32(vcltq_f32(v, low[c]), v, low[c]);
      high[c] = vbslq_f32(vcgtq_f32(v, high[c]), v, high[c]);
      const uint32x4_t bits = vandq_u32(vreinterpretq_u32_f32(v), exponent);
      special = vorrq_u32(special, vceqq_u32(bits, exponent));
    }
  }
  _Point corner[2];
  float* out[2] = {&corner[0].r, &corner[1].r};
  for (int c = 0; c < 3; ++c) {
    float lanes[2][4];
    vst1q_f32(lanes[0], low[c]);
    vst1q_f32(lanes[1], high[c]);
    out[0][c] = std::min({lanes[0][0], lanes[0][1], lanes[0][2], lanes[0][3]});
    out[1][c] = std::max({lanes[1][0], lanes[1][1], lanes[1][2], lanes[1][3]});
  }
  SampleBox box{corner[0], corner[1]};
  bool finiteAll = vmaxvq_u32(special) == 0;
  for (; j < count; ++j) {
    const _Point p = sampleAt(samples, j);
    finiteAll = finiteAll && finite(p);
    widen(box, p);
  }
  return finiteAll ? box : notFinite();
}

SampleBox sampleBox_C(const _Point* samples, int count) {
  SampleBox box{samples[0], samples[0]};
  for (int j = 0; j < count; ++j) {
    if (!finite(samples[j])) return notFinite();
    widen(box, samples[j]);
  }
  return box;
}

GapMargins gapMargins(const SampleBox& box, const _Point* last,
                      const _Point* centres, int k, double drift) {
  constexpr double kU = 0x1p-24;
  // Covers the double roundings of R, the shifts and the drift.
  constexpr double kSlack = 1 + 0x1p-40;
  bool usable = finite(box.low) && finite(box.high);
  double reach[3] = {0, 0, 0};
  double top1 = 0;
  double top2 = 0;
  for (int i = 0; i < k; ++i) {
    const _Point& c = centres[i];
    usable = usable && finite(c);
    reach[0] = maxAbs(maxAbs(reach[0], c.r, box.low.r), box.high.r, c.r);
    reach[1] = maxAbs(maxAbs(reach[1], c.g, box.low.g), box.high.g, c.g);
    reach[2] = maxAbs(maxAbs(reach[2], c.b, box.low.b), box.high.b, c.b);
    const double dr = static_cast<double>(c.r) - last[i].r;
    const double dg = static_cast<double>(c.g) - last[i].g;
    const double db = static_cast<double>(c.b) - last[i].b;
    const double shift = std::sqrt(dr * dr + dg * dg + db * db) * kSlack;
    if (shift > top1) {
      top2 = top1;
      top1 = shift;
    } else if (shift > top2) {
      top2 = shift;
    }
  }
  const double reachAll = std::sqrt(reach[0] * reach[0] + reach[1] * reach[1] +
                                    reach[2] * reach[2]) *
                          kSlack;
  usable = usable && reachAll < 0x1p36;
  const double drifted = (drift + top1 + top2) * kSlack;
  const double margin = 16 * kU * reachAll + 0x1p-60;
  return {usable, top1 + top2 < reachAll * kSettled, drifted,
          roundUp((drifted + margin) * kSlack),
          roundDown(drifted - margin - 16 * kU * drifted)};
}

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
  assignChunks(samples, body, centres, k, nearest, labels);
  assignTailFromFar([&](int j) { return sampleAt(samples, j); }, body, count,
                    centres, k, nearest, labels);
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

void assignBounded_NEON(SamplePlanes samples, int count, const _Point* centres,
                        int k, const GapMargins& margins, bool held,
                        float* gaps, int* labels) {
  CentreVectors vectors[kMaxBoundedCentres];
  for (int i = 0; i < k; ++i) vectors[i] = broadcast(centres[i]);
  const int body = count / 4 * 4;
  if (held) {
    carryBody(samples, body, vectors, k, margins, gaps, labels);
  } else {
    measureBody(samples, body, vectors, k, margins.base, gaps, labels);
  }
  assignTailFromFar([&](int j) { return sampleAt(samples, j); }, body, count,
                    centres, k, gaps, labels);
}

void assignBounded_C(const _Point* samples, int count, const _Point* centres,
                     int k, const GapMargins& margins, bool held, float* gaps,
                     int* labels) {
  const int body = count / 4 * 4;
  for (int j = 0; j < body; ++j) {
    if (!held || !(gaps[j] > margins.keep))
      measure_C(samples, j, centres, k, margins.base, gaps, labels);
  }
  assignTailFromFar([&](int j) { return samples[j]; }, body, count, centres, k,
                    gaps, labels);
}

BoundedAssignment::BoundedAssignment(SamplePlanes planes, int count,
                                     float* gaps, int* labels)
    : planes_(planes),
      count_(count),
      gaps_(gaps),
      labels_(labels),
      box_(count > 0 ? sampleBox_NEON(planes, count) : notFinite()) {}

void BoundedAssignment::assign(const _Point* centres, int k) {
  const bool boundable = k >= 1 && k <= kMaxBoundedCentres;
  const GapMargins margins = boundable
                                 ? gapMargins(box_, started_ ? last_ : centres,
                                              centres, k, held_ ? drift_ : 0)
                                 : GapMargins{};
  // Measuring costs more than a plain pass: it waits for settled centres.
  const bool bounded =
      margins.usable && (held_ || (started_ && margins.settled));
  if (bounded) {
    assignBounded_NEON(planes_, count_, centres, k, margins, held_, gaps_,
                       labels_);
  } else {
    assignNearest_NEON(planes_, count_, centres, k, gaps_, labels_);
  }
  if (boundable) std::copy(centres, centres + k, last_);
  started_ = boundable;
  held_ = bounded;
  drift_ = margins.drift;
}

}  // namespace pavona::internal
