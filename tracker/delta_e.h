// CIEDE2000 colour difference for measuring palettes over time.
#ifndef PAVONA_TRACKER_DELTA_E_H_
#define PAVONA_TRACKER_DELTA_E_H_

#include "tracker/lab_colour.h"

namespace pavona::tracker {

// The ΔE00 formula in double precision (Sharma, Wu and Dalal, "The
// CIEDE2000 color-difference formula", 2005), kL = kC = kH = 1, with the
// exact 25^7. Not a twin of the library's: that one works in float and
// keeps 25^7 as once rounded to float (6103515648), and every palette
// depends on its rounding. This one is for measurement and tracking only.
double deltaE00(const Lab& first, const Lab& second);

}  // namespace pavona::tracker

#endif  // PAVONA_TRACKER_DELTA_E_H_
