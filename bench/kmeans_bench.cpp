// Our k-means on the working points of a 4000 x 3000 frame: the whole
// processKMeansAlgo, and a run cut to one pass by a threshold every shift
// falls below. Counters: passes a call, allocations a call.
#include <benchmark/benchmark.h>

#include <cfloat>
#include <cstdlib>
#include <vector>

#include "bench/allocation_counter.h"
#include "bench/kmeans_cases.h"
#include "bench/photo_points.h"
#include "src/neon/KMeansAlgo_neon.h"

namespace bench {

namespace {

void cluster(benchmark::State& state, int k, float threshold) {
  const std::vector<_Point>& points = photoPoints();
  std::vector<_Point> out(k);
  KMeansAlgo kmeans;
  const Allocations before = allocationsSoFar();
  for (auto _ : state) {
    // Random seeding (k other than 4 and 8) starts alike every call.
    std::srand(1);
    kmeans.init(k, threshold);
    kmeans.processKMeansAlgo(points.data(), out.data(), kPointsWidth,
                             kPointsHeight);
    benchmark::DoNotOptimize(out.data());
  }
  const Allocations after = allocationsSoFar();
  const double calls = static_cast<double>(state.iterations());
  state.counters["passes"] = kmeans.m_passCount;
  state.counters["allocs"] =
      static_cast<double>(after.calls - before.calls) / calls;
}

const bool kRegistered = [] {
  for (int k : kKMeansCounts) {
    benchmark::RegisterBenchmark(kmeansName(k, "pavona").c_str(), cluster, k,
                                 kKMeansThreshold);
    benchmark::RegisterBenchmark(kmeansPassName(k, "pavona").c_str(), cluster,
                                 k, FLT_MAX);
  }
  return true;
}();

}  // namespace

}  // namespace bench
