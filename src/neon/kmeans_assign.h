// The k-means assignment step: every sample goes to its nearest centre.
#ifndef PAVONA_SRC_NEON_KMEANS_ASSIGN_H_
#define PAVONA_SRC_NEON_KMEANS_ASSIGN_H_

#include "src/neon/KMeansAlgo_neon.h"

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

// For centre i = 0 ... k-1 and sample j = 0 ... count-1: when the distance
// is strictly below nearest[j], it becomes nearest[j] and i becomes
// labels[j], so ties stay with the lower centre. Samples below
// 4*(count/4) use plainDistance, the rest weightedDistance. nearest and
// labels come in holding the starting values.
void assignNearest_NEON(const _Point* samples, int count, const _Point* centres,
                        int k, float* nearest, int* labels);

// The same from the pass's starting state, every byte of nearest kFarByte
// and every label 0, without reading either array first: a sample that no
// centre comes nearer than that (or only by NaN) gets the starting values.
void assignNearestFromFar_NEON(const _Point* samples, int count,
                               const _Point* centres, int k, float* nearest,
                               int* labels);

// Plain loop over centres, then samples; the oracle for the NEON version.
void assignNearest_C(const _Point* samples, int count, const _Point* centres,
                     int k, float* nearest, int* labels);

}  // namespace pavona::internal

#endif  // PAVONA_SRC_NEON_KMEANS_ASSIGN_H_
