// CIELAB colours for measuring and blending palette rows.
#ifndef PAVONA_TRACKER_LAB_COLOUR_H_
#define PAVONA_TRACKER_LAB_COLOUR_H_

namespace pavona::tracker {

struct Lab {
  double l = 0;
  double a = 0;
  double b = 0;
};

struct Rgb {
  double r = 0;
  double g = 0;
  double b = 0;
};

// sRGB (D65) to CIELAB, with the library's matrix and constants in double.
// `scale` is the value of full intensity: 255 for 8-bit rows, 1023 for
// 10-bit ones.
Lab labFromRgb(const Rgb& rgb, double scale);

// The inverse of labFromRgb, clamped to 0..scale.
Rgb rgbFromLab(const Lab& lab, double scale);

// The lightness figure the plug-in writes beside a row, (min + max) * 10 /
// 51 at every bit depth, for rows the tracker has moved.
float rowLightness(float r, float g, float b);

}  // namespace pavona::tracker

#endif  // PAVONA_TRACKER_LAB_COLOUR_H_
