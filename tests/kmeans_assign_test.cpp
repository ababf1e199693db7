// The assignment step: the two distance forms and where each applies, the
// strict comparison, and the NEON kernel against its plain scalar twin,
// which must agree bit for bit.
#include "src/neon/kmeans_assign.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <ostream>
#include <random>
#include <string>
#include <vector>

namespace {

using pavona::internal::assignNearest_C;
using pavona::internal::assignNearest_NEON;
using pavona::internal::plainDistance;
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

struct Implementation {
  const char* name;
  void (*assign)(const _Point*, int, const _Point*, int, float*, int*);
};

void PrintTo(const Implementation& implementation, std::ostream* out) {
  *out << implementation.name;
}

class KMeansAssignBoth : public ::testing::TestWithParam<Implementation> {
 protected:
  Nearest run(const std::vector<_Point>& samples,
              const std::vector<_Point>& centres) {
    Nearest nearest(samples.size());
    GetParam().assign(samples.data(), static_cast<int>(samples.size()),
                      centres.data(), static_cast<int>(centres.size()),
                      nearest.distance.data(), nearest.label.data());
    return nearest;
  }
};

TEST(KMeansDistance, WorkedValues) {
  // d = (1, 2, 3): plain 1 + 4 + 9, weighted 2 + 16 + 27.
  EXPECT_EQ(plainDistance({1, 2, 3}, {0, 0, 0}), 14.0f);
  EXPECT_EQ(weightedDistance({1, 2, 3}, {0, 0, 0}), 45.0f);
  EXPECT_EQ(plainDistance({0, 0, 0}, {1, 2, 3}), 14.0f);
  EXPECT_EQ(weightedDistance({10, 20, 30}, {9, 18, 27}), 45.0f);
}

TEST(KMeansDistance, SumsGroupLeftFirst) {
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

TEST_P(KMeansAssignBoth, SixSamplesUsePlainFormThenWeightedForm) {
  const std::vector<_Point> samples(6, _Point{0, 0, 0});
  const Nearest nearest = run(samples, kGreen10AndRed11);
  EXPECT_EQ(nearest.label, (std::vector<int>{0, 0, 0, 0, 1, 1}));
  EXPECT_EQ(nearest.distance,
            (std::vector<float>{100, 100, 100, 100, 242, 242}));
}

TEST_P(KMeansAssignBoth, FewerThanFourSamplesAreAllWeighted) {
  const std::vector<_Point> samples(3, _Point{0, 0, 0});
  const Nearest nearest = run(samples, kGreen10AndRed11);
  EXPECT_EQ(nearest.label, (std::vector<int>{1, 1, 1}));
}

TEST_P(KMeansAssignBoth, TiesKeepTheLowerCentre) {
  // Sample 0 lies on the two equal centres 0 and 1; sample 2 is 25 from
  // both centres 2 and 3; sample 4 (weighted) is 9 from centre 2.
  const std::vector<_Point> samples = {
      {7, 7, 7}, {0, 0, 0}, {0, 5, 0}, {0, 0, 0}, {1, 1, 1}};
  const std::vector<_Point> centres = {
      {7, 7, 7}, {7, 7, 7}, {0, 0, 0}, {0, 10, 0}};
  const Nearest nearest = run(samples, centres);
  EXPECT_EQ(nearest.label, (std::vector<int>{0, 2, 2, 2, 2}));
  EXPECT_EQ(nearest.distance, (std::vector<float>{0, 0, 25, 0, 9}));
}

TEST_P(KMeansAssignBoth, NothingFartherThanTheStartOrNaNIsTaken) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const float inf = std::numeric_limits<float>::infinity();
  // The squares of 1e12 and 2e11 are beyond 0x64646464 (about 1.685e22).
  const std::vector<_Point> samples = {
      {nan, 0, 0}, {1e12f, 0, 0}, {0, inf, 0}, {0, 0, 2e11f}, {nan, 0, 0}};
  const Nearest nearest = run(samples, {{0, 0, 0}, {1, 1, 1}});
  const Nearest start(samples.size());
  EXPECT_EQ(nearest.label, (std::vector<int>{0, 0, 0, 0, 0}));
  for (size_t j = 0; j < samples.size(); ++j) {
    EXPECT_EQ(bitsOf(nearest.distance[j]), 0x64646464u) << j;
  }
  EXPECT_EQ(nearest.distance, start.distance);
}

TEST_P(KMeansAssignBoth, EqualToTheStartingDistanceIsNotCloser) {
  const std::vector<_Point> samples(5, _Point{0, 0, 10});
  Nearest nearest(samples.size());
  for (size_t j = 0; j < samples.size(); ++j) {
    nearest.distance[j] = j < 4 ? 100.0f : 300.0f;  // tail: 3 * 10 * 10
    nearest.label[j] = 7;
  }
  // From the origin: plain 100, weighted 3 * 10 * 10, equal to the start.
  const std::vector<_Point> origin = {{0, 0, 0}};
  GetParam().assign(samples.data(), 5, origin.data(), 1,
                    nearest.distance.data(), nearest.label.data());
  EXPECT_EQ(nearest.label, std::vector<int>(5, 7));
}

INSTANTIATE_TEST_SUITE_P(
    KMeansAssign, KMeansAssignBoth,
    ::testing::Values(Implementation{"Neon", assignNearest_NEON},
                      Implementation{"Scalar", assignNearest_C}),
    [](const auto& info) { return std::string(info.param.name); });

// Photo-like samples: whole numbers in 0 ... scale with runs of similar
// colours, now and then a special value; centres are means (fractions) or
// copies of samples, with repeats so that ties happen.
struct RandomCase {
  std::vector<_Point> samples;
  std::vector<_Point> centres;
  std::vector<float> distance;
  std::vector<int> label;
};

RandomCase randomCase(std::mt19937& random, int count, int k, bool special) {
  const float scale = random() % 2 == 0 ? 255.0f : 1023.0f;
  auto channel = [&](float base) {
    const float value = base + static_cast<float>(random() % 21) - 10.0f;
    return std::fmin(std::fmax(std::round(value), 0.0f), scale);
  };
  RandomCase c;
  _Point base{};
  for (int j = 0; j < count; ++j) {
    if (j % 7 == 0) {
      base = {static_cast<float>(random() % 1024) / 1023.0f * scale,
              static_cast<float>(random() % 1024) / 1023.0f * scale,
              static_cast<float>(random() % 1024) / 1023.0f * scale};
    }
    c.samples.push_back({channel(base.r), channel(base.g), channel(base.b)});
  }
  for (int i = 0; i < k; ++i) {
    switch (random() % 4) {
      case 0:
        c.centres.push_back(c.samples[random() % count]);
        break;
      case 1:
        if (i > 0) {
          c.centres.push_back(c.centres[random() % i]);
          break;
        }
        [[fallthrough]];
      default:
        c.centres.push_back({scale * static_cast<float>(random()) / 4.3e9f,
                             scale * static_cast<float>(random()) / 4.3e9f,
                             scale * static_cast<float>(random()) / 4.3e9f});
    }
  }
  if (special) {
    const float values[] = {std::numeric_limits<float>::quiet_NaN(),
                            std::numeric_limits<float>::infinity(), -0.0f,
                            1e20f, 1e-40f};
    c.samples[random() % count].g = values[random() % 5];
    c.centres[random() % k].b = values[random() % 5];
  }
  c.distance.resize(count);
  c.label.assign(count, 0);
  if (random() % 3 == 0) {
    // Start from a previous state rather than from "far".
    for (int j = 0; j < count; ++j) {
      c.distance[j] = static_cast<float>(random() % 4000);
      c.label[j] = static_cast<int>(random() % 20);
    }
  } else {
    std::memset(c.distance.data(), 100, count * sizeof(float));
  }
  return c;
}

TEST(KMeansAssign, NeonMatchesScalarTwinBitForBit) {
  std::mt19937 random(0x5eed);
  int cases = 0;
  for (int count = 1; count <= 67; ++count) {
    for (int repeat = 0; repeat < 6; ++repeat) {
      const int k = 1 + static_cast<int>(random() % 20);
      RandomCase scalar = randomCase(random, count, k, repeat == 5);
      RandomCase neon = scalar;
      assignNearest_C(scalar.samples.data(), count, scalar.centres.data(), k,
                      scalar.distance.data(), scalar.label.data());
      assignNearest_NEON(neon.samples.data(), count, neon.centres.data(), k,
                         neon.distance.data(), neon.label.data());
      ASSERT_EQ(0, std::memcmp(neon.distance.data(), scalar.distance.data(),
                               count * sizeof(float)))
          << "count " << count << " k " << k;
      ASSERT_EQ(neon.label, scalar.label) << "count " << count << " k " << k;
      ++cases;
    }
  }
  // The working frame of a 12-megapixel picture, and one size off it.
  for (int count : {124 * 92, 124 * 92 - 3}) {
    for (int k : {3, 8, 20}) {
      RandomCase scalar = randomCase(random, count, k, false);
      RandomCase neon = scalar;
      assignNearest_C(scalar.samples.data(), count, scalar.centres.data(), k,
                      scalar.distance.data(), scalar.label.data());
      assignNearest_NEON(neon.samples.data(), count, neon.centres.data(), k,
                         neon.distance.data(), neon.label.data());
      ASSERT_EQ(0, std::memcmp(neon.distance.data(), scalar.distance.data(),
                               count * sizeof(float)));
      ASSERT_EQ(neon.label, scalar.label);
      ++cases;
    }
  }
  EXPECT_EQ(cases, 67 * 6 + 6);
}

}  // namespace
