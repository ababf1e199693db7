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
// Measure (pass p): against the centres measured, beside the nearest
// distance D_b keep the second nearest D_2 (the nearest so far when a
// centre comes nearer, else the smaller of d and D_2 so far), take
// S = min(fl(sqrt D_2), L) with L a bound on the centres left out (below;
// infinity when none is), and store
//   H = fl(fl(S - fl(sqrt D_b)) + base),
//   base = C_p - 16u (R + C_p) - 2^-60 rounded down.
// With S <= e_2 + 3.6u R + 2^-72 for the real second nearest e_2, by (1)
// the difference is at most G_p + 8.3u R + 2^-71 after its rounding, and
// the sum rounds by at most u (1.01 R + C_p), so H <= G_p + C_p.
// Keep (pass q): keep = C_q + 16u R + 2^-60 rounded up. If H > keep, (2)
// gives G_q > 16u R + 2^-60, every e_i >= e_a + 16u R + 2^-60, and by (1)
// D_i > D_a for every i != a: the full evaluation, strict comparison and
// ties alike, gives label a again. R < 2^36 keeps every D below kFar
// (about 2^73.8), so the starting distance never decides. (With k = 1, D_2
// is kFar and every label is 0 anyway.) A held H is read, never rewritten.
// Candidates (samples whose H fails, by last label a): only centres near
// c_a can be nearer. The spacing P_i = fl(fl(sqrt D(c_i, c_a)) (1 - 2^-20))
// is by (1) at most |c_i - c_a| + 2^-72. A group takes the largest
// U = fl(sqrt D_a) of its samples, at least e_a - 3.6u R - 2^-72 for each,
// and T = fl(2U + E), E = 32u R + 2^-58 rounded up, so that
// T >= 2U + E - u (2.01 R + E). A centre with P_i > T then has
//   e_i >= |c_i - c_a| - e_a > e_a + 16u R + 2^-60,
// and D_i > D_b as under Keep for the nearest b of the others, as a is
// one of them (P_a = 0): the centres with P_i <= T, in order, give the full
// evaluation's label. For those left out, with P their smallest spacing
// and V = fl(fl(sqrt D_a) + F) >= e_a, F = 5u R + 2^-70 rounded up,
//   L = fl(P - V) <= e_i + 2.01u R + 2^-72.
// In full: below kMeasureAtOnce centres, the first pass and those before
// the centres settle (measuring costs more than a plain pass); any pass
// with a centre or a sample not finite or R too large, k >
// kMaxBoundedCentres, and the tail (weighted). The first bounded pass
// measures every centre; then each sample with H not above keep is
// measured against its candidates, in groups of up to eight that share a
// last label, filled in sample order and gathered through the
// compare-and-select chain of the body above, so its labels are
// assignNearest's. A gap is only held from a bounded pass right before.
//
// Reads count floats of each plane and k centres; writes only
// nearest/labels[0 ... count-1] (gaps in place of nearest).
#include "src/neon/kmeans_assign.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
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
        best[b] = minOrSecond(d, far);
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
        best[b] = minOrSecond(d, best[b]);
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

// Centre spacings of a pass: row a holds |c_i - c_a| for i < k as the
// float distance computes it, times kBelow, then infinity to the end of
// the row (a whole number of vectors).
struct Spacing {
  float row[kMaxBoundedCentres][kMaxBoundedCentres];
};
static_assert(kMaxBoundedCentres == 20, "rows are five vectors");

// Keeps a spacing at most 2^-72 above the real one: see the opening
// comment.
constexpr float kBelow = 1 - 0x1p-20f;

// Centres past k are infinite, so their spacings are too.
void spaceCentres(const _Point* centres, int k, Spacing& spacing) {
  float planes[3][kMaxBoundedCentres];
  for (int i = 0; i < kMaxBoundedCentres; ++i) {
    const _Point c = i < k ? centres[i] : _Point{INFINITY, INFINITY, INFINITY};
    planes[0][i] = c.r;
    planes[1][i] = c.g;
    planes[2][i] = c.b;
  }
  for (int a = 0; a < k; ++a) {
    const CentreVectors from = broadcast(centres[a]);
    for (int i = 0; i < kMaxBoundedCentres; i += 4) {
      const float32x4x3_t to = {{vld1q_f32(planes[0] + i),
                                 vld1q_f32(planes[1] + i),
                                 vld1q_f32(planes[2] + i)}};
      vst1q_f32(spacing.row[a] + i,
                vmulq_n_f32(vsqrtq_f32(distance(to, from)), kBelow));
    }
  }
}

