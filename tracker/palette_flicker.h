// How far a palette moves from one frame to the next.
#ifndef PAVONA_TRACKER_PALETTE_FLICKER_H_
#define PAVONA_TRACKER_PALETTE_FLICKER_H_

#include <vector>

#include "tracker/lab_colour.h"

namespace pavona::tracker {

// One palette row: its colour and the part of the frame it covers (0..1).
struct Swatch {
  Lab lab;
  double share = 0;
};

// For each row of `before`, the row of `after` it becomes: the pairing with
// the least total ΔE00. -1 for rows left over when `after` has fewer.
std::vector<int> matchRows(const std::vector<Swatch>& before,
                           const std::vector<Swatch>& after);

// The ΔE00 of the matched rows, averaged with each pair weighted by the
// mean of its two shares (a plain mean when no pair has a share). Rows left
// unmatched do not count; 0 when no pair is made.
double paletteFlicker(const std::vector<Swatch>& before,
                      const std::vector<Swatch>& after);

}  // namespace pavona::tracker

#endif  // PAVONA_TRACKER_PALETTE_FLICKER_H_
