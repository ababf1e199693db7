// libyuv's nearest-neighbour scaling of the same frames: ScalePlane for
// luma, UVScale for the chroma pairs, no filtering.
#include <benchmark/benchmark.h>
#include <libyuv/scale.h>
#include <libyuv/scale_uv.h>

#include <memory>

#include "bench/nv21_frames.h"
#include "bench/resize_cases.h"

namespace bench {

namespace {

const bool kRegistered = [] {
  for (ResizeCase to : kResizeCases) {
    for (Cache cache : {Cache::kWarm, Cache::kCold}) {
      auto out = std::make_shared<ResizeOutput>(to);
      registerFrameBenchmark(
          resizeName(to, cache, "libyuv"), cache,
          [cache, out](benchmark::State& state) {
            const ResizeCase to = out->size;
            timeFrames(state, cache, [&](Nv21Frame frame) {
              libyuv::ScalePlane(frame.y, kFrameStride, kFrameWidth,
                                 kFrameHeight, out->y.get(), to.width, to.width,
                                 to.height, libyuv::kFilterNone);
              libyuv::UVScale(frame.vu, kFrameStride, kFrameWidth / 2,
                              kFrameHeight / 2, out->vu.get(), to.width,
                              to.width / 2, to.height / 2, libyuv::kFilterNone);
              benchmark::ClobberMemory();
            });
          });
    }
  }
  return true;
}();

}  // namespace

}  // namespace bench
