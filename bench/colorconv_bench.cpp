// Semi-planar to float RGB at the engine's working size (124 x 92, a 4000 x
// 3000 frame at 1/32) and at full frame size, vector and scalar. Bytes are
// those of the source frame (luma plus chroma), so instances of different
// sample size compare by frame.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "colorconv/nv21_to_rgb.h"

namespace {

template <typename T, bool uFirst, int bits, bool scalar>
void convertFrame(benchmark::State& state, int width, int height) {
  std::mt19937 rng(1);
  std::vector<T> luma(static_cast<size_t>(width) * height);
  std::vector<T> chroma(luma.size() / 2);
  for (T& s : luma) s = static_cast<T>(rng() & ((1u << bits) - 1));
  for (T& s : chroma) s = static_cast<T>(rng() & ((1u << bits) - 1));
  std::vector<float> rgb(luma.size() * 3);
  const int stride = width * static_cast<int>(sizeof(T));

  for (auto _ : state) {
    const int status =
        scalar ? pavona::internal::nv21_to_rgb_impl_scalar<T, uFirst, bits, 0>(
                     luma.data(), chroma.data(), rgb.data(), width, height,
                     stride, stride, 12 * width)
               : pavona::nv21_to_rgb<T, uFirst, bits, 0>(
                     luma.data(), chroma.data(), rgb.data(), width, height,
                     stride, stride, 12 * width);
    benchmark::DoNotOptimize(status);
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() *
                          static_cast<int64_t>(luma.size() + chroma.size()) *
                          static_cast<int64_t>(sizeof(T)));
}

template <typename T, bool uFirst, int bits>
void registerFormat(const char* format) {
  for (auto [width, height] : {std::pair{124, 92}, {4000, 3000}}) {
    const std::string name = "yuv2rgb/" + std::to_string(width) + "x" +
                             std::to_string(height) + "_" + format + "/pavona";
    benchmark::RegisterBenchmark(
        name.c_str(), convertFrame<T, uFirst, bits, false>, width, height);
    benchmark::RegisterBenchmark((name + "_scalar").c_str(),
                                 convertFrame<T, uFirst, bits, true>, width,
                                 height);
  }
}

const bool kRegistered = [] {
  registerFormat<uint8_t, false, 8>("nv21");
  registerFormat<uint8_t, true, 8>("nv12");
  registerFormat<uint16_t, true, 10>("10bit");
  return true;
}();

}  // namespace
