// One frame through the engine with the observer installed: what our tools
// are told must match the frame, and the host's rows must not change.
#include <gtest/gtest.h>

#include <cstring>
#include <numeric>
#include <vector>

#include "src/KImages.h"
#include "tests/support/capture.h"
#include "tests/support/frames.h"

namespace {

class RowRecorder : public KImagesObserver {
 public:
  void onPaletteCanvas(const uint8_t*, int, int, int) override { ++canvases; }
  void onPaletteRows(const int* memberCounts, int rows, int passes) override {
    counts.assign(memberCounts, memberCounts + rows);
    this->passes = passes;
  }
  std::vector<int> counts;
  int passes = 0;
  int canvases = 0;
};

ProcessParamData request(int k, bool show) {
  ProcessParamData param{};
  param.colorNum = k;
  param.showPalette = show;
  return param;
}

TEST(FrameSequence, ObserverSeesPopulationsWithoutChangingRows) {
  InitParamData init{};
  init.width = 4000;
  init.height = 3000;
  init.format = IMAGE_FORMAT_NV21;
  KImages engine;
  ASSERT_EQ(engine.init(&init), 0);
  auto frame = pavona::testing::makeFrame8(IMAGE_FORMAT_NV21, 4000, 3000, 9);

  ProcessParamData plain = request(8, false);
  ASSERT_EQ(engine.processKImages(&frame.image, &plain), 0);

  RowRecorder recorder;
  engine.setObserver(&recorder);
  ProcessParamData observed = request(8, true);
  ASSERT_EQ(engine.processKImages(&frame.image, &observed), 0);

  EXPECT_EQ(std::memcmp(plain.palette, observed.palette, sizeof plain.palette),
            0);
  EXPECT_EQ(recorder.canvases, 1);
  EXPECT_GE(recorder.passes, 1);
  EXPECT_LE(recorder.passes, 502);
  ASSERT_EQ(static_cast<int>(recorder.counts.size()), engine.m_rowCount);
  if (engine.m_rowCount == 8) {
    EXPECT_EQ(
        std::accumulate(recorder.counts.begin(), recorder.counts.end(), 0),
        124 * 92)
        << "every working pixel belongs to exactly one cluster";
  }
}

TEST(FrameSequence, NullRecordsAreRejectedSilently) {
  KImages engine;
  ProcessParamData param = request(3, false);
  auto frame = pavona::testing::makeFrame8(IMAGE_FORMAT_NV21, 64, 64, 0);
  int a = 0, b = 0;
  auto out = pavona::testing::captureOutput([&] {
    a = engine.processKImages(nullptr, &param);
    b = engine.processKImages(&frame.image, nullptr);
  });
  EXPECT_EQ(a, STATUS_NULL_INPUT);
  EXPECT_EQ(b, STATUS_NULL_INPUT);
  EXPECT_EQ(out.out + out.err, "");
}

}  // namespace
