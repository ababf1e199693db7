// KMeansAlgo as a whole: seeding, the pass loop's damped means and stop
// rules, and the final order. Where values are bit-exact the expected bits
// come from tests/kmeans_reference.py, a plain float32 computation.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "src/neon/KMeansAlgo_neon.h"
#include "tests/support/capture.h"

namespace {

uint32_t bitsOf(float value) {
  uint32_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

// Seeds k clusters on a grid whose sample j is (j, 0, 0), so that each
// centre names the index it was taken from.
std::vector<int> seededIndexes(int k, int width, int height) {
  std::vector<_Point> grid(width * height);
  for (int j = 0; j < width * height; ++j) grid[j] = {float(j), 0, 0};
  KMeansAlgo kmeans;
  kmeans.init(k, 0.001f);
  kmeans.initClusters(grid.data(), width, height);
  std::vector<int> indexes;
  for (int i = 0; i < k; ++i)
    indexes.push_back(int(kmeans.m_clusters[i].center.r));
  return indexes;
}

TEST(KMeansSeeding, FixedPatternsAndRand) {
  // 10 x 6 diamond: rows 1, 3, 3, 3 (3 * (6/4)), columns 5, 2, 6, 5; on
  // 4 x 2 clusters 0 and 3 both come from index 2. The 12 x 8 lattice
  // leaves out its bottom centre (78).
  EXPECT_EQ(seededIndexes(4, 10, 6), (std::vector<int>{15, 32, 36, 35}));
  EXPECT_EQ(seededIndexes(4, 4, 2), (std::vector<int>{2, 5, 7, 2}));
  EXPECT_EQ(seededIndexes(8, 12, 8),
            (std::vector<int>{27, 30, 33, 51, 54, 57, 75, 81}));
  // Other counts draw rand() % samples, k times; none for k = 0.
  std::srand(2024);
  std::vector<int> drawn;
  for (int i = 0; i < 5; ++i) drawn.push_back(std::rand() % 35);
  const int next = std::rand();
  std::srand(2024);
  EXPECT_EQ(seededIndexes(5, 7, 5), drawn);
  EXPECT_EQ(seededIndexes(0, 4, 2), std::vector<int>{});
  EXPECT_EQ(std::rand(), next);
}

// Four colour blobs with a ramp, as lattice_grid() in kmeans_reference.py.
std::vector<_Point> blobGrid(int width, int height) {
  const int base[4][3] = {
      {200, 30, 40}, {20, 180, 60}, {40, 50, 220}, {230, 220, 90}};
  std::vector<_Point> grid;
  for (int j = 0; j < width * height; ++j) {
    const int* c = base[(j / width * 2 / height) * 2 + j % width * 2 / width];
    grid.push_back({float(c[0] + j * 7 % 23), float(c[1] + j * 11 % 19),
                    float(c[2] + j * 5 % 17)});
  }
  return grid;
}

const std::vector<_Point> kWorkedGrid = {
    {10, 10, 10}, {20, 20, 20}, {200, 0, 0}, {210, 0, 0},
    {0, 200, 0},  {0, 0, 200},  {0, 210, 0}, {0, 0, 210}};

// Output, member counts and pass count against the float32 reference.
TEST(KMeansAlgo, MatchesTheFloat32Reference) {
  std::vector<_Point> redRamp;
  for (int j = 0; j < 24; ++j)
    redRamp.push_back({float(j * 3 % 97), float(j % 3), 0});
  struct Expected {
    size_t count;
    uint32_t r, g, b;
  };
  const struct {
    std::vector<_Point> grid;
    int size[3];  // width, height, passes
    std::vector<Expected> clusters;
  } cases[] = {
      // About (7.5, 110, 7.5), (205, 0, 0), (0, 0, 200), (0, 0, 210); the
      // cluster seeded as 3 ends second.
      {kWorkedGrid,
       {4, 2, 10},
       {{5, 0x40F0005A, 0x42DBFFFD, 0x40EFFFFD},
        {3, 0x434CFFF0, 0x00000000, 0x00000000},
        {2, 0x00000000, 0x00000000, 0x43480000},
        {2, 0x00000000, 0x00000000, 0x43520000}}},
      // Four equal counts keep seed order.
      {blobGrid(14, 10),
       {14, 10, 6},
       {{36, 0x41F83A84, 0x433D3A84, 0x4287B6DC},
        {36, 0x424C57C5, 0x426C0000, 0x43641D42},
        {36, 0x4352A83B, 0x421B15F2, 0x423F5075},
        {36, 0x4370CCCC, 0x4364EA0E, 0x42C44924}}},
      // 13 x 9 has a sample in the weighted tail.
      {blobGrid(13, 9),
       {13, 9, 11},
       {{29, 0x424CDB6E, 0x426C6DB7, 0x43644000},
        {25, 0x43702AAC, 0x4364CAAA, 0x42C2EAAC},
        {19, 0x4206AAAB, 0x433D8000, 0x42818E39},
        {13, 0x41C55556, 0x433CD555, 0x42920000},
        {12, 0x434C1745, 0x42180000, 0x4243A2E8},
        {10, 0x43571C72, 0x4201C71D, 0x4242AAAB},
        {9, 0x4353A000, 0x42308004, 0x422D7FFF},
        {8, 0x435BB6DC, 0x42224924, 0x424C9249}}},
      // Red moves most, so its doubled square decides the last pass.
      {redRamp,
       {6, 4, 13},
       {{8, 0x41100030, 0x3F5B6DC0, 0x00000000},
        {8, 0x41F00018, 0x3F800000, 0x00000000},
        {6, 0x42400000, 0x3F800000, 0x00000000},
        {6, 0x427C0000, 0x3F999999, 0x00000000}}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(::testing::Message() << c.size[0] << " x " << c.size[1]);
    const int k = static_cast<int>(c.clusters.size());
    KMeansAlgo kmeans;
    ASSERT_EQ(kmeans.init(k, 0.001f), 0);
    std::vector<_Point> out(k);
    kmeans.processKMeansAlgo(c.grid.data(), out.data(), c.size[0], c.size[1]);
    EXPECT_EQ(kmeans.m_passCount, c.size[2]);
    for (int i = 0; i < k; ++i) {
      EXPECT_EQ(kmeans.m_clusters[i].points.size(), c.clusters[i].count) << i;
      EXPECT_EQ(bitsOf(out[i].r), c.clusters[i].r) << i;
      EXPECT_EQ(bitsOf(out[i].g), c.clusters[i].g) << i;
      EXPECT_EQ(bitsOf(out[i].b), c.clusters[i].b) << i;
    }
  }
}

TEST(KMeansAlgo, SixSamplesOnePassTakeDampedMeans) {
  // 3 x 2 seeds from indexes 1, 3, 3, 1. Samples 0 and 2 are nearer (0,10,0)
  // by the plain distance (100 < 121); samples 4 and 5 nearer (11,0,0) by
  // the weighted one (242 < 400). Each mean counts the starting centre:
  // (0,10,0) + (0,0,0) + (0,10,0) + (0,0,0) over 4, not over 3. A second
  // call without init starts on the lists the first left, so with the same
  // seeds the means stay and every list doubles.
  const std::vector<_Point> grid = {{0, 0, 0},  {0, 10, 0}, {0, 0, 0},
                                    {11, 0, 0}, {0, 0, 0},  {0, 0, 0}};
  KMeansAlgo kmeans;
  kmeans.init(4, 1e30f);
  std::vector<_Point> out(4);
  kmeans.processKMeansAlgo(grid.data(), out.data(), 3, 2);
  EXPECT_EQ(kmeans.m_passCount, 1);
  const float expected[4][3] = {
      {0, 5, 0}, {5.5f, 0, 0}, {11, 0, 0}, {0, 10, 0}};
  const size_t counts[4] = {4, 4, 1, 1};
  for (size_t call = 1; call <= 2; ++call) {
    for (int i = 0; i < 4; ++i) {
      EXPECT_EQ(kmeans.m_clusters[i].points.size(), call * counts[i]);
      EXPECT_EQ(out[i].r, expected[i][0]) << i;
      EXPECT_EQ(out[i].g, expected[i][1]) << i;
      EXPECT_EQ(out[i].b, expected[i][2]) << i;
    }
    kmeans.processKMeansAlgo(grid.data(), out.data(), 3, 2);
  }
}

TEST(KMeansAlgo, ThresholdNotAboveFltMinRuns502Passes) {
  const std::vector<_Point> identical(8, _Point{1, 2, 3});
  const struct {
    float threshold;
    const std::vector<_Point>* grid;
    int passes;
  } cases[] = {{0.0f, &kWorkedGrid, 502},
               {0.0f, &identical, 502},
               {FLT_MIN, &identical, 502},
               // Just above the start value, converged samples stop at once.
               {std::nextafter(FLT_MIN, 1.0f), &identical, 1}};
  for (const auto& c : cases) {
    KMeansAlgo kmeans;
    kmeans.init(4, c.threshold);
    std::vector<_Point> out(4);
    kmeans.processKMeansAlgo(c.grid->data(), out.data(), 4, 2);
    EXPECT_EQ(kmeans.m_passCount, c.passes) << c.threshold;
  }
}

TEST(KMeansReCenter, SumsInListOrderAndLogsAnEmptyList) {
  KMeansAlgo kmeans;
  // (1e8 + 1) rounds back to 1e8 before -1e8 comes: the mean is 0, not 1/3.
  std::vector<_Point> points = {{1e8f, 1, 2}, {1, 3, 4}, {-1e8f, 5, 6}};
  const _Point mean = kmeans.reCenter(points);
  EXPECT_EQ(bitsOf(mean.r), 0u);
  EXPECT_EQ(mean.g, 3.0f);
  EXPECT_EQ(mean.b, 4.0f);

  std::vector<_Point> empty;
  _Point nan{};
  const auto captured =
      pavona::testing::captureOutput([&] { nan = kmeans.reCenter(empty); });
  for (float channel : {nan.r, nan.g, nan.b}) {
    EXPECT_TRUE(std::isnan(channel));
    EXPECT_NE(bitsOf(channel) & 0x00400000u, 0u) << "not quiet";
  }
  EXPECT_EQ(captured.out, "");
  EXPECT_THAT(captured.err,
              ::testing::MatchesRegex(".*pavona.*\\[reCenter\\]\\[[0-9]+\\]: "
                                      "Pavona_SDK reCenter failed, len == 0. "
                                      ".*"));
}

}  // namespace
