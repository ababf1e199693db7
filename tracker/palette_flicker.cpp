#include "tracker/palette_flicker.h"

#include <cstddef>

#include "tracker/assignment.h"
#include "tracker/delta_e.h"

namespace pavona::tracker {

std::vector<int> matchRows(const std::vector<Swatch>& before,
                           const std::vector<Swatch>& after) {
  std::vector<double> cost;
  cost.reserve(before.size() * after.size());
  for (const Swatch& from : before) {
    for (const Swatch& to : after) cost.push_back(deltaE00(from.lab, to.lab));
  }
  return assignMinimumCost(cost, static_cast<int>(before.size()),
                           static_cast<int>(after.size()));
}

double paletteFlicker(const std::vector<Swatch>& before,
                      const std::vector<Swatch>& after) {
  const std::vector<int> match = matchRows(before, after);
  double weighted = 0, weights = 0, plain = 0;
  int pairs = 0;
  for (std::size_t i = 0; i < before.size(); ++i) {
    if (match[i] < 0) continue;
    const Swatch& to = after[match[i]];
    const double difference = deltaE00(before[i].lab, to.lab);
    const double weight = (before[i].share + to.share) / 2;
    weighted += weight * difference;
    weights += weight;
    plain += difference;
    ++pairs;
  }
  if (weights > 0) return weighted / weights;
  return pairs > 0 ? plain / pairs : 0;
}

}  // namespace pavona::tracker
