// OpenCV's kmeans on the same points as ours: one attempt, random centres,
// one thread, stopping on an iteration limit or a small centre shift.
// Counter: passes a call, found as explained at passesOf.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>
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

struct Clustering {
  cv::Mat labels;
  cv::Mat centres;
  double compactness = 0;
};

void cluster(const cv::Mat& points, int k, int maxPasses, Clustering& out) {
  cv::theRNG().state = kOpenCVSeed;
  out.compactness = cv::kmeans(points, k, out.labels, kmeansCriteria(maxPasses),
                               1, cv::KMEANS_RANDOM_CENTERS, out.centres);
}

bool identical(const cv::Mat& a, const cv::Mat& b) {
  const std::size_t bytes = a.total() * a.elemSize();
  return a.size == b.size && a.type() == b.type() &&
         std::memcmp(a.data, b.data, bytes) == 0;
}

// OpenCV does not report its passes. Its loop stops at the first pass whose
// centre shift is small enough, or at the limit, and never before two
// passes; a run limited to m passes returns the same labels, centres and
// compactness as the unlimited run exactly when m reaches the unlimited
// run's count. So the count is the smallest limit that reproduces the run.
int passesOf(const cv::Mat& points, int k, int maxPasses) {
  Clustering full;
  cluster(points, k, maxPasses, full);
  int low = 1;
  int high = maxPasses;
  while (low < high) {
    const int mid = low + (high - low) / 2;
    Clustering cut;
    cluster(points, k, mid, cut);
    if (identical(cut.labels, full.labels) &&
        identical(cut.centres, full.centres) &&
        cut.compactness == full.compactness) {
      high = mid;
    } else {
      low = mid + 1;
    }
  }
  return std::max(low, 2);
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
