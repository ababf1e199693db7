// OpenCV's two steps to the same float RGB, one thread: cvtColorTwoPlane
// from NV21 to 8-bit RGB, then convertTo float.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "bench/colorconv_cases.h"

namespace bench {

namespace {

void convertOpenCV(benchmark::State& state, ConvertSize size) {
  cv::setNumThreads(1);
  const SemiPlanar<uint8_t>& frame = randomFrame<uint8_t>(size, 8);
  const cv::Mat y(size.height, size.width, CV_8UC1,
                  const_cast<uint8_t*>(frame.luma.data()));
  const cv::Mat vu(size.height / 2, size.width / 2, CV_8UC2,
                   const_cast<uint8_t*>(frame.chroma.data()));
  cv::Mat rgb8(size.height, size.width, CV_8UC3, cv::Scalar::all(0));
  cv::Mat rgb(size.height, size.width, CV_32FC3,
              rgbOutput(frame.luma.size() * 3));
  for (auto _ : state) {
    cv::cvtColorTwoPlane(y, vu, rgb8, cv::COLOR_YUV2RGB_NV21);
    rgb8.convertTo(rgb, CV_32F);
    benchmark::ClobberMemory();
  }
}

const bool kRegistered = [] {
  for (ConvertSize size : kConvertSizes) {
    benchmark::RegisterBenchmark(convertName(size, "nv21", "opencv").c_str(),
                                 convertOpenCV, size);
  }
  return true;
}();

}  // namespace

}  // namespace bench
