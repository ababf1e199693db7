// The k-means input of the working frame of a 4000 x 3000 picture: 124 x 92
// photo-like RGB points in whole 8-bit values.
#ifndef PAVONA_BENCH_PHOTO_POINTS_H_
#define PAVONA_BENCH_PHOTO_POINTS_H_

#include <vector>

#include "src/neon/KMeansAlgo_neon.h"

namespace bench {

constexpr int kPointsWidth = 124;
constexpr int kPointsHeight = 92;

// Deterministic: a sky-to-ground gradient, two objects, soft shading and a
// little sensor noise. Row-major, kPointsWidth x kPointsHeight.
const std::vector<_Point>& photoPoints();

}  // namespace bench

#endif  // PAVONA_BENCH_PHOTO_POINTS_H_
