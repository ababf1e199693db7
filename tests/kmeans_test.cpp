// KMeansAlgo as a whole: construction, seeding, the pass loop's damped
// means and stop rules, and the final order. Where values are bit-exact
// the expected bits come from tests/kmeans_reference.py, a plain float32
// computation of the same steps.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <random>
#include <vector>

#include "src/neon/KMeansAlgo_neon.h"
#include "src/neon/cluster_sort.h"
#include "src/neon/kmeans_assign.h"
#include "tests/support/capture.h"

namespace {

using ::testing::HasSubstr;

uint32_t bitsOf(float value) {
  uint32_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

// A grid whose sample j is (j, 0, 0), so a seeded centre names its index.
std::vector<_Point> indexGrid(int width, int height) {
  std::vector<_Point> grid(width * height);
  for (int j = 0; j < width * height; ++j) grid[j] = {float(j), 0, 0};
  return grid;
}

std::vector<int> seededIndexes(int k, int width, int height) {
  const std::vector<_Point> grid = indexGrid(width, height);
  KMeansAlgo kmeans;
  kmeans.init(k, 0.001f);
  kmeans.initClusters(grid.data(), width, height);
  std::vector<int> indexes;
  for (int i = 0; i < k; ++i)
    indexes.push_back(int(kmeans.m_clusters[i].center.r));
  return indexes;
}

// The worked example: a 4 x 2 grid, row by row.
const std::vector<_Point> kWorkedGrid = {
    {10, 10, 10}, {20, 20, 20}, {200, 0, 0}, {210, 0, 0},
    {0, 200, 0},  {0, 0, 200},  {0, 210, 0}, {0, 0, 210}};

// Four colour blobs with a ramp, as lattice_grid() in kmeans_reference.py.
std::vector<_Point> blobGrid(int width, int height) {
  const int base[4][3] = {
      {200, 30, 40}, {20, 180, 60}, {40, 50, 220}, {230, 220, 90}};
  std::vector<_Point> grid;
  for (int j = 0; j < width * height; ++j) {
    const int row = j / width;
    const int col = j % width;
    const int* c = base[(row * 2 / height) * 2 + col * 2 / width];
    grid.push_back({float(c[0] + j * 7 % 23), float(c[1] + j * 11 % 19),
                    float(c[2] + j * 5 % 17)});
  }
  return grid;
}

struct Expected {
  size_t count;
  uint32_t r, g, b;
};

// Runs the whole clustering and checks the output, the member counts and
// the pass count against the reference.
void expectClustering(const std::vector<_Point>& grid, int width, int height,
                      int passes, const std::vector<Expected>& expected) {
  const int k = static_cast<int>(expected.size());
  KMeansAlgo kmeans;
  ASSERT_EQ(kmeans.init(k, 0.001f), 0);
  std::vector<_Point> out(k);
  kmeans.processKMeansAlgo(grid.data(), out.data(), width, height);
  EXPECT_EQ(kmeans.m_passCount, passes);
  for (int i = 0; i < k; ++i) {
    EXPECT_EQ(kmeans.m_clusters[i].points.size(), expected[i].count) << i;
    EXPECT_EQ(bitsOf(out[i].r), expected[i].r) << i;
    EXPECT_EQ(bitsOf(out[i].g), expected[i].g) << i;
    EXPECT_EQ(bitsOf(out[i].b), expected[i].b) << i;
  }
}

TEST(KMeansAlgo, StartsWithOneClusterAndNoArray) {
  KMeansAlgo kmeans;
  EXPECT_EQ(kmeans.m_clusterCount, 1);
  EXPECT_EQ(bitsOf(kmeans.m_threshold), 0x3A83126Fu);
  EXPECT_EQ(kmeans.m_clusters, nullptr);
  EXPECT_EQ(kmeans.m_passCount, 0);
}

TEST(KMeansAlgo, InitReplacesTheClustersWithFreshOnes) {
  KMeansAlgo kmeans;
  ASSERT_EQ(kmeans.init(4, 0.001f), 0);
  std::vector<_Point> out(4);
  kmeans.processKMeansAlgo(kWorkedGrid.data(), out.data(), 4, 2);
  ASSERT_EQ(kmeans.init(3, 0.25f), 0);
  EXPECT_EQ(kmeans.m_clusterCount, 3);
  EXPECT_EQ(kmeans.m_threshold, 0.25f);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(kmeans.m_clusters[i].center.r, 0.0f);
    EXPECT_EQ(kmeans.m_clusters[i].center.g, 0.0f);
    EXPECT_EQ(kmeans.m_clusters[i].center.b, 0.0f);
    EXPECT_TRUE(kmeans.m_clusters[i].points.empty());
  }
}

TEST(KMeansSeeding, DiamondUsesIntegerDivision) {
  // 10 x 6: rows 1, 3, 3, 3 (3 * (6/4) = 3), columns 5, 2, 6, 5.
  EXPECT_EQ(seededIndexes(4, 10, 6), (std::vector<int>{15, 32, 36, 35}));
  // 4 x 2: clusters 0 and 3 both from index 2 (3 * (2/4) = 0).
  EXPECT_EQ(seededIndexes(4, 4, 2), (std::vector<int>{2, 5, 7, 2}));
}

TEST(KMeansSeeding, LatticeLeavesOutBottomCentre) {
  // 12 x 8: rows 2, 4, 6 and columns 3, 6, 9; (6, 6) = 78 is never used.
  EXPECT_EQ(seededIndexes(8, 12, 8),
            (std::vector<int>{27, 30, 33, 51, 54, 57, 75, 81}));
}

TEST(KMeansSeeding, OtherCountsDrawRandModuloSampleCount) {
  std::srand(2024);
  std::vector<int> expected;
  for (int i = 0; i < 5; ++i) expected.push_back(std::rand() % 35);
  std::srand(2024);
  EXPECT_EQ(seededIndexes(5, 7, 5), expected);
}

TEST(KMeansSeeding, NoClustersDrawNothing) {
  std::srand(7);
  const int first = std::rand();
  std::srand(7);
  EXPECT_EQ(seededIndexes(0, 4, 2), std::vector<int>{});
  EXPECT_EQ(std::rand(), first);
}

TEST(KMeansAlgo, WorkedExampleOn4x2Grid) {
  // About (7.5, 110, 7.5), (205, 0, 0), (0, 0, 200), (0, 0, 210) after ten
  // passes; the cluster seeded as 3 ends second.
  expectClustering(kWorkedGrid, 4, 2, 10,
                   {{5, 0x40F0005A, 0x42DBFFFD, 0x40EFFFFD},
                    {3, 0x434CFFF0, 0x00000000, 0x00000000},
                    {2, 0x00000000, 0x00000000, 0x43480000},
                    {2, 0x00000000, 0x00000000, 0x43520000}});
}

TEST(KMeansAlgo, BlobGridsMatchReference) {
  // Four equal counts keep seed order; 13 x 9 has a weighted-tail sample.
  expectClustering(blobGrid(14, 10), 14, 10, 6,
                   {{36, 0x41F83A84, 0x433D3A84, 0x4287B6DC},
                    {36, 0x424C57C5, 0x426C0000, 0x43641D42},
                    {36, 0x4352A83B, 0x421B15F2, 0x423F5075},
                    {36, 0x4370CCCC, 0x4364EA0E, 0x42C44924}});
  expectClustering(blobGrid(13, 9), 13, 9, 11,
                   {{29, 0x424CDB6E, 0x426C6DB7, 0x43644000},
                    {25, 0x43702AAC, 0x4364CAAA, 0x42C2EAAC},
                    {19, 0x4206AAAB, 0x433D8000, 0x42818E39},
                    {13, 0x41C55556, 0x433CD555, 0x42920000},
                    {12, 0x434C1745, 0x42180000, 0x4243A2E8},
                    {10, 0x43571C72, 0x4201C71D, 0x4242AAAB},
                    {9, 0x4353A000, 0x42308004, 0x422D7FFF},
                    {8, 0x435BB6DC, 0x42224924, 0x424C9249}});
}

// A noisy photo-like grid: gradients, blocks of colour and sensor noise.
std::vector<_Point> noisyGrid(int width, int height, unsigned seed) {
  std::mt19937 random(seed);
  std::vector<_Point> grid;
  for (int row = 0; row < height; ++row) {
    for (int col = 0; col < width; ++col) {
      const int block = (row * 3 / height) * 3 + col * 3 / width;
      const float base = float(40 + 20 * block + row);
      grid.push_back({float(int(base + random() % 9)),
                      float(int(255 - base + random() % 5) % 256),
                      float(int(base * 0.5f + col + random() % 7) % 256)});
    }
  }
  return grid;
}

// The pass loop as first written: every pass appends each cluster's centre
// and then its members to its list and takes the mean with reCenter.
struct ListReference {
  std::vector<Cluster> clusters;
  int passes = 0;
};

// leftOver: what each list holds before the call (empty after init).
ListReference referenceClustering(
    const std::vector<_Point>& grid, int width, int height, int k,
    float threshold, const std::vector<std::vector<_Point>>& leftOver = {}) {
  KMeansAlgo seeding;
  seeding.init(k, threshold);
  seeding.initClusters(grid.data(), width, height);
  ListReference ref;
  ref.clusters.assign(seeding.m_clusters, seeding.m_clusters + k);
  for (size_t i = 0; i < leftOver.size(); ++i)
    ref.clusters[i].points = leftOver[i];
  const int count = width * height;
  std::vector<float> nearest(count);
  std::vector<int> labels(count);
  std::vector<_Point> centres(k);
  int pass = 0;
  while (true) {
    for (int i = 0; i < k; ++i) {
      ref.clusters[i].points.push_back(ref.clusters[i].center);
      centres[i] = ref.clusters[i].center;
    }
    std::memset(nearest.data(), 100, sizeof(float) * count);
    std::fill(labels.begin(), labels.end(), 0);
    pavona::internal::assignNearest_C(grid.data(), count, centres.data(), k,
                                      nearest.data(), labels.data());
    for (int j = 0; j < count; ++j)
      ref.clusters[labels[j]].points.push_back(grid[j]);
    float largest = FLT_MIN;
    for (int i = 0; i < k; ++i) {
      const _Point moved = seeding.reCenter(ref.clusters[i].points);
      const _Point& old = ref.clusters[i].center;
      const float dr = moved.r - old.r, dg = moved.g - old.g,
                  db = moved.b - old.b;
      const float dr2 = dr * dr, dg2 = dg * dg, db2 = db * db;
      const float shift = std::sqrt((dr2 + dr2 + 4.0f * dg2) + 3.0f * db2);
      ref.clusters[i].center = moved;
      if (shift > largest) largest = shift;
    }
    if (pass > 500 || largest < threshold) break;
    for (int i = 0; i < k; ++i) ref.clusters[i].points.clear();
    ++pass;
  }
  ref.passes = pass + 1;
  pavona::internal::unstableSort(ref.clusters.begin(), ref.clusters.end(),
                                 pavona::internal::MoreMembersFirst());
  return ref;
}

void expectSameBits(const _Point& a, const _Point& b) {
  EXPECT_EQ(bitsOf(a.r), bitsOf(b.r));
  EXPECT_EQ(bitsOf(a.g), bitsOf(b.g));
  EXPECT_EQ(bitsOf(a.b), bitsOf(b.b));
}

// Centres, pass count and every list element, bit for bit.
void expectSameClustering(const KMeansAlgo& kmeans,
                          const std::vector<_Point>& out,
                          const ListReference& ref) {
  EXPECT_EQ(kmeans.m_passCount, ref.passes);
  for (int i = 0; i < kmeans.m_clusterCount; ++i) {
    SCOPED_TRACE(i);
    expectSameBits(out[i], ref.clusters[i].center);
    const std::vector<_Point>& list = kmeans.m_clusters[i].points;
    ASSERT_EQ(list.size(), ref.clusters[i].points.size());
    for (size_t m = 0; m < list.size(); ++m)
      expectSameBits(list[m], ref.clusters[i].points[m]);
  }
}

TEST(KMeansAlgo, MatchesTheListBuildingPassLoopBitForBit) {
  struct Case {
    int width, height, k;
    float threshold;
  };
  // Working sizes of 1920 x 1080 and 2000 x 1500 frames, a grid with a
  // weighted tail, random and fixed seedings, and a run to the pass limit.
  const Case cases[] = {{60, 32, 3, 0.001f},  {60, 32, 4, 0.001f},
                        {60, 32, 8, 0.001f},  {60, 32, 20, 0.001f},
                        {62, 46, 1, 0.001f},  {62, 46, 5, 0.001f},
                        {62, 46, 13, 0.001f}, {13, 9, 6, 0.001f},
                        {13, 9, 21, 0.001f},  {8, 6, 3, 0.0f}};
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::Message()
                 << c.width << " x " << c.height << " k " << c.k);
    const std::vector<_Point> grid = noisyGrid(c.width, c.height, 7 * c.k);
    std::srand(99);
    const ListReference ref =
        referenceClustering(grid, c.width, c.height, c.k, c.threshold);
    std::srand(99);
    KMeansAlgo kmeans;
    kmeans.init(c.k, c.threshold);
    std::vector<_Point> out(c.k);
    kmeans.processKMeansAlgo(grid.data(), out.data(), c.width, c.height);
    expectSameClustering(kmeans, out, ref);
  }
}

