// OpenCV on the photo frame, one thread: nearest resize of both planes,
// cvtColorTwoPlane and float, kmeans on our working points (a whole run;
// its passes to standard output), and the whole pipeline.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "bench/aarch64/counted_cases.h"
#include "bench/frame_cases.h"
#include "bench/frame_opencv_pipeline.h"
#include "bench/kmeans_opencv_settings.h"

namespace bench {

void countOpenCV(const char* what, int k) {
  cv::setNumThreads(1);
  const Nv21Frame frame = FrameSource(Cache::kWarm).next();
  const cv::Mat srcY(kFrameHeight, kFrameWidth, CV_8UC1, frame.y, kFrameStride);
  const cv::Mat srcVU(kFrameHeight / 2, kFrameWidth / 2, CV_8UC2, frame.vu,
                      kFrameStride);
  cv::Mat y(kWorkingHeight, kWorkingWidth, CV_8UC1);
  cv::Mat vu(kWorkingHeight / 2, kWorkingWidth / 2, CV_8UC2);
  auto resize = [&] {
    cv::resize(srcY, y, y.size(), 0, 0, cv::INTER_NEAREST);
    cv::resize(srcVU, vu, vu.size(), 0, 0, cv::INTER_NEAREST);
  };
  if (std::strcmp(what, "resize") == 0) {
    countRepeats(kCountedRepeats, resize);
  } else if (std::strcmp(what, "convert") == 0) {
    resize();
    cv::Mat rgb8(kWorkingHeight, kWorkingWidth, CV_8UC3);
    cv::Mat rgb(kWorkingHeight, kWorkingWidth, CV_32FC3);
    countRepeats(kCountedRepeats, [&] {
      cv::cvtColorTwoPlane(y, vu, rgb8, cv::COLOR_YUV2RGB_NV21);
      rgb8.convertTo(rgb, CV_32F);
    });
  } else if (std::strcmp(what, "kmeans") == 0) {
    std::vector<_Point> points = workingPoints();
    const cv::Mat rows(static_cast<int>(points.size()), 3, CV_32F,
                       points.data());
    Clustering result;
    countRepeats(kCountedRepeats,
                 [&] { cluster(rows, k, kOpenCVMaxPasses, result); });
    std::printf("passes %d\n", passesOf(rows, k, kOpenCVMaxPasses));
  } else if (std::strcmp(what, "frame") == 0) {
    OpenCVFramePipeline pipeline;
    countRepeats(kCountedRepeats, [&] { pipeline.run(frame, k); });
  } else {
    std::fprintf(stderr, "unknown case opencv %s\n", what);
    std::exit(2);
  }
}

}  // namespace bench
