// How the OpenCV peer clusters, wherever it does: one attempt from random
// centres seeded alike every call, stopping on our threshold or after as
// many passes as ours may run.
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

}  // namespace bench

#endif  // PAVONA_BENCH_KMEANS_OPENCV_SETTINGS_H_
