// libyuv's two steps to the same float RGB: NV21 to 8-bit RGB24 with its
// full-range BT.601 (JPEG) matrix, then bytes to floats with its
// ByteToFloat. That function has vector code for NEON only; on x86 it is
// several times slower than the plain loop a compiler vectorises, so the
// "_floatloop" cases take that loop as the second step instead: the peer at
// its strongest here.
#include <benchmark/benchmark.h>
#include <libyuv/convert_argb.h>
#include <libyuv/planar_functions.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "bench/colorconv_cases.h"

namespace bench {

namespace {

void plainToFloat(const uint8_t* bytes, float* floats, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) floats[i] = bytes[i];
}

template <bool kPlainLoop>
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
    if constexpr (kPlainLoop) {
      plainToFloat(rgb24.get(), rgb, values);
    } else {
      libyuv::ByteToFloat(rgb24.get(), rgb, 1.0f, static_cast<int>(values));
    }
    benchmark::ClobberMemory();
  }
}

const bool kRegistered = [] {
  for (ConvertSize size : kConvertSizes) {
    benchmark::RegisterBenchmark(convertName(size, "nv21", "libyuv").c_str(),
                                 convertLibyuv<false>, size);
    benchmark::RegisterBenchmark(
        convertName(size, "nv21_floatloop", "libyuv").c_str(),
        convertLibyuv<true>, size);
  }
  return true;
}();

}  // namespace

}  // namespace bench
