#include "bench/photo_points.h"

#include <cmath>

namespace bench {

namespace {

std::vector<_Point> makePhotoPoints() {
  std::vector<_Point> points;
  unsigned noise = 12345;
  for (int y = 0; y < kPointsHeight; ++y) {
    for (int x = 0; x < kPointsWidth; ++x) {
      const float t = float(y) / kPointsHeight;
      float r = 90 + 110 * t, g = 140 + 40 * t, b = 230 - 150 * t;
      const float dx = x - 40.0f, dy = y - 50.0f;
      if (dx * dx + dy * dy < 400) r = 210, g = 60, b = 40;      // a red ball
      if (x > 80 && x < 110 && y > 30) r = 50, g = 110, b = 45;  // foliage
      const float shade = 0.8f + 0.2f * std::cos(x * 0.05f);
      noise = noise * 1103515245u + 12345u;
      const float n = float((noise >> 16) % 9) - 4.0f;
      auto clamp = [](float v) {
        return std::fmin(std::fmax(v, 0.0f), 255.0f);
      };
      points.push_back({clamp(std::round(r * shade + n)),
                        clamp(std::round(g * shade + n)),
                        clamp(std::round(b * shade - n))});
    }
  }
  return points;
}

}  // namespace

const std::vector<_Point>& photoPoints() {
  static const std::vector<_Point> points = makePhotoPoints();
  return points;
}

}  // namespace bench
