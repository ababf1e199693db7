// The cluster order must be the one LLVM libc++'s std::sort gives, ties
// included. tests/data/libcxx_sort_orders.txt holds libc++'s own orders,
// printed by tests/tools/libcxx_sort_orders.cpp.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "src/neon/cluster_sort.h"

namespace {

using pavona::internal::MoreMembersFirst;
using pavona::internal::unstableSort;

// Clusters whose centre's r is their input index and whose list has the
// given size.
std::vector<Cluster> clustersWithCounts(const std::vector<int>& counts) {
  std::vector<Cluster> clusters(counts.size());
  for (size_t i = 0; i < counts.size(); ++i) {
    clusters[i].center = {static_cast<float>(i), 0.0f, 0.0f};
    clusters[i].points.resize(counts[i]);
  }
  return clusters;
}

std::vector<int> sortedIndexes(const std::vector<int>& counts) {
  std::vector<Cluster> clusters = clustersWithCounts(counts);
  unstableSort(clusters.data(), clusters.data() + clusters.size(),
               MoreMembersFirst());
  std::vector<int> order;
  for (const Cluster& cluster : clusters) {
    const int index = static_cast<int>(cluster.center.r);
    // Centre and list travel together.
    EXPECT_EQ(cluster.points.size(), static_cast<size_t>(counts[index]));
    order.push_back(index);
  }
  return order;
}

std::string dataPath() {
  return PAVONA_TEST_DATA_DIR "/libcxx_sort_orders.txt";
}

TEST(KMeansClusterSort, GivesLibcxxOrders) {
  std::ifstream data(dataPath());
  ASSERT_TRUE(data.is_open()) << dataPath();
  int cases = 0;
  std::string line;
  while (std::getline(data, line)) {
    const size_t bar = line.find('|');
    ASSERT_NE(bar, std::string::npos) << line;
    std::istringstream countText(line.substr(0, bar));
    std::istringstream orderText(line.substr(bar + 1));
    std::vector<int> counts;
    std::vector<int> expected;
    for (int value; countText >> value;) counts.push_back(value);
    for (int value; orderText >> value;) expected.push_back(value);
    ASSERT_EQ(sortedIndexes(counts), expected) << "counts: " << line;
    ++cases;
  }
  // k = 1 ... 20 with ties, the adverse arrays and the long ones.
  EXPECT_GT(cases, 2000);
  EXPECT_EQ(sortedIndexes({}), std::vector<int>{});
}

}  // namespace
