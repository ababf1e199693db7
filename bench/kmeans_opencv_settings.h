// How the OpenCV peer clusters, wherever it does: one attempt from random
// centres seeded alike every call, stopping on our threshold or after as
// many passes as ours may run; and how many passes it ran.
#ifndef PAVONA_BENCH_KMEANS_OPENCV_SETTINGS_H_
#define PAVONA_BENCH_KMEANS_OPENCV_SETTINGS_H_

#include <cstdint>
#include <opencv2/core.hpp>

#include "bench/kmeans_cases.h"

namespace bench {

constexpr uint64_t kOpenCVSeed = 1;
constexpr int kOpenCVMaxPasses = 502;

inline cv::TermCriteria kmeansCriteria(int maxPasses) {
  return cv::TermCriteria(cv::TermCriteria::MAX_ITER + cv::TermCriteria::EPS,
                          maxPasses, kKMeansThreshold);
}

struct Clustering {
  cv::Mat labels;
  cv::Mat centres;
  double compactness = 0;
};

// One clustering of `points` (a row each) into k centres.
void cluster(const cv::Mat& points, int k, int maxPasses, Clustering& out);

// The passes that clustering runs; see the definition for how.
int passesOf(const cv::Mat& points, int k, int maxPasses);

}  // namespace bench

#endif  // PAVONA_BENCH_KMEANS_OPENCV_SETTINGS_H_
