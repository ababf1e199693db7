#include "tracker/palette_tracker_c.h"

#include <new>
#include <vector>

#include "tracker/palette_tracker.h"

struct PavonaTracker {
  explicit PavonaTracker(double weight) : tracker(weight) {}
  pavona::tracker::PaletteTracker tracker;
};

PavonaTracker* pavona_tracker_new(double weight) {
  if (!(weight > 0 && weight <= 1)) return nullptr;
  return new (std::nothrow) PavonaTracker(weight);
}

void pavona_tracker_free(PavonaTracker* tracker) { delete tracker; }

void pavona_tracker_update(PavonaTracker* tracker, float (*rgbl)[4],
                           double* shares, int rows, double scale) {
  using namespace pavona::tracker;
  std::vector<PaletteRow> in;
  for (int row = 0; row < rows; ++row) {
    in.push_back(
        {rgbl[row][0], rgbl[row][1], rgbl[row][2], rgbl[row][3], shares[row]});
  }
  const std::vector<SmoothedRow> out = smoothRows(tracker->tracker, in, scale);
  for (int row = 0; row < rows; ++row) {
    const PaletteRow& smoothed = out[row].row;
    float* target = rgbl[row];
    target[0] = smoothed.r;
    target[1] = smoothed.g;
    target[2] = smoothed.b;
    target[3] = smoothed.lightness;
    shares[row] = smoothed.share;
  }
}
