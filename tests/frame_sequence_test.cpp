// Null records at the engine are refused without a line. That the preview
// changes no row and that every working pixel is counted, the golden,
// frame-info and tool tests show through the table. The preview canvas is
// drawn and dropped, so no host sees its pixels; the ASan, UBSan and
// memcheck runs of the suites that ask for it watch its writes.
#include <gtest/gtest.h>

#include "src/KImages.h"
#include "tests/support/capture.h"
#include "tests/support/frames.h"

namespace {

TEST(FrameSequence, NullRecordsAreRejectedSilently) {
  KImages engine;
  ProcessParamData param{};
  param.colorNum = 3;
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
