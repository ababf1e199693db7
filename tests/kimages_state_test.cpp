// The engine's parameters as a host sets them. Its working sizes and
// buffers are pinned through the table by the hostile-record, frame-info
// and golden tests.
#include <gtest/gtest.h>

#include <climits>

#include "src/KImages.h"

namespace {

TEST(KImagesParameters, ColourCountIsClamped) {
  const struct {
    int requested, expected;
  } cases[] = {{0, 3},  {21, 20}, {20, 20},      {1, 1},
               {-5, 3}, {7, 7},   {INT_MAX, 20}, {INT_MIN, 3}};
  KImages engine;
  for (const auto& c : cases) {
    engine.setParameters(c.requested);
    EXPECT_EQ(engine.m_colorNum, c.expected) << "requested " << c.requested;
  }
  EXPECT_EQ(engine.m_maxColorNum, 20);
}

}  // namespace
