// The assignment step: the two distance forms and where each applies, the
// strict comparison, and the NEON kernel against its plain scalar twin,
// which must agree bit for bit.
#include "src/neon/kmeans_assign.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

using pavona::internal::assignBounded_C;
using pavona::internal::assignNearest_C;
using pavona::internal::assignNearest_NEON;
using pavona::internal::BoundedAssignment;
using pavona::internal::gapMargins;
using pavona::internal::GapMargins;
using pavona::internal::kMaxBoundedCentres;
using pavona::internal::kMeasureAtOnce;
using pavona::internal::plainDistance;
using pavona::internal::sampleBox_C;
using pavona::internal::sampleBox_NEON;
using pavona::internal::SamplePlanes;
using pavona::internal::splitSamples_C;
using pavona::internal::splitSamples_NEON;
using pavona::internal::weightedDistance;

uint32_t bitsOf(float value) {
  uint32_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

// The engine's starting state: every byte of a distance 100, labels 0.
struct Nearest {
  explicit Nearest(size_t count) : distance(count), label(count, 0) {
    std::memset(distance.data(), 100, count * sizeof(float));
  }
  std::vector<float> distance;
  std::vector<int> label;
};

// The NEON kernel as the engine drives it: samples split into planes once,
// every sample starting from the far distance and label 0.
void splitAndAssign(const _Point* samples, int count, const _Point* centres,
                    int k, float* nearest, int* labels) {
  std::vector<float> planes(3 * static_cast<size_t>(count));
  const SamplePlanes split = splitSamples_NEON(samples, count, planes.data());
  assignNearest_NEON(split, count, centres, k, nearest, labels);
}

// The scalar twin and the NEON kernel from the engine's starting state;
// both must give the same bits. Returns the twin's result.
Nearest assignBoth(const std::vector<_Point>& samples,
                   const std::vector<_Point>& centres) {
  const int n = static_cast<int>(samples.size());
  Nearest twin(n), neon(n);
  assignNearest_C(samples.data(), n, centres.data(), int(centres.size()),
                  twin.distance.data(), twin.label.data());
  splitAndAssign(samples.data(), n, centres.data(), int(centres.size()),
                 neon.distance.data(), neon.label.data());
  EXPECT_EQ(neon.label, twin.label);
  EXPECT_EQ(0, std::memcmp(neon.distance.data(), twin.distance.data(),
                           n * sizeof(float)));
  return twin;
}

TEST(KMeansDistance, WorkedValuesSumLeftFirst) {
  // d = (1, 2, 3): plain 1 + 4 + 9, weighted 2 + 16 + 27.
  EXPECT_EQ(plainDistance({1, 2, 3}, {0, 0, 0}), 14.0f);
  EXPECT_EQ(weightedDistance({10, 20, 30}, {9, 18, 27}), 45.0f);
  // 2^24 + 1 rounds back to 2^24 before the second 1 is added; grouped
  // the other way the sum would be 2^24 + 2.
  EXPECT_EQ(bitsOf(plainDistance({4096, 1, 1}, {0, 0, 0})),
            bitsOf(16777216.0f));
  // 4096 * 8192 = 2^25 (spacing 4): + 1 rounds away, + 1.6875 too; grouped
  // the other way 2^25 + 2.6875 would round up to 2^25 + 4.
  EXPECT_EQ(bitsOf(weightedDistance({4096, 0.5f, 0.75f}, {0, 0, 0})),
            bitsOf(33554432.0f));
}

// Centre 0 is nearer by the plain form, centre 1 by the weighted one:
// (0,10,0) gives 100 and 400, (11,0,0) gives 121 and 242.
const std::vector<_Point> kGreen10AndRed11 = {{0, 10, 0}, {11, 0, 0}};

// Blocks of four take the plain form, the tail the weighted one.
TEST(KMeansAssign, BlocksUsePlainFormTailWeightedForm) {
  const Nearest six = assignBoth(std::vector<_Point>(6), kGreen10AndRed11);
  EXPECT_EQ(six.label, (std::vector<int>{0, 0, 0, 0, 1, 1}));
  EXPECT_EQ(six.distance, (std::vector<float>{100, 100, 100, 100, 242, 242}));
  EXPECT_EQ(assignBoth(std::vector<_Point>(3), kGreen10AndRed11).label,
            (std::vector<int>{1, 1, 1}));
}

TEST(KMeansAssign, TiesKeepTheLowerCentre) {
  // Sample 0 lies on the two equal centres 0 and 1; sample 2 is 25 from
  // both centres 2 and 3; sample 4 (weighted) is 9 from centre 2.
  const std::vector<_Point> samples = {
      {7, 7, 7}, {0, 0, 0}, {0, 5, 0}, {0, 0, 0}, {1, 1, 1}};
  const std::vector<_Point> centres = {
      {7, 7, 7}, {7, 7, 7}, {0, 0, 0}, {0, 10, 0}};
  const Nearest nearest = assignBoth(samples, centres);
  EXPECT_EQ(nearest.label, (std::vector<int>{0, 2, 2, 2, 2}));
  EXPECT_EQ(nearest.distance, (std::vector<float>{0, 0, 25, 0, 9}));
}

TEST(KMeansAssign, NothingFartherThanTheStartOrNaNIsTaken) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const float inf = std::numeric_limits<float>::infinity();
  // The squares of 1e12 and 2e11 are beyond 0x64646464 (about 1.685e22).
  const std::vector<_Point> samples = {
      {nan, 0, 0}, {1e12f, 0, 0}, {0, inf, 0}, {0, 0, 2e11f}, {nan, 0, 0}};
  const Nearest nearest = assignBoth(samples, {{0, 0, 0}, {1, 1, 1}});
  EXPECT_EQ(nearest.label, (std::vector<int>{0, 0, 0, 0, 0}));
  EXPECT_EQ(nearest.distance, Nearest(samples.size()).distance);
}