TEST(KMeansAlgo, ASecondCallWithoutInitStartsOnTheListsLeftOver) {
  // The lists of the last pass stay until the next init; a call made
  // without one starts its first pass on top of them.
  const std::vector<_Point> grid = noisyGrid(12, 8, 3);
  for (float threshold : {1e30f, 0.001f}) {
    SCOPED_TRACE(threshold);
    KMeansAlgo kmeans;
    kmeans.init(4, threshold);
    std::vector<_Point> out(4);
    kmeans.processKMeansAlgo(grid.data(), out.data(), 12, 8);
    std::vector<std::vector<_Point>> leftOver;
    for (int i = 0; i < 4; ++i) leftOver.push_back(kmeans.m_clusters[i].points);
    const ListReference ref =
        referenceClustering(grid, 12, 8, 4, threshold, leftOver);
    kmeans.processKMeansAlgo(grid.data(), out.data(), 12, 8);
    expectSameClustering(kmeans, out, ref);
  }
}

TEST(KMeansAlgo, IdenticalSamplesStopAfterOnePassWithClusterZeroFirst) {
  const std::vector<_Point> grid(24, _Point{50, 60, 70});
  for (int k : {4, 8}) {
    KMeansAlgo kmeans;
    kmeans.init(k, 0.001f);
    std::vector<_Point> out(k);
    kmeans.processKMeansAlgo(grid.data(), out.data(), 6, 4);
    EXPECT_EQ(kmeans.m_passCount, 1);
    // Every sample ties and stays with cluster 0.
    EXPECT_EQ(kmeans.m_clusters[0].points.size(), 25u);
    for (int i = 1; i < k; ++i)
      EXPECT_EQ(kmeans.m_clusters[i].points.size(), 1u);
    for (const _Point& centre : out) {
      EXPECT_EQ(centre.r, 50.0f);
      EXPECT_EQ(centre.g, 60.0f);
      EXPECT_EQ(centre.b, 70.0f);
    }
  }
}

