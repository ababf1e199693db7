#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <random>
#include <vector>

#include "src/KImages.h"

namespace {

constexpr float kUnwritten = -77.0f;

// An engine with its centres buffer, k centres set and every palette row
// filled with a marker, so rows the call leaves alone are visible.
class ColorChosen : public ::testing::Test {
 protected:
  void SetUp() override {
    InitParamData param{};
    param.width = 64;
    param.height = 64;
    param.format = IMAGE_FORMAT_NV21;
    ASSERT_EQ(engine_.init(&param), 0);
    for (auto& row : record_.palette) {
      std::fill(row, row + 4, kUnwritten);
    }
  }

  void setCentres(std::initializer_list<_Point> centres) {
    engine_.setParameters(static_cast<int>(centres.size()));
    std::copy(centres.begin(), centres.end(), engine_.m_clusters.get());
  }

  void setRow(int n, float r, float g, float b, float figure) {
    float* row = record_.palette[n];
    row[0] = r;
    row[1] = g;
    row[2] = b;
    row[3] = figure;
  }

  void run(IMAGE_FORMAT_TYPE format) {
    engine_.colorChosen(record_.palette, format);
  }

  void expectRow(int n, float r, float g, float b, float figure) {
    const float* row = record_.palette[n];
    EXPECT_EQ(row[0], r) << "row " << n;
    EXPECT_EQ(row[1], g) << "row " << n;
    EXPECT_EQ(row[2], b) << "row " << n;
    EXPECT_EQ(row[3], figure) << "row " << n;
  }

  void expectUntouchedFrom(int first) {
    for (int n = first; n < PAVONA_MAX_COLORS; ++n) {
      for (float v : record_.palette[n]) {
        ASSERT_EQ(v, kUnwritten) << "row " << n;
      }
    }
  }

