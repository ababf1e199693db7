// The OpenCV pipeline on whole frames beside ours, for three colours.
#include <benchmark/benchmark.h>

#include "bench/frame_cases.h"
#include "bench/frame_opencv_pipeline.h"
#include "bench/nv21_frames.h"

namespace bench {

namespace {

void frameOpenCV(benchmark::State& state, Cache cache) {
  OpenCVFramePipeline pipeline;
  timeFrames(state, cache, [&](Nv21Frame frame) {
    benchmark::DoNotOptimize(pipeline.run(frame, kFrameColours).data);
  });
}

const bool kRegistered = [] {
  for (Cache cache : {Cache::kWarm, Cache::kCold}) {
    registerFrameBenchmark(
        frameName(cache, "opencv"), cache,
        [cache](benchmark::State& state) { frameOpenCV(state, cache); });
  }
  return true;
}();

}  // namespace

}  // namespace bench
