#include "tracker/lab_colour.h"

#include <algorithm>
#include <cmath>

namespace pavona::tracker {
namespace {

// Where the cube-root branch of the CIELAB function meets the linear one.
constexpr double kEpsilon = 0.008856;
constexpr double kKappa = 903.3;
constexpr double kWhiteX = 0.95047;
constexpr double kWhiteZ = 1.08883;

double linearise(double v) {
  return v > 0.04045 ? std::pow((v + 0.055) / 1.055, 2.4) : v / 12.92;
}

double compand(double v) {
  return v > 0.0031308 ? 1.055 * std::pow(v, 1 / 2.4) - 0.055 : v * 12.92;
}

double labF(double t) {
  return t > kEpsilon ? std::cbrt(t) : t * 7.787 + 0.137931;
}

double labFInverse(double f) {
  const double cube = f * f * f;
  return cube > kEpsilon ? cube : (f - 0.137931) / 7.787;
}

}  // namespace

Lab labFromRgb(const Rgb& rgb, double scale) {
  const double r = linearise(rgb.r / scale);
  const double g = linearise(rgb.g / scale);
  const double b = linearise(rgb.b / scale);
  const double x = (0.412453 * r + 0.35758 * g + 0.180423 * b) / kWhiteX;
  const double y = 0.212671 * r + 0.71516 * g + 0.072169 * b;
  const double z = (0.019334 * r + 0.119193 * g + 0.950227 * b) / kWhiteZ;
  const double fy = labF(y);
  return {y > kEpsilon ? 116 * fy - 16 : kKappa * y, 500 * (labF(x) - fy),
          200 * (fy - labF(z))};
}

Rgb rgbFromLab(const Lab& lab, double scale) {
  const double y = lab.l > kKappa * kEpsilon ? std::pow((lab.l + 16) / 116, 3)
                                             : lab.l / kKappa;
  const double fy = labF(y);
  const double x = labFInverse(fy + lab.a / 500) * kWhiteX;
  const double z = labFInverse(fy - lab.b / 200) * kWhiteZ;
  auto channel = [scale](double linear) {
    return std::clamp(compand(linear), 0.0, 1.0) * scale;
  };
  return {channel(3.240479 * x - 1.53715 * y - 0.498535 * z),
          channel(-0.969256 * x + 1.875992 * y + 0.041556 * z),
          channel(0.055648 * x - 0.204043 * y + 1.057311 * z)};
}

float rowLightness(float r, float g, float b) {
  return (std::min({r, g, b}) + std::max({r, g, b})) * 10.0f / 51.0f;
}

}  // namespace pavona::tracker