TEST(KMeansAssignScalar, EqualToTheStartingDistanceIsNotCloser) {
  const std::vector<_Point> samples(5, _Point{0, 0, 10});
  Nearest nearest(samples.size());
  // From the origin: plain 100, tail weighted 3 * 10 * 10, as at the start.
  nearest.distance = {100, 100, 100, 100, 300};
  nearest.label.assign(5, 7);
  const _Point origin{0, 0, 0};
  assignNearest_C(samples.data(), 5, &origin, 1, nearest.distance.data(),
                  nearest.label.data());
  EXPECT_EQ(nearest.label, std::vector<int>(5, 7));
}

// Photo-like samples: runs of similar whole-number colours (0 ... 255 or
// 1023), sometimes a special value. Centres are fractions, copies of
// samples or repeats of earlier centres, so ties happen. The start is the
// engine's: far, label 0.
struct RandomCase {
  RandomCase(std::mt19937& random, int count, int k, bool special)
      : distance(count), label(count, 0) {
    const unsigned scale = random() % 2 == 0 ? 255 : 1023;
    auto near = [&](unsigned base) {
      return static_cast<float>(
          std::min<unsigned>(base + random() % 21, scale));
    };
    unsigned base[3] = {};
    for (int j = 0; j < count; ++j) {
      if (j % 7 == 0) {
        for (unsigned& channel : base) channel = random() % scale;
      }
      samples.push_back({near(base[0]), near(base[1]), near(base[2])});
    }
    auto fraction = [&] { return float(random() % (scale << 8)) / 256.0f; };
    for (int i = 0; i < k; ++i) {
      const unsigned pick = random() % 4;
      centres.push_back(pick == 0 ? samples[random() % count]
                        : pick == 1 && i > 0
                            ? centres[random() % i]
                            : _Point{fraction(), fraction(), fraction()});
    }
    if (special) {
      const float values[] = {std::numeric_limits<float>::quiet_NaN(),
                              std::numeric_limits<float>::infinity(), -0.0f,
                              1e20f, 1e-40f};
      samples[random() % count].g = values[random() % 5];
      centres[random() % k].b = values[random() % 5];
    }
    std::memset(distance.data(), 100, count * sizeof(float));
  }
  std::vector<_Point> samples;
  std::vector<_Point> centres;
  std::vector<float> distance;
  std::vector<int> label;
};

// Every remainder mod 4, then the 124 x 92 working frame and one size off
// it.
std::vector<int> randomCounts() {
  std::vector<int> counts;
  for (int count = 1; count <= 67; ++count)
    counts.insert(counts.end(), 6, count);
  counts.insert(counts.end(), {124 * 92, 124 * 92 - 3});
  return counts;
}

// k from 1 to 45: the kernel takes its centres 20 at a time.
int randomK(std::mt19937& random) {
  return 1 + static_cast<int>(random() % 45);
}

