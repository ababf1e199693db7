// The OpenCV pipeline that does the same job, one thread: both planes
// resized nearest to the working size, cvtColorTwoPlane, float, and kmeans
// for three colours (one attempt, random centres, our stop threshold).
#include <benchmark/benchmark.h>

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "bench/frame_cases.h"
#include "bench/kmeans_opencv_settings.h"
#include "bench/nv21_frames.h"

namespace bench {

namespace {

void frameOpenCV(benchmark::State& state, Cache cache) {
  cv::setNumThreads(1);
  cv::Mat y(kWorkingHeight, kWorkingWidth, CV_8UC1);
  cv::Mat vu(kWorkingHeight / 2, kWorkingWidth / 2, CV_8UC2);
  cv::Mat rgb8(kWorkingHeight, kWorkingWidth, CV_8UC3);
  cv::Mat rgb(kWorkingHeight, kWorkingWidth, CV_32FC3);
  cv::Mat labels;
  cv::Mat centres;
  timeFrames(state, cache, [&](Nv21Frame frame) {
    const cv::Mat srcY(kFrameHeight, kFrameWidth, CV_8UC1, frame.y,
                       kFrameStride);
    const cv::Mat srcVU(kFrameHeight / 2, kFrameWidth / 2, CV_8UC2, frame.vu,
                        kFrameStride);
    cv::resize(srcY, y, y.size(), 0, 0, cv::INTER_NEAREST);
    cv::resize(srcVU, vu, vu.size(), 0, 0, cv::INTER_NEAREST);
    cv::cvtColorTwoPlane(y, vu, rgb8, cv::COLOR_YUV2RGB_NV21);
    rgb8.convertTo(rgb, CV_32F);
    // Random centres start alike every frame.
    cv::theRNG().state = kOpenCVSeed;
    cv::kmeans(rgb.reshape(1, kWorkingWidth * kWorkingHeight), kFrameColours,
               labels, kmeansCriteria(kOpenCVMaxPasses), 1,
               cv::KMEANS_RANDOM_CENTERS, centres);
    benchmark::DoNotOptimize(centres.data);
  });
}

const bool kRegistered = [] {
  for (Cache cache : {Cache::kWarm, Cache::kCold}) {
    registerFrameBenchmark(
        frameName(cache, "opencv"), cache,
        [cache](benchmark::State& state) { frameOpenCV(state, cache); });
  }
  return true;
}();

}  // namespace

}  // namespace bench
