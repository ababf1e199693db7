// The palette tracker and its measures: ΔE00 against published data, the
// assignment against brute force, and the tracker on made-up palettes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>
#include <vector>

#include "tracker/assignment.h"
#include "tracker/delta_e.h"
#include "tracker/palette_tracker.h"

namespace pavona::tracker {
namespace {

TEST(DeltaE00, MatchesSharmaWuDalalTestData) {
  struct Pair {
    Lab first, second;
    double expected;
  };
  // Pairs 1, 7, 17 and 25 of the paper's table: a blue, achromatic with
  // a hue jump, a large difference, and a near pair.
  const Pair pairs[] = {
      {{50, 2.6772, -79.7751}, {50, 0, -82.7485}, 2.0425},
      {{50, 0, 0}, {50, -1, 2}, 2.3669},
      {{50, 2.5, 0}, {73, 25, -18}, 27.1492},
      {{60.2574, -34.0099, 36.2677}, {60.4626, -34.1751, 39.4387}, 1.2644},
  };
  for (const Pair& pair : pairs) {
    EXPECT_NEAR(deltaE00(pair.first, pair.second), pair.expected, 5e-5);
    EXPECT_NEAR(deltaE00(pair.second, pair.first), pair.expected, 5e-5);
  }
}

TEST(LabColour, RoundTripsAndScalesTenBitRows) {
  for (const Rgb rgb :
       {Rgb{255, 255, 255}, Rgb{0, 0, 0}, Rgb{200, 30, 90}, Rgb{3, 10, 1}}) {
    const Lab lab = labFromRgb(rgb, 255);
    const Rgb back = rgbFromLab(lab, 255);
    EXPECT_NEAR(std::max({std::fabs(back.r - rgb.r), std::fabs(back.g - rgb.g),
                          std::fabs(back.b - rgb.b)}),
                0, 1e-3);
    const Lab deep = labFromRgb({rgb.r * 4, rgb.g * 4, rgb.b * 4}, 1020);
    EXPECT_NEAR(deltaE00(lab, deep), 0, 1e-9);
  }
  EXPECT_NEAR(labFromRgb({255, 255, 255}, 255).l, 100, 1e-3);
}

TEST(Assignment, FindsTheCheapestPairingOfAnyShape) {
  std::mt19937 random(17);
  std::uniform_real_distribution<double> value(0, 100);
  for (const auto& [rows, cols] : {std::pair{4, 4}, {3, 6}, {6, 3}, {1, 5}}) {
    std::vector<double> cost(rows * cols);
    for (double& c : cost) c = value(random);
    const std::vector<int> got = assignMinimumCost(cost, rows, cols);
    auto total = [&](const std::vector<int>& colOfRow) {
      double sum = 0;
      for (int row = 0; row < rows; ++row) {
        if (colOfRow[row] >= 0) sum += cost[row * cols + colOfRow[row]];
      }
      return sum;
    };
    // Brute force: every order of the longer side, cut to the shorter.
    const int n = std::max(rows, cols);
    std::vector<int> order(n);
    std::iota(order.begin(), order.end(), 0);
    double best = 1e300;
    do {
      std::vector<int> colOfRow(rows, -1);
      for (int i = 0; i < n; ++i) {
        if (rows <= cols && i < rows) colOfRow[i] = order[i];
        if (rows > cols && order[i] < cols) colOfRow[i] = order[i];
      }
      best = std::min(best, total(colOfRow));
    } while (std::next_permutation(order.begin(), order.end()));
    EXPECT_NEAR(total(got), best, 1e-9) << rows << "x" << cols;
    EXPECT_EQ(std::count(got.begin(), got.end(), -1), std::max(0, rows - cols));
  }
}

TEST(PaletteFlicker, WeighsMatchedRowsByShare) {
  const Lab red = labFromRgb({220, 40, 30}, 255);
  const Lab blue = labFromRgb({20, 40, 200}, 255);
  const Lab redder = labFromRgb({230, 40, 30}, 255);
  // Listed in swapped order: the matching pairs red with redder anyway.
  const std::vector<Swatch> before = {{red, 0.7}, {blue, 0.3}};
  const std::vector<Swatch> after = {{blue, 0.4}, {redder, 0.6}};
  EXPECT_NEAR(paletteFlicker(before, after), 0.65 * deltaE00(red, redder),
              1e-12);
  EXPECT_EQ(paletteFlicker(before, before), 0);
}

std::vector<Swatch> palette(std::vector<Rgb> colours) {
  std::vector<Swatch> rows;
  for (const Rgb& rgb : colours) {
    rows.push_back({labFromRgb(rgb, 255), 1.0 / colours.size()});
  }
  return rows;
}

std::vector<Swatch> swatches(const std::vector<TrackedSwatch>& tracked) {
  std::vector<Swatch> rows;
  for (const TrackedSwatch& entry : tracked) rows.push_back(entry.swatch);
  return rows;
}

TEST(PaletteTracker, FollowsACutWithinBoundedFrames) {
  PaletteTracker tracker(0.3);
  // One colour of the new scene is near an old one and is blended towards;
  // the others start tracks at once and the old tracks end.
  for (int frame = 0; frame < 5; ++frame) {
    tracker.update(palette({{200, 30, 30}, {30, 200, 30}}));
  }
  const auto cut = palette({{205, 40, 35}, {240, 240, 240}, {10, 10, 10}});
  for (int frame = 1; frame <= 20; ++frame) {
    const std::vector<TrackedSwatch> out = tracker.update(cut);
    ASSERT_EQ(out.size(), 3u);
    const double residual = paletteFlicker(cut, swatches(out));
    // The joined track moves only part of the way (a jump would leave 0).
    EXPECT_TRUE(frame > 1 || residual > 0.1);
    // (1 - 0.3)^n of the first gap, which is at most the join threshold.
    EXPECT_LE(residual, PaletteTracker::kJoinDeltaE * std::pow(0.7, frame))
        << frame;
  }
}

TEST(PaletteTracker, ATrackOutlastsPatienceFramesWithoutItsColour) {
  const int patience = PaletteTracker::kPatience;
  for (const int absent : {patience, patience + 1}) {
    PaletteTracker tracker(0.5);
    tracker.update(palette({{200, 30, 30}}));
    for (int frame = 0; frame < absent; ++frame) {
      tracker.update(palette({{20, 40, 200}}));
    }
    const std::vector<TrackedSwatch> back =
        tracker.update(palette({{200, 30, 30}}));
    ASSERT_EQ(back.size(), 1u);
    EXPECT_EQ(back[0].track, absent == patience ? 0 : 2) << absent;
  }
}

TEST(PaletteTracker, TracksNeverSwapOnASlowPan) {
  PaletteTracker tracker(0.5);
  std::mt19937 random(3);
  std::vector<int> trackOfColour;
  for (int frame = 0; frame < 60; ++frame) {
    // Three colours drifting slowly, listed in a new order every frame as
    // the plug-in's distinctness ranking may do.
    const double t = frame;
    const std::vector<Rgb> colours = {
        {150 + t, 60, 40}, {60, 120 + t / 2, 70 - t / 2}, {40, 60, 160 - t}};
    std::vector<Rgb> listed = colours;
    std::shuffle(listed.begin(), listed.end(), random);
    const std::vector<TrackedSwatch> out = tracker.update(palette(listed));
    ASSERT_EQ(out.size(), 3u);
    std::vector<int> now(3);
    for (const TrackedSwatch& entry : out) {
      // The track goes with the colour it is closest to.
      const auto distance = [&](const Rgb& rgb) {
        return deltaE00(entry.swatch.lab, labFromRgb(rgb, 255));
      };
      const auto nearest = std::min_element(colours.begin(), colours.end(),
                                            [&](const Rgb& a, const Rgb& b) {
                                              return distance(a) < distance(b);
                                            });
      now[nearest - colours.begin()] = entry.track;
    }
    if (frame == 0) trackOfColour = now;
    EXPECT_EQ(now, trackOfColour) << frame;
  }
}

}  // namespace
}  // namespace pavona::tracker
