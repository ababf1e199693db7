// Our stages on the photo frame, as the engine runs them for a frame, each
// counted alone while the others feed it; the floor of the clustering; and
// the whole frame through the entry table.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "bench/aarch64/counted_cases.h"
#include "bench/console_silencer.h"
#include "bench/frame_cases.h"
#include "bench/nv21_frames.h"
#include "bench/table_handle.h"
#include "colorconv/nv21_to_rgb.h"
#include "src/KImages.h"
#include "zel/neon/imgproc/resize.h"

namespace bench {

namespace {

// In the order a frame with the preview on runs them.
constexpr const char* kStages[] = {"resize", "convert", "kmeans", "preview",
                                   "select"};

// The engine's stages on one handle for the photo frame.
class Stages {
 public:
  explicit Stages(int k) {
    InitParamData init{};
    init.width = kFrameWidth;
    init.height = kFrameHeight;
    init.format = IMAGE_FORMAT_NV21;
    engine_.init(&init);
    engine_.setParameters(k);
  }

  void run(const char* stage) {
    uint8_t* downY = engine_.m_downImage.get();
    uint8_t* downVU =
        downY + std::ptrdiff_t{engine_.m_downRows} * engine_.m_downStride;
    if (std::strcmp(stage, "resize") == 0) {
      zel::neon::imgproc::resize_v00<uint8_t, uint8_t, zel::YUV420SP_8BIT,
                                     zel::INTERP_NEAREST, float, 0>(
          frame_.y, frame_.vu, downY, downVU, kFrameWidth, kFrameHeight,
          engine_.m_downWidth, engine_.m_downHeight, kFrameStride, kFrameStride,
          engine_.m_downStride, engine_.m_downStride);
    } else if (std::strcmp(stage, "convert") == 0) {
      pavona::nv21_to_rgb<uint8_t, false, 8, 0>(
          downY, downVU, reinterpret_cast<float*>(engine_.m_points.get()),
          engine_.m_downWidth, engine_.m_downHeight, engine_.m_downStride,
          engine_.m_downStride, 12 * engine_.m_downWidth);
    } else if (std::strcmp(stage, "kmeans") == 0) {
      engine_.getPalette();
    } else if (std::strcmp(stage, "select") == 0) {
      engine_.colorChosen(record_.palette, IMAGE_FORMAT_NV21);
    } else {
      engine_.displayPalette(nullptr, IMAGE_FORMAT_NV21);
    }
  }

  // Every stage of a frame in order, `counted` marked. Random seeding (k
  // other than 4 and 8) starts alike every frame.
  void frame(const char* counted) {
    std::srand(1);
    for (const char* stage : kStages) {
      const bool marked =
          counted != nullptr && std::strcmp(stage, counted) == 0;
      if (marked) pavonaCountMark(PAVONA_COUNT_START);
      run(stage);
      if (marked) pavonaCountMark(PAVONA_COUNT_STOP);
    }
  }

  const KImages& engine() const { return engine_; }

 private:
  KImages engine_;
  Nv21Frame frame_ = FrameSource(Cache::kWarm).next();
  ProcessParamData record_{};
};

// What any update step must do: add every listed point into its list's
// sum, in list order, one float add a channel.
__attribute__((noinline)) void sumLists(const Cluster* clusters, int k,
                                        _Point* sums) {
  for (int c = 0; c < k; ++c) {
    _Point sum{0.0f, 0.0f, 0.0f};
    for (const _Point& p : clusters[c].points) {
      sum.r += p.r;
      sum.g += p.g;
      sum.b += p.b;
    }
    sums[c] = sum;
  }
}

void countFrames(int k) {
  const ConsoleSilencer quiet;
  TableHandle table;
  ProcessParamData param{};
  param.colorNum = k;
  const Nv21Frame frame = FrameSource(Cache::kWarm).next();
  table.process(frame, param);
  for (int i = 0; i < kCountedFrames; ++i) {
    pavonaCountMark(PAVONA_COUNT_START);
    table.process(frame, param);
    pavonaCountMark(PAVONA_COUNT_STOP);
  }
}

bool isStage(const char* what) {
  for (const char* stage : kStages) {
    if (std::strcmp(stage, what) == 0) return true;
  }
  return false;
}

}  // namespace

std::vector<_Point> workingPoints() {
  Stages stages(kFrameColours);
  stages.frame(nullptr);
  const KImages& engine = stages.engine();
  const _Point* points = engine.m_points.get();
  return {points, points + engine.m_downWidth * engine.m_downHeight};
}

void countPavona(const char* what, int k) {
  if (std::strcmp(what, "frame") == 0) {
    countFrames(k);
    return;
  }
  if (std::strcmp(what, "floor") == 0) {
    Stages stages(k);
    stages.frame(nullptr);
    const KMeansAlgo& kmeans = *stages.engine().m_KMeansEngine;
    std::vector<_Point> sums(k);
    countRepeats(kCountedRepeats, [&] {
      sumLists(kmeans.m_clusters, k, sums.data());
      benchmark::DoNotOptimize(sums.data());
    });
    return;
  }
  if (!isStage(what)) {
    std::fprintf(stderr, "unknown case pavona %s\n", what);
    std::exit(2);
  }
  Stages stages(k);
  stages.frame(nullptr);
  for (int i = 0; i < kCountedRepeats; ++i) stages.frame(what);
  std::printf("passes %d\n", stages.engine().m_KMeansEngine->m_passCount);
}

}  // namespace bench
