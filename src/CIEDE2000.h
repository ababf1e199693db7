// sRGB to CIE L*a*b* (D65) and the CIEDE2000 colour difference, with the
// exact mix of single and double precision that decides the low-order bits.
#ifndef PAVONA_SRC_CIEDE2000_H_
#define PAVONA_SRC_CIEDE2000_H_

#include "base/export.h"

namespace CIEDE2000 {

struct LAB {
  float l;
  float a;
  float b;
};

// Converts normalised sRGB (each channel 0..1) to L*, a*, b*.
PAVONA_EXPORT void RGB2Lab(float r, float g, float b, float& l, float& a,
                           float& bStar);

// The ΔE00 difference of two Lab colours (kL = kC = kH = 1).
PAVONA_EXPORT float CIEDE2000(const LAB& lab1, const LAB& lab2);

}  // namespace CIEDE2000

#endif  // PAVONA_SRC_CIEDE2000_H_