  KImages engine_;
  ProcessParamData record_{};
};

// The worked example: t = 300/255, l ~ 0.588, sat ~ 0.476, factor 0.25 about
// mid = 150. Every step lands exactly on these floats.
TEST_F(ColorChosen, SingleCentreBecomesRowZeroWithBoostedSaturation) {
  setCentres({{200, 100, 100}});
  run(IMAGE_FORMAT_NV21);
  expectRow(0, 212.5f, 87.5f, 87.5f, 58.82353f);
  EXPECT_EQ(engine_.m_rowCount, 1);
  EXPECT_EQ(engine_.m_rowCluster[0], 0);
  expectUntouchedFrom(1);
}

TEST_F(ColorChosen, GreyKeepsItsColourAndFigureIsTwiceTheLevel) {
  setCentres({{80, 80, 80}});
  run(IMAGE_FORMAT_NV12);
  expectRow(0, 80, 80, 80, 1600.0f / 51.0f);
}

// (255, 0, 0): lightness figure 2550/51 = 50 exactly; HSL saturation is 1,
// so the factor is 1/1 - 1 = 0 and the colour is exact.
TEST_F(ColorChosen, FullySaturatedRedIsUnchanged) {
  setCentres({{255, 0, 0}});
  run(IMAGE_FORMAT_NV21);
  expectRow(0, 255, 0, 0, 50);
}

// Formats other than 5, 6 and 9 use scale 1: (255, 0, 0) then has t = 255,
// sat = 255 / (2 - 255) < 0.8, factor 0.25 about mid = 127.5, all exact.
TEST_F(ColorChosen, UnknownFormatUsesScaleOne) {
  setCentres({{255, 0, 0}});
  run(IMAGE_FORMAT_RESERVED10);
  expectRow(0, 286.875f, -31.875f, -31.875f, 50);
}

// 10-bit: the figure is still (min + max) * 10 / 51, so it passes 100. The
// saturation of (1000, 600, 600) over 1024 is 0.39 / 0.44 ~ 0.89, so it is
// raised to full: the largest channel reaches the scale, 1024 (it would be
// 1023 with a scale of 1023), and the smallest falls by as much below mid.
TEST_F(ColorChosen, TenBitUsesScale1024AndFigureExceeds100) {
  setCentres({{1000, 600, 600}});
  run(IMAGE_FORMAT_YUV420SP_10BIT);
  const float* row = record_.palette[0];
  EXPECT_NEAR(row[0], 1024.0, 1e-3);
  EXPECT_NEAR(row[1], 576.0, 1e-3);
  EXPECT_EQ(row[1], row[2]);
  EXPECT_EQ(row[3], 16000.0f / 51.0f);
  EXPECT_GT(row[3], 100.0f);
}

// Neutral centres differ only in L*: black 0, (10,10,10) about 2.742 (linear
// branch: 903.3 * 10/255/12.92), white 100. With S_L from the mean
// lightness, black-grey ~ 1.59, black-white = 100, grey-white ~ 96.68, so
// the sums rank white (~196.7), black (~101.6), grey (~98.3).
TEST_F(ColorChosen, RowsFollowDescendingDistinctness) {
  setCentres({{0, 0, 0}, {10, 10, 10}, {255, 255, 255}});
  run(IMAGE_FORMAT_NV21);
  expectRow(0, 255, 255, 255, 100);
  expectRow(1, 0, 0, 0, 0);
  expectRow(2, 10, 10, 10, 200.0f / 51.0f);
  ASSERT_EQ(engine_.m_rowCount, 3);
  EXPECT_EQ(engine_.m_rowCluster[0], 2);
  EXPECT_EQ(engine_.m_rowCluster[1], 0);
  EXPECT_EQ(engine_.m_rowCluster[2], 1);
  expectUntouchedFrom(3);
}

// Centres 0 and 1 are the same grey, so their sums are the same float and
// only centre 0 enters the ranking. Row 2 is not written but is still
// boosted from what it held: the worked example's (200, 100, 100).
TEST_F(ColorChosen, EqualDistinctnessKeepsLowestClusterAndBoostsStaleRow) {
  setCentres({{50, 50, 50}, {50, 50, 50}, {200, 200, 200}});
  setRow(2, 200, 100, 100, 7);
  run(IMAGE_FORMAT_NV21);
  expectRow(0, 200, 200, 200, 4000.0f / 51.0f);
  expectRow(1, 50, 50, 50, 1000.0f / 51.0f);
  expectRow(2, 212.5f, 87.5f, 87.5f, 7);
  ASSERT_EQ(engine_.m_rowCount, 2);
  EXPECT_EQ(engine_.m_rowCluster[0], 2);
  EXPECT_EQ(engine_.m_rowCluster[1], 0);
  expectUntouchedFrom(3);
}

struct Hsl {
  double h, s, l;
};

// Plain HSL in double, hue in degrees.
Hsl toHsl(double r, double g, double b, double scale) {
  r /= scale;
  g /= scale;
  b /= scale;
  const double mx = std::max({r, g, b}), mn = std::min({r, g, b});
  const double l = (mx + mn) / 2, d = mx - mn;
  if (d == 0) return {0, 0, l};
  const double s = d / (1 - std::fabs(2 * l - 1));
  double h;
  if (mx == r) {
    h = std::fmod((g - b) / d + 6, 6);
  } else if (mx == g) {
    h = (b - r) / d + 2;
  } else {
    h = (r - g) / d + 4;
  }
  return {h * 60, s, l};
}

// The boost raises HSL saturation by a quarter, capped at 1, and keeps hue
// and lightness. Checked against plain HSL on many 8-bit colours.
TEST_F(ColorChosen, BoostRaisesSaturationByAQuarterKeepingHueAndLightness) {
  std::mt19937 rng(51);
  std::uniform_int_distribution<int> level(0, 255);
  for (int i = 0; i < 300; ++i) {
    const _Point c{static_cast<float>(level(rng)),
                   static_cast<float>(level(rng)),
                   static_cast<float>(level(rng))};
    setCentres({c});
    run(IMAGE_FORMAT_NV21);
    const float* row = record_.palette[0];
    const Hsl before = toHsl(c.r, c.g, c.b, 255);
    const Hsl after = toHsl(row[0], row[1], row[2], 255);
    SCOPED_TRACE(::testing::Message() << c.r << ", " << c.g << ", " << c.b);
    EXPECT_NEAR(after.s, std::min(1.0, 1.25 * before.s), 1e-5);
    EXPECT_NEAR(after.l, before.l, 1e-6);
    if (before.s > 1e-3) {
      EXPECT_NEAR(after.h, before.h, 1e-3);
    }
  }
}

}  // namespace