TEST(KMeansAlgo, SixSamplesOnePassTakeDampedMeans) {
  // 3 x 2 seeds from indexes 1, 3, 3, 1. Samples 0 and 2 are nearer (0,10,0)
  // by the plain distance (100 < 121); samples 4 and 5 nearer (11,0,0) by
  // the weighted one (242 < 400). Each mean counts the starting centre:
  // (0,10,0) + (0,0,0) + (0,10,0) + (0,0,0) over 4, not over 3.
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
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(kmeans.m_clusters[i].points.size(), counts[i]);
    EXPECT_EQ(out[i].r, expected[i][0]) << i;
    EXPECT_EQ(out[i].g, expected[i][1]) << i;
    EXPECT_EQ(out[i].b, expected[i][2]) << i;
  }
}

TEST(KMeansAlgo, ThresholdNotAboveFltMinRuns502Passes) {
  const std::vector<_Point> identical(8, _Point{1, 2, 3});
  for (float threshold : {0.0f, FLT_MIN}) {
    for (const std::vector<_Point>* grid : {&kWorkedGrid, &identical}) {
      KMeansAlgo kmeans;
      kmeans.init(4, threshold);
      std::vector<_Point> out(4);
      kmeans.processKMeansAlgo(grid->data(), out.data(), 4, 2);
      EXPECT_EQ(kmeans.m_passCount, 502);
    }
  }
  // Just above the start value, converged samples stop at once.
  KMeansAlgo kmeans;
  kmeans.init(4, std::nextafter(FLT_MIN, 1.0f));
  std::vector<_Point> out(4);
  kmeans.processKMeansAlgo(identical.data(), out.data(), 4, 2);
  EXPECT_EQ(kmeans.m_passCount, 1);
}

