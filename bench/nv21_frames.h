// Camera frames for the benchmarks: a photo-like 4000 x 3000 NV21 picture,
// handed out warm (the same frame every call) or cold (as a fresh camera
// frame arrives: at another address and in no cache).
#ifndef PAVONA_BENCH_NV21_FRAMES_H_
#define PAVONA_BENCH_NV21_FRAMES_H_

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "bench/thread_cpu_clock.h"

namespace bench {

constexpr int kFrameWidth = 4000;
constexpr int kFrameHeight = 3000;
// Packed rows: luma and chroma rows alike hold kFrameWidth bytes.
constexpr int kFrameStride = kFrameWidth;
constexpr std::size_t kLumaBytes = std::size_t{kFrameStride} * kFrameHeight;
constexpr std::size_t kFrameBytes = kLumaBytes + kLumaBytes / 2;

struct Nv21Frame {
  uint8_t* y;   // kFrameHeight rows
  uint8_t* vu;  // kFrameHeight / 2 rows of V,U pairs
};

enum class Cache { kWarm, kCold };

// "warm" or "cold", as benchmark names carry it.
const char* cacheName(Cache cache);

// Warm: always the same frame, left in the caches by the previous call as
// far as it fits. Cold: the next of several copies in turn, each evicted
// from every cache level just before it is handed out. A pool larger than
// this machine's 480 MiB last-level cache would not make the sparse reads
// of a 124 x 92 resize cold (its sampled rows are 552 KB a frame), so the
// copies are evicted instead; being several, they also start with cold
// address translations.
class FrameSource {
 public:
  explicit FrameSource(Cache cache) : cache_(cache) {}
  Nv21Frame next();

 private:
  Cache cache_;
  int turn_ = 0;
};

// Iterations of a cold benchmark: each one also pays an eviction of the
// whole frame, so their number is fixed rather than grown to a minimum time.
constexpr int kColdIterations = 40;

// Calls `call(frame)` once an iteration on frames from a FrameSource and
// times the call alone, in the thread's CPU time. For benchmarks registered
// with registerFrameBenchmark.
template <class Call>
void timeFrames(benchmark::State& state, Cache cache, Call&& call) {
  FrameSource source(cache);
  for (auto _ : state) {
    const Nv21Frame frame = source.next();
    const double start = threadCpuSeconds();
    call(frame);
    state.SetIterationTime(threadCpuSeconds() - start);
  }
}

// Registers `run(state)`, which times its iterations with timeFrames.
template <class Run>
benchmark::internal::Benchmark* registerFrameBenchmark(const std::string& name,
                                                       Cache cache, Run run) {
  auto* b = benchmark::RegisterBenchmark(name.c_str(), run);
  b->UseManualTime();
  if (cache == Cache::kCold) b->Iterations(kColdIterations);
  return b;
}

}  // namespace bench

#endif  // PAVONA_BENCH_NV21_FRAMES_H_
