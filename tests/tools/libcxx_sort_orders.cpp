// Prints the orders in which LLVM libc++'s std::sort leaves arrays of
// records ranked by a count, larger first, with many ties. Built with
// clang++ -stdlib=libc++; its output is tests/data/libcxx_sort_orders.txt,
// which the k-means suite checks the cluster sort against.
//
// Each line: the counts in input order, "|", then the input index of each
// element after sorting.
#include <algorithm>
#include <cstdio>
#include <random>
#include <type_traits>
#include <vector>

#ifndef _LIBCPP_VERSION
#error "build with -stdlib=libc++: the orders must be libc++'s"
#endif

namespace {

// Like a cluster: an identity plus a list whose size is the key. Holding a
// vector makes it non-trivially copyable, which picks libc++'s insertion
// limit of 6 rather than 30.
struct Record {
  int index;
  std::vector<int> members;
};
static_assert(!std::is_trivially_copy_constructible<Record>::value);

void printOrder(const std::vector<int>& counts) {
  std::vector<Record> records;
  for (int i = 0; i < static_cast<int>(counts.size()); ++i) {
    records.push_back({i, std::vector<int>(counts[i])});
  }
  std::sort(records.begin(), records.end(),
            [](const Record& a, const Record& b) {
              return a.members.size() > b.members.size();
            });
  for (int count : counts) std::printf("%d ", count);
  std::printf("|");
  for (const Record& record : records) std::printf(" %d", record.index);
  std::printf("\n");
}

}  // namespace

int main() {
  std::mt19937 random(20240601u);
  auto draw = [&](int n, int spread) {
    std::vector<int> counts(n);
    for (int& count : counts) count = 1 + static_cast<int>(random() % spread);
    return counts;
  };

  // The cluster counts k = 1 ... 20, from all-tied to nearly distinct.
  for (int k = 1; k <= 20; ++k) {
    for (int spread : {1, 2, 3, 4, k, 4 * k}) {
      for (int repeat = 0; repeat < 16; ++repeat) printOrder(draw(k, spread));
    }
    std::vector<int> rising(k);
    for (int i = 0; i < k; ++i) rising[i] = 1 + i;
    printOrder(rising);
    std::reverse(rising.begin(), rising.end());
    printOrder(rising);
    std::vector<int> pipe(k);
    for (int i = 0; i < k; ++i) pipe[i] = 1 + std::min(i, k - 1 - i);
    printOrder(pipe);
  }

  // Arrays found by search that defeat the median-of-three pivot: the
  // first six reach the bounded insertion sort's early exit with k <= 20,
  // the last three the heap-sort fallback.
  const std::vector<std::vector<int>> adverse = {
      {7, 5, 4, 7, 4, 6, 5, 3, 4, 5, 5, 2, 5, 7, 1, 5, 3, 4, 7, 6},
      {12, 11, 5, 11, 4, 1, 3, 11, 11, 5, 8, 3, 9, 7, 10},
      {7, 7, 7, 6, 5, 4, 2, 6, 6, 4, 3, 5, 4, 4, 4},
      {8, 8, 7, 2, 1, 4, 4, 2, 2, 7, 7, 3, 2, 4, 1, 1, 2, 6, 4, 6},
      {13, 12, 2, 7, 9, 3, 7, 7, 12, 4, 3, 12, 1, 3, 8, 1},
      {1, 16, 6, 13, 2, 1, 5, 16, 2, 18, 12, 16, 8, 11, 6, 1, 8, 10, 1},
      {1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 16, 12, 13, 14, 31,
       16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29},
      {1,  5,  3,  4,  5,  24, 7,  8,  11, 10, 11, 12, 13, 16, 15, 32,
       29, 18, 19, 20, 21, 22, 23, 24, 25, 27, 27, 28, 29, 30, 31},
      {1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14, 15, 30,
       17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31},
  };
  for (const std::vector<int>& counts : adverse) printOrder(counts);

  // Longer arrays reach the median-of-five pivot.
  for (int n : {24, 40, 64, 130, 1000, 1200}) {
    for (int spread : {2, 5, n}) {
      printOrder(draw(n, spread));
    }
  }
  return 0;
}