TEST(KMeansAlgo, NoClustersWriteNothing) {
  KMeansAlgo kmeans;
  kmeans.init(0, 0.001f);
  _Point out{-1, -1, -1};
  kmeans.processKMeansAlgo(kWorkedGrid.data(), &out, 4, 2);
  EXPECT_EQ(out.r, -1.0f);
  EXPECT_EQ(kmeans.m_passCount, 1);
}

TEST(KMeansReCenter, SumsInListOrderFromZero) {
  KMeansAlgo kmeans;
  // (1e8 + 1) rounds back to 1e8 before -1e8 comes: the mean is 0, not 1/3.
  std::vector<_Point> points = {{1e8f, 1, 2}, {1, 3, 4}, {-1e8f, 5, 6}};
  const _Point mean = kmeans.reCenter(points);
  EXPECT_EQ(bitsOf(mean.r), 0u);
  EXPECT_EQ(mean.g, 3.0f);
  EXPECT_EQ(mean.b, 4.0f);
}

TEST(KMeansReCenter, EmptyListGivesQuietNaNsAndRecord) {
  KMeansAlgo kmeans;
  std::vector<_Point> empty;
  _Point mean{};
  const auto captured =
      pavona::testing::captureOutput([&] { mean = kmeans.reCenter(empty); });
  for (float channel : {mean.r, mean.g, mean.b}) {
    EXPECT_TRUE(std::isnan(channel));
    EXPECT_NE(bitsOf(channel) & 0x00400000u, 0u) << "not quiet";
  }
  EXPECT_EQ(captured.out, "");
  EXPECT_THAT(captured.err, HasSubstr("pavona"));
  EXPECT_THAT(captured.err, HasSubstr("[reCenter]["));
  EXPECT_THAT(captured.err,
              HasSubstr("]: Pavona_SDK reCenter failed, len == 0. "));
}

}  // namespace
