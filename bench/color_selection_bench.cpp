#include <benchmark/benchmark.h>

#include <algorithm>
#include <iterator>

#include "src/KImages.h"

namespace {

// Cluster means of an outdoor 8-bit frame, most populous first: sky, foliage,
// skin, shadows, a few saturated accents and near-greys.
const _Point kCentres[PAVONA_MAX_COLORS] = {
    {121.4f, 163.8f, 212.6f}, {58.2f, 84.7f, 41.3f},
    {201.9f, 160.3f, 137.5f}, {23.6f, 25.1f, 30.8f},
    {142.0f, 141.2f, 139.7f}, {96.3f, 128.5f, 61.0f},
    {232.7f, 236.1f, 240.4f}, {180.5f, 52.8f, 44.9f},
    {74.1f, 62.5f, 55.3f},    {213.8f, 188.2f, 92.6f},
    {37.9f, 71.4f, 118.6f},   {165.3f, 120.7f, 88.1f},
    {247.2f, 214.9f, 60.3f},  {103.8f, 99.2f, 97.5f},
    {12.4f, 11.9f, 13.0f},    {189.6f, 203.0f, 176.4f},
    {128.9f, 58.0f, 122.3f},  {61.7f, 140.2f, 160.8f},
    {255.0f, 255.0f, 255.0f}, {86.0f, 43.5f, 20.1f},
};

template <int k>
void colorChosen(benchmark::State& state) {
  KImages engine;
  InitParamData init{};
  init.width = 4000;
  init.height = 3000;
  init.format = IMAGE_FORMAT_NV21;
  if (engine.init(&init) != 0) {
    state.SkipWithError("init failed");
    return;
  }
  engine.setParameters(k);
  std::copy(std::begin(kCentres), std::end(kCentres), engine.m_clusters.get());
  ProcessParamData record{};
  for (auto _ : state) {
    engine.colorChosen(record.palette, IMAGE_FORMAT_NV21);
    benchmark::DoNotOptimize(record.palette);
  }
}

BENCHMARK(colorChosen<3>)->Name("colorChosen/k3/pavona");
BENCHMARK(colorChosen<20>)->Name("colorChosen/k20/pavona");

}  // namespace
