// The NEON switch's lane visitor: every set lane once, in order, however
// the masks fill a batch.
#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <vector>

#include "base/neon_compat.h"

namespace {

uint32x4_t maskOf(uint32_t bits) {
  const uint32_t lanes[4] = {bits & 1 ? ~0u : 0, bits & 2 ? ~0u : 0,
                             bits & 4 ? ~0u : 0, bits & 8 ? ~0u : 0};
  return vld1q_u32(lanes);
}

TEST(SetLanes, VisitsEachSetLaneInOrder) {
  std::mt19937 random(3);
  // Dense runs fill a batch within a few masks; sparse ones leave most of
  // it empty until finish.
  for (const uint32_t density : {0u, 1u, 4u, 8u}) {
    std::vector<int> visited;
    std::vector<int> expected;
    pavona::SetLanes lanes([&](int j) { visited.push_back(j); });
    for (int first = 0; first < 8 * 300; first += 8) {
      uint32_t bits = 0;
      for (int l = 0; l < 8; ++l) {
        if (random() % 8 < density) {
          bits |= 1u << l;
          expected.push_back(first + l);
        }
      }
      lanes.add(maskOf(bits), maskOf(bits >> 4), first);
    }
    lanes.finish();
    EXPECT_EQ(visited, expected) << "density " << density;
  }
}

}  // namespace
