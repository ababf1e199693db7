// The whole frame through the host's entry table, as a camera host makes
// it: singleProcessImage on an NV21 frame, logs off and the
// console silenced. Counters: allocations and allocated bytes a frame.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>

#include "bench/allocation_counter.h"
#include "bench/console_silencer.h"
#include "bench/frame_cases.h"
#include "bench/nv21_frames.h"
#include "bench/table_handle.h"

namespace bench {

namespace {

void framePavona(benchmark::State& state, Cache cache, int colours,
                 bool preview) {
  uint64_t calls = 0;
  uint64_t bytes = 0;
  {
    const ConsoleSilencer quiet;
    TableHandle table;
    ProcessParamData param{};
    param.colorNum = colours;
    param.showPalette = preview ? 1 : 0;
    timeFrames(state, cache, [&](Nv21Frame frame) {
      // Random seeding (k other than 4 and 8) starts alike every frame.
      std::srand(1);
      const Allocations before = allocationsSoFar();
      table.process(frame, param);
      const Allocations after = allocationsSoFar();
      calls += after.calls - before.calls;
      bytes += after.bytes - before.bytes;
    });
  }
  const double frames = static_cast<double>(state.iterations());
  state.counters["allocs"] = static_cast<double>(calls) / frames;
  state.counters["alloc_bytes"] = static_cast<double>(bytes) / frames;
}

const bool kRegistered = [] {
  for (Cache cache : {Cache::kWarm, Cache::kCold}) {
    registerFrameBenchmark(frameName(cache, "pavona"), cache,
                           [cache](benchmark::State& state) {
                             framePavona(state, cache, kFrameColours, false);
                           });
  }
  // What more colours and the preview cost; warm only, no peer.
  for (int colours : {3, 8, 20}) {
    for (bool preview : {false, true}) {
      if (colours == kFrameColours && !preview) continue;
      registerFrameBenchmark(
          frameName(Cache::kWarm, "pavona", colours, preview), Cache::kWarm,
          [colours, preview](benchmark::State& state) {
            framePavona(state, Cache::kWarm, colours, preview);
          });
    }
  }
  return true;
}();

}  // namespace

}  // namespace bench
