// Our semi-planar to float RGB for every format at the working size and at
// full frame size, the NEON kernel and its scalar twin.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>

#include "bench/colorconv_cases.h"
#include "colorconv/nv21_to_rgb.h"

namespace bench {

namespace {

template <typename T, bool uFirst, int bits, bool scalar>
void convertFrame(benchmark::State& state, ConvertSize size) {
  const SemiPlanar<T>& frame = randomFrame<T>(size, bits);
  float* rgb = rgbOutput(frame.luma.size() * 3);
  const int stride = size.width * static_cast<int>(sizeof(T));
  for (auto _ : state) {
    const int status =
        scalar ? pavona::internal::nv21_to_rgb_impl_C<T, uFirst, bits, 0>(
                     frame.luma.data(), frame.chroma.data(), rgb, size.width,
                     size.height, stride, stride, 12 * size.width)
               : pavona::nv21_to_rgb<T, uFirst, bits, 0>(
                     frame.luma.data(), frame.chroma.data(), rgb, size.width,
                     size.height, stride, stride, 12 * size.width);
    benchmark::DoNotOptimize(status);
    benchmark::ClobberMemory();
  }
}

template <typename T, bool uFirst, int bits>
void registerFormat(const char* format) {
  const std::string scalarFormat = std::string(format) + "_scalar";
  for (ConvertSize size : kConvertSizes) {
    benchmark::RegisterBenchmark(convertName(size, format, "pavona").c_str(),
                                 convertFrame<T, uFirst, bits, false>, size);
    benchmark::RegisterBenchmark(
        convertName(size, scalarFormat.c_str(), "pavona").c_str(),
        convertFrame<T, uFirst, bits, true>, size);
  }
}

const bool kRegistered = [] {
  registerFormat<uint8_t, false, 8>("nv21");
  registerFormat<uint8_t, true, 8>("nv12");
  registerFormat<uint16_t, true, 10>("10bit");
  return true;
}();

}  // namespace

}  // namespace bench