// The split into planes, which writes nothing past them, and the
// assignment from the start, each against its scalar twin bit for bit.
TEST(KMeansAssign, NeonMatchesScalarTwinFromTheStartBitForBit) {
  std::mt19937 random(0xfa2);
  const std::vector<int> counts = randomCounts();
  for (size_t c = 0; c < counts.size(); ++c) {
    const int count = counts[c];
    // Now and then no centre at all.
    const int k = c % 50 == 7 ? 0 : randomK(random);
    RandomCase scalar(random, count, std::max(k, 1), c % 6 == 5);
    RandomCase neon = scalar;
    const size_t floats = 3 * static_cast<size_t>(count);
    std::vector<float> twinPlanes(floats + 8, -1.0f), planes(twinPlanes);
    const SamplePlanes s =
        splitSamples_C(scalar.samples.data(), count, twinPlanes.data());
    const SamplePlanes n =
        splitSamples_NEON(neon.samples.data(), count, planes.data());
    ASSERT_EQ(0, std::memcmp(planes.data(), twinPlanes.data(),
                             (floats + 8) * sizeof(float)))
        << "count " << count;
    EXPECT_EQ(n.r - planes.data(), s.r - twinPlanes.data());
    EXPECT_EQ(n.g - planes.data(), count);
    EXPECT_EQ(n.b - planes.data(), 2 * count);
    for (int j = 0; j < count; ++j) {
      const _Point p{s.r[j], s.g[j], s.b[j]};
      ASSERT_EQ(0, std::memcmp(&p, &scalar.samples[j], sizeof p)) << j;
    }
    // Whatever the arrays hold must not matter.
    std::memset(neon.distance.data(), 0, count * sizeof(float));
    std::fill(neon.label.begin(), neon.label.end(), 7);
    assignNearest_C(scalar.samples.data(), count, scalar.centres.data(), k,
                    scalar.distance.data(), scalar.label.data());
    assignNearest_NEON(n, count, neon.centres.data(), k, neon.distance.data(),
                       neon.label.data());
    ASSERT_EQ(0, std::memcmp(neon.distance.data(), scalar.distance.data(),
                             count * sizeof(float)))
        << "count " << count << " k " << k;
    ASSERT_EQ(neon.label, scalar.label) << "count " << count << " k " << k;
  }
}

// How the centres move between passes; each strains the bounds its way.
enum class Motion {
  kDampedMeans,  // the engine's update, from the full evaluation's labels
  kConverge,     // halfway onto centre 0 each pass, until duplicates
  kUlps,         // one float step up or down per channel
  kNaNForAPass,  // one centre NaN on pass 3 only, then back
};

struct PassCase {
  const char* name;
  Motion motion;
  int grids;
  int passes;
};

const PassCase kPassCases[] = {
    {"DampedMeans", Motion::kDampedMeans, 900, 40},
    {"DampedMeansAllPasses", Motion::kDampedMeans, 6, 502},
    {"Converge", Motion::kConverge, 500, 40},
    {"Ulps", Motion::kUlps, 500, 30},
    {"NaNForAPass", Motion::kNaNForAPass, 300, 8},
};

void move(Motion motion, int pass, const RandomCase& grid,
          const std::vector<int>& labels, std::mt19937& random,
          std::vector<_Point>& centres) {
  const size_t k = centres.size();
  std::vector<_Point> sum = centres;
  std::vector<float> n(k, 1.0f);
  for (size_t j = 0; j < labels.size(); ++j) {
    _Point& s = sum[labels[j]];
    s = {s.r + grid.samples[j].r, s.g + grid.samples[j].g,
         s.b + grid.samples[j].b};
    n[labels[j]] += 1.0f;
  }
  const float nan = std::numeric_limits<float>::quiet_NaN();
  for (size_t i = 0; i < k; ++i) {
    _Point& c = centres[i];
    auto step = [&](float v) {
      return std::nextafter(v, random() % 2 ? INFINITY : -INFINITY);
    };
    switch (motion) {
      case Motion::kDampedMeans:
        c = {sum[i].r / n[i], sum[i].g / n[i], sum[i].b / n[i]};
        break;
      case Motion::kConverge:
        c = {c.r + (centres[0].r - c.r) * 0.5f,
             c.g + (centres[0].g - c.g) * 0.5f,
             c.b + (centres[0].b - c.b) * 0.5f};
        break;
      case Motion::kUlps:
        c = {step(c.r), step(c.g), step(c.b)};
        break;
      case Motion::kNaNForAPass:
        if (i == k / 2) c.g = pass == 2 ? nan : grid.centres[i].g;
        break;
    }
  }
}

