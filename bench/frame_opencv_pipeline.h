// The OpenCV pipeline that does the same job as ours, one thread: both
// planes resized nearest to the working size, cvtColorTwoPlane, float, and
// kmeans (one attempt, random centres seeded alike every frame, our stop
// threshold).
#ifndef PAVONA_BENCH_FRAME_OPENCV_PIPELINE_H_
#define PAVONA_BENCH_FRAME_OPENCV_PIPELINE_H_

#include <opencv2/core.hpp>

#include "bench/nv21_frames.h"

namespace bench {

class OpenCVFramePipeline {
 public:
  OpenCVFramePipeline();
  // One frame to `colours` centres, which it returns.
  const cv::Mat& run(Nv21Frame frame, int colours);

 private:
  cv::Mat y_;
  cv::Mat vu_;
  cv::Mat rgb8_;
  cv::Mat rgb_;
  cv::Mat labels_;
  cv::Mat centres_;
};

}  // namespace bench

#endif  // PAVONA_BENCH_FRAME_OPENCV_PIPELINE_H_
