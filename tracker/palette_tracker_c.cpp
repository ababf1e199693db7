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
  std::vector<Swatch> swatches;
  for (int row = 0; row < rows; ++row) {
    swatches.push_back(
        {labFromRgb({rgbl[row][0], rgbl[row][1], rgbl[row][2]}, scale),
         shares[row]});
  }
  const std::vector<TrackedSwatch> tracked = tracker->tracker.update(swatches);
  for (int row = 0; row < rows; ++row) {
    const Rgb rgb = rgbFromLab(tracked[row].swatch.lab, scale);
    float* out = rgbl[row];
    out[0] = static_cast<float>(rgb.r);
    out[1] = static_cast<float>(rgb.g);
    out[2] = static_cast<float>(rgb.b);
    out[3] = rowLightness(out[0], out[1], out[2]);
    shares[row] = tracked[row].swatch.share;
  }
}
