// One frame through the engine: the preview changes no row, and the
// recorded outcome accounts for every working pixel.
#include <gtest/gtest.h>

#include <cstring>
#include <numeric>

#include "src/KImages.h"
#include "tests/support/capture.h"
#include "tests/support/frames.h"

namespace {

ProcessParamData request(int k, bool show) {
  ProcessParamData param{};
  param.colorNum = k;
  param.showPalette = show;
  return param;
}

TEST(FrameSequence, PreviewChangesNoRowAndTheOutcomeCoversTheFrame) {
  InitParamData init{};
  init.width = 4000;
  init.height = 3000;
  init.format = IMAGE_FORMAT_NV21;
  KImages engine;
  ASSERT_EQ(engine.init(&init), 0);
  auto frame = pavona::testing::makeFrame8(IMAGE_FORMAT_NV21, 4000, 3000, 9);

  ProcessParamData plain = request(8, false);
  ASSERT_EQ(engine.processKImages(&frame.image, &plain), 0);
  ProcessParamData shown = request(8, true);
  ASSERT_EQ(engine.processKImages(&frame.image, &shown), 0);

  EXPECT_EQ(std::memcmp(plain.palette, shown.palette, sizeof plain.palette), 0);
  const pavona::FrameOutcome& last = engine.m_lastFrame;
  EXPECT_GE(last.passes, 1);
  EXPECT_LE(last.passes, 502);
  ASSERT_EQ(last.rows, 8);
  EXPECT_EQ(std::accumulate(last.members, last.members + last.rows, 0),
            124 * 92)
      << "every working pixel belongs to exactly one cluster";
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
