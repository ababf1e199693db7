#include "tools/pavona/video_summary.h"

#include <algorithm>
#include <cmath>

namespace pavona::tool {

double percentile(std::vector<double> values, double p) {
  if (values.empty()) return 0;
  const size_t rank = static_cast<size_t>(std::ceil(p / 100 * values.size()));
  const size_t index = std::clamp<size_t>(rank, 1, values.size()) - 1;
  std::nth_element(values.begin(), values.begin() + index, values.end());
  return values[index];
}

}  // namespace pavona::tool