void spaceCentres_C(const _Point* centres, int k, Spacing& spacing) {
  for (int a = 0; a < k; ++a) {
    for (int i = 0; i < kMaxBoundedCentres; ++i) {
      spacing.row[a][i] =
          i < k ? std::sqrt(plainDistance(centres[i], centres[a])) * kBelow
                : INFINITY;
    }
  }
}

// The centres a group measures (bit i for centre i), and the smallest
// spacing of those left out, infinity when none is.
struct Candidates {
  uint32_t mask;
  float nearestLeftOut;
};

inline Candidates candidates(const float* row, float reach) {
  const float32x4_t limit = vdupq_n_f32(reach);
  const float32x4_t none = vdupq_n_f32(INFINITY);
  uint32x4_t in[5];
  float32x4_t nearest = none;
  for (int v = 0; v < 5; ++v) {
    const float32x4_t spacing = vld1q_f32(row + 4 * v);
    in[v] = vcleq_f32(spacing, limit);
    nearest = minNumbers(nearest, vbslq_f32(in[v], none, spacing));
  }
  return {laneBits(in[0], in[1], in[2], in[3]) | laneBits(in[4]) << 16,
          minAcross(nearest)};
}

Candidates candidates_C(const float* row, float reach) {
  Candidates c{0, INFINITY};
  for (int i = 0; i < kMaxBoundedCentres; ++i) {
    if (row[i] <= reach) {
      c.mask |= 1u << i;
    } else {
      c.nearestLeftOut = std::min(c.nearestLeftOut, row[i]);
    }
  }
  return c;
}

// Blocks of four samples evaluated against the centres in mask, in order,
// from kFar and label 0, keeping the second nearest distance; the gap
// takes the smaller of its square root and the bound on those left out.
// Centre `known` (or none, -1) takes its distances from knownDistance: a
// group has them already from choosing its candidates. Bounded passes have
// finite distances only, so a minimum keeps the nearer of two.
template <int kBlocks>
void measure(const float32x4x3_t* s, const CentreVectors* centres,
             uint32_t mask, int known, const float32x4_t* knownDistance,
             float base, const float32x4_t* leftOut, float32x4_t* gap,
             int32x4_t* label) {
  const float32x4_t far = vreinterpretq_f32_u8(vdupq_n_u8(kFarByte));
  float32x4_t best[kBlocks];
  float32x4_t second[kBlocks];
  for (int b = 0; b < kBlocks; ++b) {
    best[b] = second[b] = far;
    label[b] = vdupq_n_s32(0);
  }
  for (; mask != 0; mask &= mask - 1) {
    const int i = __builtin_ctz(mask);
    const int32x4_t index = vdupq_n_s32(i);
    for (int b = 0; b < kBlocks; ++b) {
      const float32x4_t d =
          i == known ? knownDistance[b] : distance(s[b], centres[i]);
      const uint32x4_t closer = vcltq_f32(d, best[b]);
      second[b] = vbslq_f32(closer, best[b], minNumbers(d, second[b]));
      best[b] = minNumbers(d, best[b]);
      label[b] = vbslq_s32(closer, index, label[b]);
    }
  }
  for (int b = 0; b < kBlocks; ++b) {
    const float32x4_t near = minNumbers(vsqrtq_f32(second[b]), leftOut[b]);
    gap[b] = vaddq_f32(vsubq_f32(near, vsqrtq_f32(best[b])), vdupq_n_f32(base));
  }
}

// Samples [0, last) measured against every centre, a pair of blocks at a
// time.
void measureBody(SamplePlanes samples, int last, const CentreVectors* centres,
                 int k, float base, float* gaps, int* labels) {
  const uint32_t all = (uint32_t{1} << k) - 1;
  const float32x4_t none[2] = {vdupq_n_f32(INFINITY), vdupq_n_f32(INFINITY)};
  int j = 0;
  for (; j + 8 <= last; j += 8) {
    const float32x4x3_t s[2] = {loadSamples(samples, j),
                                loadSamples(samples, j + 4)};
    float32x4_t gap[2];
    int32x4_t label[2];
    measure<2>(s, centres, all, -1, none, base, none, gap, label);
    for (int b = 0; b < 2; ++b) {
      vst1q_f32(gaps + j + 4 * b, gap[b]);
      vst1q_s32(labels + j + 4 * b, label[b]);
    }
  }
  for (; j < last; j += 4) {
    const float32x4x3_t s = loadSamples(samples, j);
    float32x4_t gap;
    int32x4_t label;
    measure<1>(&s, centres, all, -1, none, base, none, &gap, &label);
    vst1q_f32(gaps + j, gap);
    vst1q_s32(labels + j, label);
  }
}

