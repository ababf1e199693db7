// memcpy as the bandwidth reference: a 12,000,000-byte plane, and for each
// resize as many bytes as the source rows it samples, warm and cold.
#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>
#include <string>

#include "bench/nv21_frames.h"
#include "bench/resize_cases.h"

namespace bench {

namespace {

constexpr std::size_t kPlaneBytes = 12000000;

// Copies the first `bytes` of each frame into one destination, which stays
// in the caches as a resize's small output would.
void registerCopy(const std::string& name, Cache cache, std::size_t bytes) {
  auto destination = std::shared_ptr<uint8_t[]>(new uint8_t[bytes]);
  registerFrameBenchmark(name, cache,
                         [cache, bytes, destination](benchmark::State& state) {
                           timeFrames(state, cache, [&](Nv21Frame frame) {
                             std::memcpy(destination.get(), frame.y, bytes);
                             benchmark::ClobberMemory();
                           });
                           state.counters["bytes"] = static_cast<double>(bytes);
                         });
}

const bool kRegistered = [] {
  for (Cache cache : {Cache::kWarm, Cache::kCold}) {
    registerCopy("memcpy/" + std::to_string(kPlaneBytes) + "B_" +
                     cacheName(cache) + "/memcpy",
                 cache, kPlaneBytes);
    for (ResizeCase to : kResizeCases) {
      registerCopy(touchedCopyName(to, cache), cache, touchedBytes(to));
    }
  }
  return true;
}();

}  // namespace

}  // namespace bench
