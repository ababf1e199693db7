// CIEDE2000 colour difference for measuring palettes over time.
#ifndef PAVONA_TRACKER_DELTA_E_H_
#define PAVONA_TRACKER_DELTA_E_H_

#include "tracker/lab_colour.h"

namespace pavona::tracker {

// A double-precision twin of the library's ΔE00 formula (Sharma, Wu and
// Dalal, "The CIEDE2000 color-difference formula", 2005), kL = kC = kH = 1.
// For measurement and tracking only: the library keeps its own float
// version, whose rounding every palette depends on.
double deltaE00(const Lab& first, const Lab& second);

}  // namespace pavona::tracker

#endif  // PAVONA_TRACKER_DELTA_E_H_