// Grids of every shape above; some of identical samples, some with pairs
// of centres a whole step either side of a sample, which is then exactly
// equidistant from both.
RandomCase passGrid(std::mt19937& random, int grid) {
  const int count = grid % 3 == 0 ? 1 + random() % 400 : 4 + random() % 64;
  RandomCase c(random, count, 1 + random() % 24, grid % 7 == 3);
  if (grid % 5 == 1)
    std::fill(c.samples.begin(), c.samples.end(), c.samples[0]);
  for (size_t i = 0; grid % 5 == 2 && i + 1 < c.centres.size(); i += 2) {
    const _Point s = c.samples[random() % count];
    const float d = float(1 + random() % 9);
    c.centres[i] = {s.r + d, s.g, s.b - d};
    c.centres[i + 1] = {s.r - d, s.g, s.b + d};
  }
  return c;
}

// Pass by pass: the engine's bounded assignment against the full
// evaluation's labels, and against the scalar twin, driven alike, bit for
// bit in labels and gaps. Counts the samples the twin carried.
int checkPasses(const PassCase& pc, std::mt19937& random, int grid) {
  RandomCase c = passGrid(random, grid);
  const int count = static_cast<int>(c.samples.size());
  const int k = static_cast<int>(c.centres.size());
  std::vector<float> planes(3 * count);
  Nearest neon(count);
  Nearest twin(count);
  const SamplePlanes split =
      splitSamples_NEON(c.samples.data(), count, planes.data());
  BoundedAssignment engine(split, count, neon.distance.data(),
                           neon.label.data());
  const auto box = sampleBox_C(c.samples.data(), count);
  const auto neonBox = sampleBox_NEON(split, count);
  float twinCorners[6], neonCorners[6];
  static_assert(sizeof box == sizeof twinCorners, "two corners of 3 floats");
  std::memcpy(twinCorners, &box, sizeof box);
  std::memcpy(neonCorners, &neonBox, sizeof box);
  for (int e = 0; e < 6; ++e) {
    EXPECT_TRUE(twinCorners[e] == neonCorners[e] ||
                (std::isnan(twinCorners[e]) && std::isnan(neonCorners[e])))
        << "grid " << grid << " corner " << e;
  }
  std::vector<_Point> centres = c.centres;
  std::vector<_Point> last;
  bool held = false;
  double drift = 0;
  int carried = 0;
  for (int pass = 0; pass < pc.passes; ++pass) {
    const GapMargins m =
        gapMargins(box, pass > 0 ? last.data() : centres.data(), centres.data(),
                   k, held ? drift : 0);
    const bool bounded =
        m.usable && k <= kMaxBoundedCentres &&
        (held || k >= kMeasureAtOnce || (pass > 0 && m.settled));
    for (int j = 0; held && bounded && j < count / 4 * 4; ++j)
      carried += twin.distance[j] > m.keep;
    if (bounded) {
      assignBounded_C(c.samples.data(), count, centres.data(), k, m, held,
                      twin.distance.data(), twin.label.data());
    } else {
      twin = Nearest(count);
      assignNearest_C(c.samples.data(), count, centres.data(), k,
                      twin.distance.data(), twin.label.data());
    }
    held = bounded;
    drift = m.drift;
    last = centres;
    engine.assign(centres.data(), k);
    Nearest full(count);
    assignNearest_C(c.samples.data(), count, centres.data(), k,
                    full.distance.data(), full.label.data());
    const auto where = [&] {
      return std::string(pc.name) + " grid " + std::to_string(grid) + " pass " +
             std::to_string(pass);
    };
    EXPECT_EQ(neon.label, full.label) << where();
    EXPECT_EQ(twin.label, full.label) << where();
    EXPECT_EQ(0, std::memcmp(neon.distance.data(), twin.distance.data(),
                             count * sizeof(float)))
        << where();
    if (::testing::Test::HasFailure()) break;
    move(pc.motion, pass, c, full.label, random, centres);
  }
  return carried;
}

TEST(KMeansAssignBounded, LabelsEqualTheFullEvaluationEveryPass) {
  for (const PassCase& pc : kPassCases) {
    std::mt19937 random(0xb0);
    int carried = 0;
    for (int grid = 0; grid < pc.grids && !HasFailure(); ++grid)
      carried += checkPasses(pc, random, grid);
    // The bounds must also be of use, not only safe.
    if (pc.motion != Motion::kNaNForAPass) {
      EXPECT_GT(carried, 0) << pc.name;
    }
  }
}

}  // namespace