// Samples whose held gaps failed, in groups of up to eight with the same
// last label, filled in the order the samples fail; measure(index, count,
// label) takes a group, whose index array has room for eight.
template <class Measure>
class Groups {
 public:
  Groups(const int* labels, Measure measure)
      : labels_(labels), measure_(measure) {
    for (int label = 0; label < kMaxBoundedCentres; ++label)
      next_[label] = index_[label];
  }

  void add(int j) {
    const int label = labels_[j];
    int* next = next_[label];
    *next++ = j;
    // Each group's room ends where an aligned block of eight does.
    if (reinterpret_cast<uintptr_t>(next) % sizeof index_[0] != 0) {
      next_[label] = next;
      return;
    }
    next_[label] = index_[label];
    measure_(index_[label], 8, label);
  }

  // The groups left part full, by label.
  void flush(int k) {
    for (int label = 0; label < k; ++label) {
      const int count = static_cast<int>(next_[label] - index_[label]);
      if (count > 0) measure_(index_[label], count, label);
    }
  }

 private:
  const int* labels_;
  Measure measure_;
  alignas(sizeof(int[8])) int index_[kMaxBoundedCentres][8];
  int* next_[kMaxBoundedCentres];
};

// Candidates for a group: twice its largest distance to the last centre
// plus the margin; the others' spacings from that centre exceed it.
float reachOf(float largestOwn, const GapMargins& margins) {
  return 2 * largestOwn + margins.exclude;
}

// A group measured four lanes at a time, gathered from where its samples
// are; lanes past count repeat the last sample.
class GroupMeasure {
 public:
  GroupMeasure(SamplePlanes samples, const CentreVectors* centres,
               const Spacing& spacing, const GapMargins& margins, float* gaps,
               int* labels)
      : samples_(samples),
        centres_(centres),
        spacing_(spacing),
        margins_(margins),
        gaps_(gaps),
        labels_(labels) {}

  void operator()(int* index, int count, int label) const {
    const int lanes = count > 4 ? 8 : 4;
    for (int l = count; l < lanes; ++l) index[l] = index[count - 1];
    if (lanes == 8) {
      measureLanes<2>(index, label);
    } else {
      measureLanes<1>(index, label);
    }
  }

 private:
  SamplePlanes samples_;
  const CentreVectors* centres_;
  const Spacing& spacing_;
  const GapMargins& margins_;
  float* gaps_;
  int* labels_;

  float32x4x3_t gather(const int* index) const {
    return {{gatherLanes(samples_.r, index), gatherLanes(samples_.g, index),
             gatherLanes(samples_.b, index)}};
  }

  template <int kBlocks>
  void measureLanes(const int* index, int last) const {
    float32x4x3_t s[kBlocks];
    float32x4_t ownDistance[kBlocks];
    float32x4_t own[kBlocks];
    for (int b = 0; b < kBlocks; ++b) {
      s[b] = gather(index + 4 * b);
      ownDistance[b] = distance(s[b], centres_[last]);
      own[b] = vsqrtq_f32(ownDistance[b]);
    }
    float32x4_t largest = own[0];
    for (int b = 1; b < kBlocks; ++b) largest = maxNumbers(largest, own[b]);
    const Candidates c =
        candidates(spacing_.row[last], reachOf(maxAcross(largest), margins_));
    float32x4_t leftOut[kBlocks];
    for (int b = 0; b < kBlocks; ++b) {
      leftOut[b] = vsubq_f32(vdupq_n_f32(c.nearestLeftOut),
                             vaddq_f32(own[b], vdupq_n_f32(margins_.slack)));
    }
    float32x4_t gap[kBlocks];
    int32x4_t label[kBlocks];
    measure<kBlocks>(s, centres_, c.mask, last, ownDistance, margins_.base,
                     leftOut, gap, label);
    float gapLanes[4 * kBlocks];
    int labelLanes[4 * kBlocks];
    for (int b = 0; b < kBlocks; ++b) {
      vst1q_f32(gapLanes + 4 * b, gap[b]);
      vst1q_s32(labelLanes + 4 * b, label[b]);
    }
    for (int l = 0; l < 4 * kBlocks; ++l) {
      gaps_[index[l]] = gapLanes[l];
      labels_[index[l]] = labelLanes[l];
    }
  }
};

