#include "bench/frame_opencv_pipeline.h"

#include <opencv2/imgproc.hpp>

#include "bench/frame_cases.h"
#include "bench/kmeans_opencv_settings.h"

namespace bench {

OpenCVFramePipeline::OpenCVFramePipeline()
    : y_(kWorkingHeight, kWorkingWidth, CV_8UC1),
      vu_(kWorkingHeight / 2, kWorkingWidth / 2, CV_8UC2),
      rgb8_(kWorkingHeight, kWorkingWidth, CV_8UC3),
      rgb_(kWorkingHeight, kWorkingWidth, CV_32FC3) {
  cv::setNumThreads(1);
}

const cv::Mat& OpenCVFramePipeline::run(Nv21Frame frame, int colours) {
  const cv::Mat srcY(kFrameHeight, kFrameWidth, CV_8UC1, frame.y, kFrameStride);
  const cv::Mat srcVU(kFrameHeight / 2, kFrameWidth / 2, CV_8UC2, frame.vu,
                      kFrameStride);
  cv::resize(srcY, y_, y_.size(), 0, 0, cv::INTER_NEAREST);
  cv::resize(srcVU, vu_, vu_.size(), 0, 0, cv::INTER_NEAREST);
  cv::cvtColorTwoPlane(y_, vu_, rgb8_, cv::COLOR_YUV2RGB_NV21);
  rgb8_.convertTo(rgb_, CV_32F);
  cv::theRNG().state = kOpenCVSeed;
  cv::kmeans(rgb_.reshape(1, kWorkingWidth * kWorkingHeight), colours, labels_,
             kmeansCriteria(kOpenCVMaxPasses), 1, cv::KMEANS_RANDOM_CENTERS,
             centres_);
  return centres_;
}

}  // namespace bench
