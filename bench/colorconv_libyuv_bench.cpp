// libyuv's two steps to the same float RGB: NV21 to 8-bit RGB24 with its
// full-range BT.601 (JPEG) matrix, then bytes to floats.
#include <benchmark/benchmark.h>
#include <libyuv/convert_argb.h>
#include <libyuv/planar_functions.h>

#include <cstdint>
#include <memory>

#include "bench/colorconv_cases.h"

namespace bench {

namespace {

void convertLibyuv(benchmark::State& state, ConvertSize size) {
  const SemiPlanar<uint8_t>& frame = randomFrame<uint8_t>(size, 8);
  const std::size_t values = frame.luma.size() * 3;
  const std::unique_ptr<uint8_t[]> rgb24(new uint8_t[values]());
  float* rgb = rgbOutput(values);
  for (auto _ : state) {
    libyuv::NV21ToRGB24Matrix(frame.luma.data(), size.width,
                              frame.chroma.data(), size.width, rgb24.get(),
                              3 * size.width, &libyuv::kYuvJPEGConstants,
                              size.width, size.height);
    libyuv::ByteToFloat(rgb24.get(), rgb, 1.0f, static_cast<int>(values));
    benchmark::ClobberMemory();
  }
}

const bool kRegistered = [] {
  for (ConvertSize size : kConvertSizes) {
    benchmark::RegisterBenchmark(convertName(size, "nv21", "libyuv").c_str(),
                                 convertLibyuv, size);
  }
  return true;
}();

}  // namespace

}  // namespace bench
