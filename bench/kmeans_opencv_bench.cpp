// OpenCV's kmeans on the same points as ours: one attempt, random centres,
// one thread, stopping on an iteration limit or a small centre shift.
// Counter: passes a call, found as explained at passesOf.
#include <benchmark/benchmark.h>

#include <map>
#include <opencv2/core.hpp>
#include <utility>
#include <vector>

#include "bench/kmeans_cases.h"
#include "bench/kmeans_opencv_settings.h"
#include "bench/photo_points.h"

namespace bench {

namespace {

cv::Mat pointsMat() {
  const std::vector<_Point>& points = photoPoints();
  return cv::Mat(static_cast<int>(points.size()), 3, CV_32F,
                 const_cast<_Point*>(points.data()));
}

void kmeansOpenCV(benchmark::State& state, int k, int maxPasses) {
  cv::setNumThreads(1);
  const cv::Mat points = pointsMat();
  Clustering result;
  for (auto _ : state) {
    cluster(points, k, maxPasses, result);
    benchmark::DoNotOptimize(result.centres.data);
  }
  // The search runs the clustering up to a dozen times: once a case.
  static std::map<std::pair<int, int>, int> passes;
  const auto key = std::make_pair(k, maxPasses);
  if (passes.count(key) == 0) passes[key] = passesOf(points, k, maxPasses);
  state.counters["passes"] = passes[key];
}

const bool kRegistered = [] {
  for (int k : kKMeansCounts) {
    benchmark::RegisterBenchmark(kmeansName(k, "opencv").c_str(), kmeansOpenCV,
                                 k, kOpenCVMaxPasses);
    benchmark::RegisterBenchmark(kmeansPassName(k, "opencv").c_str(),
                                 kmeansOpenCV, k, 1);
  }
  return true;
}();

}  // namespace

}  // namespace bench
