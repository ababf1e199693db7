#include "bench/kmeans_opencv_settings.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace bench {

void cluster(const cv::Mat& points, int k, int maxPasses, Clustering& out) {
  cv::theRNG().state = kOpenCVSeed;
  out.compactness = cv::kmeans(points, k, out.labels, kmeansCriteria(maxPasses),
                               1, cv::KMEANS_RANDOM_CENTERS, out.centres);
}

namespace {

bool identical(const cv::Mat& a, const cv::Mat& b) {
  const std::size_t bytes = a.total() * a.elemSize();
  return a.size == b.size && a.type() == b.type() &&
         std::memcmp(a.data, b.data, bytes) == 0;
}

}  // namespace

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

}  // namespace bench
