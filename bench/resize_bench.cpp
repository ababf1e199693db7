// Nearest-neighbour resize of a 4000 × 3000 NV21 camera frame: the engine's
// reduction to its working size (the column-table path), the exact halving
// and quartering, and an equal-size luma copy through the byte-lookup
// kernel. Bytes per second count the source planes handed in per call, so
// cases and implementations compare on the same frame.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <vector>

#include "zel/neon/imgproc/resize.h"

namespace {

constexpr int kWidth = 4000;
constexpr int kHeight = 3000;

struct Nv21 {
  std::vector<uint8_t> y, uv;
  Nv21(int w, int h) : y(size_t(w) * h), uv(size_t(w) * h / 2) {}
};

const Nv21& cameraFrame() {
  static const Nv21 frame = [] {
    Nv21 f(kWidth, kHeight);
    std::mt19937 rng(7);
    for (auto* plane : {&f.y, &f.uv}) {
      for (auto& b : *plane) b = uint8_t(rng());
    }
    return f;
  }();
  return frame;
}

void resizeFrame(benchmark::State& state, int dstWidth, int dstHeight) {
  const Nv21& src = cameraFrame();
  Nv21 dst(dstWidth, dstHeight);
  for (auto _ : state) {
    const int32_t status =
        zel::neon::imgproc::resize_v00<uint8_t, uint8_t, zel::YUV420SP_8BIT,
                                       zel::INTERP_NEAREST, float, 0>(
            src.y.data(), src.uv.data(), dst.y.data(), dst.uv.data(), kWidth,
            kHeight, dstWidth, dstHeight, 0, 0, 0, 0);
    benchmark::DoNotOptimize(status);
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(int64_t(state.iterations()) *
                          int64_t(src.y.size() + src.uv.size()));
}

void copyLumaThroughLookup(benchmark::State& state) {
  using Luma = zel::neon::imgproc::internal_resize_v00::Resize_v00<
      uint8_t, 1, 1, zel::INTERP_NEAREST, float, 0, false>;
  const Nv21& src = cameraFrame();
  std::vector<uint8_t> dst(src.y.size());
  for (auto _ : state) {
    const int32_t status =
        Luma::resize(src.y.data(), dst.data(), kWidth, kHeight, kWidth, kHeight,
                     kWidth, kWidth);
    benchmark::DoNotOptimize(status);
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(src.y.size()));
}

BENCHMARK_CAPTURE(resizeFrame, working, 124, 92)
    ->Name("resize/nv21_4000x3000_to_124x92/pavona");
BENCHMARK_CAPTURE(resizeFrame, half, 2000, 1500)
    ->Name("resize/nv21_4000x3000_to_2000x1500/pavona");
BENCHMARK_CAPTURE(resizeFrame, quarter, 1000, 750)
    ->Name("resize/nv21_4000x3000_to_1000x750/pavona");
BENCHMARK(copyLumaThroughLookup)
    ->Name("resize/luma_4000x3000_equal_size/pavona");

}  // namespace
