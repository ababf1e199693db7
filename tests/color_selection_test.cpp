// The palette rows' order by distinctness. A single centre's row (its
// lightness figure and boost) tests/data/colour_bits.txt pins bit for bit,
// at every scale.
#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>

#include "src/KImages.h"

namespace {

constexpr float kUnwritten = -77.0f;

struct Row {
  float r, g, b, figure;
};

// An engine whose palette rows all start as a marker, so rows the call
// leaves alone are visible.
class ColorChosen : public ::testing::Test {
 protected:
  void SetUp() override {
    InitParamData param{};
    param.width = 64;
    param.height = 64;
    ASSERT_EQ(engine_.init(&param), 0);
    for (auto& row : record_.palette) std::fill(row, row + 4, kUnwritten);
  }

  void run(std::initializer_list<_Point> centres, IMAGE_FORMAT_TYPE format) {
    engine_.setParameters(static_cast<int>(centres.size()));
    std::copy(centres.begin(), centres.end(), engine_.m_clusters.get());
    engine_.colorChosen(record_.palette, format);
  }

  void expectRow(int n, Row want) {
    const float* row = record_.palette[n];
    EXPECT_EQ(row[0], want.r) << "row " << n;
    EXPECT_EQ(row[1], want.g) << "row " << n;
    EXPECT_EQ(row[2], want.b) << "row " << n;
    EXPECT_EQ(row[3], want.figure) << "row " << n;
  }

  void expectUnwrittenFrom(int first) {
    for (int n = first; n < PAVONA_MAX_COLORS; ++n) {
      expectRow(n, {kUnwritten, kUnwritten, kUnwritten, kUnwritten});
    }
  }

  KImages engine_;
  ProcessParamData record_{};
};

// Neutral centres differ only in L*: black 0, (10, 10, 10) ~ 2.742 (linear
// branch), white 100. With S_L from the mean lightness, black-grey ~ 1.59,
// black-white = 100, grey-white ~ 96.68: the sums rank white (~196.7),
// black (~101.6), grey (~98.3).
TEST_F(ColorChosen, RowsFollowDescendingDistinctness) {
  run({{0, 0, 0}, {10, 10, 10}, {255, 255, 255}}, IMAGE_FORMAT_NV21);
  expectRow(0, {255, 255, 255, 100});
  expectRow(1, {0, 0, 0, 0});
  expectRow(2, {10, 10, 10, 200.0f / 51.0f});
  ASSERT_EQ(engine_.m_lastFrame.rows, 3);
  EXPECT_EQ(engine_.m_lastFrame.cluster[0], 2);
  EXPECT_EQ(engine_.m_lastFrame.cluster[1], 0);
  EXPECT_EQ(engine_.m_lastFrame.cluster[2], 1);
  expectUnwrittenFrom(3);
}

// Centres 0 and 1 are the same grey, so their sums are the same float and
// only centre 0 enters the ranking. Row 2 is not written but is boosted
// from what it held: the worked (200, 100, 100), figure kept.
TEST_F(ColorChosen, EqualDistinctnessKeepsLowestClusterAndBoostsStaleRow) {
  const float stale[4] = {200, 100, 100, 7};
  std::copy(stale, stale + 4, record_.palette[2]);
  run({{50, 50, 50}, {50, 50, 50}, {200, 200, 200}}, IMAGE_FORMAT_NV21);
  expectRow(0, {200, 200, 200, 4000.0f / 51.0f});
  expectRow(1, {50, 50, 50, 1000.0f / 51.0f});
  expectRow(2, {212.5f, 87.5f, 87.5f, 7});
  ASSERT_EQ(engine_.m_lastFrame.rows, 2);
  EXPECT_EQ(engine_.m_lastFrame.cluster[0], 2);
  EXPECT_EQ(engine_.m_lastFrame.cluster[1], 0);
  expectUnwrittenFrom(3);
}

}  // namespace
