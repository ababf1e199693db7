// K-means on the working frame of a 4000 x 3000 picture (124 x 92 points):
// a whole processKMeansAlgo, and one assignment pass NEON against its
// scalar twin.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "src/neon/KMeansAlgo_neon.h"
#include "src/neon/kmeans_assign.h"

namespace {

constexpr int kWidth = 124;
constexpr int kHeight = 92;

// Photo-like and deterministic: a sky-to-ground gradient, two objects,
// soft shading and a little sensor noise, in whole 8-bit values.
std::vector<_Point> photoFrame() {
  std::vector<_Point> frame;
  unsigned noise = 12345;
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      const float t = float(y) / kHeight;
      float r = 90 + 110 * t, g = 140 + 40 * t, b = 230 - 150 * t;
      const float dx = x - 40.0f, dy = y - 50.0f;
      if (dx * dx + dy * dy < 400) r = 210, g = 60, b = 40;      // a red ball
      if (x > 80 && x < 110 && y > 30) r = 50, g = 110, b = 45;  // foliage
      const float shade = 0.8f + 0.2f * std::cos(x * 0.05f);
      noise = noise * 1103515245u + 12345u;
      const float n = float((noise >> 16) % 9) - 4.0f;
      auto clamp = [](float v) {
        return std::fmin(std::fmax(v, 0.0f), 255.0f);
      };
      frame.push_back({clamp(std::round(r * shade + n)),
                       clamp(std::round(g * shade + n)),
                       clamp(std::round(b * shade - n))});
    }
  }
  return frame;
}

void kmeansFrame(benchmark::State& state, int k) {
  const std::vector<_Point> frame = photoFrame();
  std::vector<_Point> out(k);
  KMeansAlgo kmeans;
  int passes = 0;
  for (auto _ : state) {
    // Random seeding (k = 3, 20) must start alike every time.
    std::srand(1);
    kmeans.init(k, 0.001f);
    kmeans.processKMeansAlgo(frame.data(), out.data(), kWidth, kHeight);
    benchmark::DoNotOptimize(out.data());
    passes += kmeans.m_passCount;
  }
  state.counters["passes"] = kmeans.m_passCount;
  state.counters["time_per_pass"] = benchmark::Counter(
      passes, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

// Centres spread over the frame, as after a few passes.
template <decltype(pavona::internal::assignNearest_C) assign>
void assignPass(benchmark::State& state, int k) {
  const std::vector<_Point> frame = photoFrame();
  std::vector<_Point> centres;
  for (int i = 0; i < k; ++i)
    centres.push_back(frame[(i * 7919) % frame.size()]);
  std::vector<float> nearest(frame.size());
  std::vector<int> labels(frame.size());
  for (auto _ : state) {
    std::memset(nearest.data(), 100, nearest.size() * sizeof(float));
    std::memset(labels.data(), 0, labels.size() * sizeof(int));
    assign(frame.data(), static_cast<int>(frame.size()), centres.data(), k,
           nearest.data(), labels.data());
    benchmark::DoNotOptimize(labels.data());
  }
}

// Registered by hand so that the names carry no argument suffix.
const bool kRegistered = [] {
  for (int k : {3, 8, 20}) {
    const std::string name = "kmeans/124x92_k" + std::to_string(k) + "/pavona";
    benchmark::RegisterBenchmark(name.c_str(), kmeansFrame, k);
  }
  benchmark::RegisterBenchmark("kmeans_assign/124x92_k8/neon",
                               assignPass<pavona::internal::assignNearest_NEON>,
                               8);
  benchmark::RegisterBenchmark("kmeans_assign/124x92_k8/scalar",
                               assignPass<pavona::internal::assignNearest_C>,
                               8);
  return true;
}();

}  // namespace
