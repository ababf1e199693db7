// The k-means assignment step: every sample goes to its nearest centre.
#ifndef PAVONA_SRC_NEON_KMEANS_ASSIGN_H_
#define PAVONA_SRC_NEON_KMEANS_ASSIGN_H_

#include "base/sample_types.h"

namespace pavona::internal {

// The distance a pass starts every sample at, farther than any centre:
// every byte 100, the float with bits 0x64646464 (about 1.685e22).
constexpr int kFarByte = 100;

// Distance of the four-at-a-time body: (dr*dr + dg*dg) + db*db, with
// d = sample - centre.
inline float plainDistance(const _Point& sample, const _Point& centre) {
  const float dr = sample.r - centre.r;
  const float dg = sample.g - centre.g;
  const float db = sample.b - centre.b;
  return (dr * dr + dg * dg) + db * db;
}

// Distance of the scalar tail, weighted 2:4:3 and grouped exactly as
// (dr*(dr+dr) + dg*(4*dg)) + db*(3*db).
inline float weightedDistance(const _Point& sample, const _Point& centre) {
  const float dr = sample.r - centre.r;
  const float dg = sample.g - centre.g;
  const float db = sample.b - centre.b;
  return (dr * (dr + dr) + dg * (4.0f * dg)) + db * (3.0f * db);
}

// The samples as the vector body reads them: count floats of each channel.
// Samples do not change from pass to pass, so they are split once a call
// rather than de-interleaved again in every pass.
struct SamplePlanes {
  const float* r;
  const float* g;
  const float* b;
};

// Splits count samples into red, green and blue planes laid one after the
// other from `planes`, which holds 3 * count floats.
SamplePlanes splitSamples_NEON(const _Point* samples, int count, float* planes);

// Plain loop; the oracle for the NEON version.
SamplePlanes splitSamples_C(const _Point* samples, int count, float* planes);

// Every sample starts at distance kFar (every byte kFarByte) with label 0.
// Then for centre i = 0 ... k-1 and sample j = 0 ... count-1: when the
// distance is strictly below nearest[j], it becomes nearest[j] and i becomes
// labels[j], so ties stay with the lower centre and a sample no centre
// comes nearer than kFar (or only by NaN) keeps the starting values.
// Samples below 4*(count/4) use plainDistance, the rest weightedDistance.
// nearest and labels are written, never read first.
void assignNearest_NEON(SamplePlanes samples, int count, const _Point* centres,
                        int k, float* nearest, int* labels);

// Plain loop over centres, then samples, from whatever nearest and labels
// hold; started from kFarByte bytes and labels 0 it is the oracle for the
// NEON version.
void assignNearest_C(const _Point* samples, int count, const _Point* centres,
                     int k, float* nearest, int* labels);

// The bounded assignment: each body sample keeps a gap, a lower bound on
// how much nearer its own centre is than any other, and only samples whose
// gap cannot prove the label unchanged are evaluated again.

// Centres the bounded assignment takes; larger k evaluates in full.
constexpr int kMaxBoundedCentres = 20;

// From this many centres the first usable pass already measures: a sample
// that fails its gap then costs little beside k distances.
constexpr int kMeasureAtOnce = 16;

// Smallest box holding every sample, or NaN corners when a sample is not
// finite (then no pass can be bounded).
struct SampleBox {
  _Point low;
  _Point high;
};

// For count >= 1, from the planes.
SampleBox sampleBox_NEON(SamplePlanes samples, int count);

// Plain loop; the oracle for the NEON version (equal, but for the sign of
// a zero).
SampleBox sampleBox_C(const _Point* samples, int count);

// What one pass's bounds may use, from the box, the centres of this pass
// and the last, and the drift so far.
struct GapMargins {
  // False when a centre is not finite or distances could reach kFar: the
  // pass evaluates in full and its gaps prove nothing.
  bool usable = false;
  // The centres moved little this pass: gaps measured now should hold.
  bool settled = false;
  // The two largest centre shifts summed over the passes since the gaps
  // were first measured, rounded up: no gap fell by more since then.
  double drift = 0;
  // A held gap above this keeps its sample's label.
  float keep = 0;
  // Added to a gap measured this pass.
  float base = 0;
  // Added to twice a sample's distance to its last centre: centres spaced
  // farther than that from the last one cannot be nearest.
  float exclude = 0;
  // Added to a sample's distance to its last centre: a bound on the real
  // distance.
  float slack = 0;
};

// Margins for a pass from centres `last` to `centres` after `drift`.
GapMargins gapMargins(const SampleBox& box, const _Point* last,
                      const _Point* centres, int k, double drift);

// The assignment of assignNearest_NEON for 1 <= k <= kMaxBoundedCentres
// and usable margins, writing gaps where it writes nearest (gaps and
// distances for the count mod 4 tail, which is always evaluated). With
// `held` the gaps and labels of the last pass are read first: a sample
// whose gap is above margins.keep keeps its label and its gap, and the
// others are measured again against the centres near their last one, in
// groups of up to eight with the same last label, in the order they fail.
void assignBounded_NEON(SamplePlanes samples, int count, const _Point* centres,
                        int k, const GapMargins& margins, bool held,
                        float* gaps, int* labels);

// Plain loop, sample for sample the same decisions; the oracle for the
// NEON version.
void assignBounded_C(const _Point* samples, int count, const _Point* centres,
                     int k, const GapMargins& margins, bool held, float* gaps,
                     int* labels);

// One call's passes: gaps are measured once the centres settle (from the
// first pass for kMeasureAtOnce centres or more) and held while the
// margins allow.
class BoundedAssignment {
 public:
  BoundedAssignment(SamplePlanes planes, int count, float* gaps, int* labels);
  // Labels for the k centres of the next pass.
  void assign(const _Point* centres, int k);

 private:
  SamplePlanes planes_;
  int count_;
  float* gaps_;
  int* labels_;
  SampleBox box_;
  // last_ holds the centres of the last pass.
  bool started_ = false;
  // The gaps and labels left by the last pass hold for its centres.
  bool held_ = false;
  double drift_ = 0;
  _Point last_[kMaxBoundedCentres];
};

}  // namespace pavona::internal

#endif  // PAVONA_SRC_NEON_KMEANS_ASSIGN_H_
