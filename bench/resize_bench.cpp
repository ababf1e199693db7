// Our resize of a 4000 x 3000 NV21 frame, both planes, warm and cold; and
// an equal-size luma copy through the byte-lookup kernel.
#include <benchmark/benchmark.h>

#include <memory>

#include "bench/nv21_frames.h"
#include "bench/resize_cases.h"
#include "zel/neon/imgproc/resize.h"

namespace bench {

namespace {

void copyLumaThroughLookup(benchmark::State& state) {
  using Luma = zel::neon::imgproc::internal_resize_v00::Resize_v00<
      uint8_t, 1, 1, zel::INTERP_NEAREST, float, 0, false>;
  const std::unique_ptr<uint8_t[]> copy(new uint8_t[kLumaBytes]());
  FrameSource source(Cache::kWarm);
  const Nv21Frame frame = source.next();
  for (auto _ : state) {
    const int32_t status =
        Luma::resize(frame.y, copy.get(), kFrameWidth, kFrameHeight,
                     kFrameWidth, kFrameHeight, kFrameStride, kFrameStride);
    benchmark::DoNotOptimize(status);
    benchmark::ClobberMemory();
  }
}

const bool kRegistered = [] {
  benchmark::RegisterBenchmark("resize/luma_4000x3000_equal_size/pavona",
                               copyLumaThroughLookup);
  for (ResizeCase to : kResizeCases) {
    for (Cache cache : {Cache::kWarm, Cache::kCold}) {
      auto out = std::make_shared<ResizeOutput>(to);
      registerFrameBenchmark(
          resizeName(to, cache, "pavona"), cache,
          [cache, out](benchmark::State& state) {
            const ResizeCase to = out->size;
            timeFrames(state, cache, [&](Nv21Frame frame) {
              const int status =
                  zel::neon::imgproc::resize_v00<uint8_t, uint8_t,
                                                 zel::YUV420SP_8BIT,
                                                 zel::INTERP_NEAREST, float, 0>(
                      frame.y, frame.vu, out->y.get(), out->vu.get(),
                      kFrameWidth, kFrameHeight, to.width, to.height,
                      kFrameStride, kFrameStride, to.width, to.width);
              benchmark::DoNotOptimize(status);
              benchmark::ClobberMemory();
            });
          });
    }
  }
  return true;
}();

}  // namespace

}  // namespace bench
