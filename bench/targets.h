// The targets to beat: each one a ratio of our time to a reference's,
// measured side by side in one run. Lower is better.
#ifndef PAVONA_BENCH_TARGETS_H_
#define PAVONA_BENCH_TARGETS_H_

#include <string>
#include <vector>

namespace bench {

enum class Metric {
  kTime,         // time a call
  kTimePerPass,  // time a call divided by the "passes" counter
};

struct Target {
  std::string label;  // what is compared, for the summary
  std::string ours;   // benchmark names
  std::string reference;
  Metric metric;
  double limit;  // met when ours / reference <= limit; 0: shown, no target
};

std::vector<Target> targets();

}  // namespace bench

#endif  // PAVONA_BENCH_TARGETS_H_
