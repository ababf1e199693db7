// The update step's sums: the NEON sweep against its plain twin, bit for
// bit, over runs of every length and samples that are not finite.
#include "src/neon/kmeans_sums.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <random>
#include <vector>

namespace {

using pavona::internal::addMembers_C;
using pavona::internal::addMembers_NEON;
using pavona::internal::ListSum;

bool sameBits(float a, float b) { return std::memcmp(&a, &b, sizeof a) == 0; }

TEST(KMeansSums, NeonSweepAddsAsThePlainLoop) {
  std::mt19937 random(7);
  const float specials[] = {std::numeric_limits<float>::quiet_NaN(),
                            std::numeric_limits<float>::infinity(), -0.0f,
                            1e-40f};
  for (int grid = 0; grid < 400; ++grid) {
    const int count = grid < 40 ? grid : static_cast<int>(random() % 3000);
    const int k = 1 + static_cast<int>(random() % 20);
    const int longest = 1 + static_cast<int>(random() % 12);
    std::vector<_Point> samples(count);
    std::vector<int> labels(count);
    std::uniform_real_distribution<float> value(-300.0f, 300.0f);
    for (int j = 0; j < count;) {
      const int label = static_cast<int>(random() % k);
      for (int run = 1 + random() % longest; run > 0 && j < count; --run, ++j) {
        samples[j] = {value(random), value(random), value(random)};
        if (random() % 500 == 0) samples[j].g = specials[random() % 4];
        labels[j] = label;
      }
    }
    std::vector<ListSum> plain(k);
    for (ListSum& sum : plain) sum = {value(random), value(random), 0, 0, 1};
    std::vector<ListSum> vector = plain;
    addMembers_C(samples.data(), labels.data(), count, plain.data());
    addMembers_NEON(samples.data(), labels.data(), count, vector.data());
    for (int i = 0; i < k; ++i) {
      EXPECT_TRUE(sameBits(plain[i].r, vector[i].r) &&
                  sameBits(plain[i].g, vector[i].g) &&
                  sameBits(plain[i].b, vector[i].b) &&
                  plain[i].count == vector[i].count)
          << "grid " << grid << " cluster " << i;
    }
  }
}

}  // namespace