// Samples whose held gaps are above keep keep their labels; the others
// are measured again.
void carryBody(SamplePlanes samples, int last, const CentreVectors* centres,
               int k, const Spacing& spacing, const GapMargins& margins,
               float* gaps, int* labels) {
  const float32x4_t keep = vdupq_n_f32(margins.keep);
  Groups<GroupMeasure> groups(
      labels, GroupMeasure(samples, centres, spacing, margins, gaps, labels));
  SetLanes failed([&](int j) { groups.add(j); });
  // Held gaps are finite, so not above keep is at most keep.
  int j = 0;
  for (; j + 8 <= last; j += 8) {
    failed.add(vcleq_f32(vld1q_f32(gaps + j), keep),
               vcleq_f32(vld1q_f32(gaps + j + 4), keep), j);
  }
  if (j < last)
    failed.add(vcleq_f32(vld1q_f32(gaps + j), keep), vdupq_n_u32(0), j);
  failed.finish();
  groups.flush(k);
}

// Scalar twin of measure, for sample j.
void measure_C(const _Point* samples, int j, const _Point* centres,
               uint32_t mask, float base, float leftOut, float* gaps,
               int* labels) {
  float far;
  std::memset(&far, kFarByte, sizeof far);
  float best = far;
  float second = far;
  int label = 0;
  for (; mask != 0; mask &= mask - 1) {
    const int i = __builtin_ctz(mask);
    const float d = plainDistance(samples[j], centres[i]);
    if (d < best) {
      second = best;
      best = d;
      label = i;
    } else if (d < second) {
      second = d;
    }
  }
  gaps[j] = (std::min(std::sqrt(second), leftOut) - std::sqrt(best)) + base;
  labels[j] = label;
}

// Scalar twin of GroupMeasure.
void measureGroup_C(const _Point* samples, const _Point* centres,
                    const Spacing& spacing, const GapMargins& margins,
                    const int* index, int count, int last, float* gaps,
                    int* labels) {
  float own[8];
  float largest = 0;
  for (int l = 0; l < count; ++l) {
    own[l] = std::sqrt(plainDistance(samples[index[l]], centres[last]));
    largest = std::max(largest, own[l]);
  }
  const Candidates c =
      candidates_C(spacing.row[last], reachOf(largest, margins));
  for (int l = 0; l < count; ++l) {
    measure_C(samples, index[l], centres, c.mask, margins.base,
              c.nearestLeftOut - (own[l] + margins.slack), gaps, labels);
  }
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
  // A sample not finite discards the whole box, so the minima and maxima
  // need not agree across targets on NaNs, nor on the sign of a zero.
  for (; j + 4 <= count; j += 4) {
    for (int c = 0; c < 3; ++c) {
      const float32x4_t v = vld1q_f32(plane[c] + j);
      low[c] = minNumbers(v, low[c]);
      high[c] = maxNumbers(v, high[c]);
      const uint32x4_t bits = vandq_u32(vreinterpretq_u32_f32(v), exponent);
      special = vorrq_u32(special, vceqq_u32(bits, exponent));
    }
  }
  SampleBox box{{minAcross(low[0]), minAcross(low[1]), minAcross(low[2])},
                {maxAcross(high[0]), maxAcross(high[1]), maxAcross(high[2])}};
  bool finiteAll = !anyLane(special);
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
  return {usable,
          top1 + top2 < reachAll * kSettled,
          drifted,
          roundUp((drifted + margin) * kSlack),
          roundDown(drifted - margin - 16 * kU * drifted),
          roundUp((32 * kU * reachAll + 0x1p-58) * kSlack),
          roundUp((5 * kU * reachAll + 0x1p-70) * kSlack)};
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
    Spacing spacing;
    spaceCentres(centres, k, spacing);
    carryBody(samples, body, vectors, k, spacing, margins, gaps, labels);
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
  if (held) {
    Spacing spacing;
    spaceCentres_C(centres, k, spacing);
    Groups groups(labels, [&](const int* index, int n, int last) {
      measureGroup_C(samples, centres, spacing, margins, index, n, last, gaps,
                     labels);
    });
    for (int j = 0; j < body; ++j) {
      if (!(gaps[j] > margins.keep)) groups.add(j);
    }
    groups.flush(k);
  } else {
    const uint32_t all = (uint32_t{1} << k) - 1;
    for (int j = 0; j < body; ++j)
      measure_C(samples, j, centres, all, margins.base, INFINITY, gaps, labels);
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
  // Measuring costs more than a plain pass: with few centres it waits for
  // settled centres.
  const bool bounded = margins.usable && (held_ || k >= kMeasureAtOnce ||
                                          (started_ && margins.settled));
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
