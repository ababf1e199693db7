// OpenCV's nearest-neighbour resize of the same frames, one thread: luma as
// a one-channel Mat, the chroma pairs as a two-channel Mat.
#include <benchmark/benchmark.h>

#include <memory>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "bench/nv21_frames.h"
#include "bench/resize_cases.h"

namespace bench {

namespace {

const bool kRegistered = [] {
  for (ResizeCase to : kResizeCases) {
    for (Cache cache : {Cache::kWarm, Cache::kCold}) {
      auto out = std::make_shared<ResizeOutput>(to);
      registerFrameBenchmark(
          resizeName(to, cache, "opencv"), cache,
          [cache, out](benchmark::State& state) {
            cv::setNumThreads(1);
            const ResizeCase to = out->size;
            cv::Mat dstY(to.height, to.width, CV_8UC1, out->y.get());
            cv::Mat dstVU(to.height / 2, to.width / 2, CV_8UC2, out->vu.get());
            timeFrames(state, cache, [&](Nv21Frame frame) {
              const cv::Mat y(kFrameHeight, kFrameWidth, CV_8UC1, frame.y,
                              kFrameStride);
              const cv::Mat vu(kFrameHeight / 2, kFrameWidth / 2, CV_8UC2,
                               frame.vu, kFrameStride);
              cv::resize(y, dstY, dstY.size(), 0, 0, cv::INTER_NEAREST);
              cv::resize(vu, dstVU, dstVU.size(), 0, 0, cv::INTER_NEAREST);
              benchmark::ClobberMemory();
            });
          });
    }
  }
  return true;
}();

}  // namespace

}  // namespace bench
