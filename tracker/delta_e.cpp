#include "tracker/delta_e.h"

#include <cmath>

namespace pavona::tracker {
namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kDegree = kPi / 180;
constexpr double kPow25To7 = 6103515625.0;

// Hue angle in [0, 2pi); a colour without chroma has hue 0.
double hueAngle(double b, double aPrime) {
  if (b == 0 && aPrime == 0) return 0;
  const double h = std::atan2(b, aPrime);
  return h < 0 ? h + 2 * kPi : h;
}

}  // namespace

double deltaE00(const Lab& first, const Lab& second) {
  const double cBar =
      (std::hypot(first.a, first.b) + std::hypot(second.a, second.b)) / 2;
  const double cBar7 = std::pow(cBar, 7);
  const double g = 0.5 * (1 - std::sqrt(cBar7 / (cBar7 + kPow25To7)));
  const double a1 = (1 + g) * first.a, a2 = (1 + g) * second.a;
  const double c1 = std::hypot(a1, first.b), c2 = std::hypot(a2, second.b);
  const double h1 = hueAngle(first.b, a1), h2 = hueAngle(second.b, a2);
  const bool achromatic = c1 * c2 == 0;

  double dh = achromatic ? 0 : h2 - h1;
  if (dh > kPi) dh -= 2 * kPi;
  if (dh < -kPi) dh += 2 * kPi;
  const double dL = second.l - first.l;
  const double dC = c2 - c1;
  const double dH = 2 * std::sqrt(c1 * c2) * std::sin(dh / 2);

  const double lMean = (first.l + second.l) / 2;
  const double cMean = (c1 + c2) / 2;
  double hMean = h1 + h2;
  if (!achromatic) {
    if (std::fabs(h1 - h2) <= kPi) {
      hMean /= 2;
    } else {
      hMean = (hMean + (hMean < 2 * kPi ? 2 * kPi : -2 * kPi)) / 2;
    }
  }
  const double t = 1 - 0.17 * std::cos(hMean - 30 * kDegree) +
                   0.24 * std::cos(2 * hMean) +
                   0.32 * std::cos(3 * hMean + 6 * kDegree) -
                   0.20 * std::cos(4 * hMean - 63 * kDegree);
  const double q = (hMean - 275 * kDegree) / (25 * kDegree);
  const double dTheta = 30 * kDegree * std::exp(-q * q);
  const double cMean7 = std::pow(cMean, 7);
  const double rC = 2 * std::sqrt(cMean7 / (cMean7 + kPow25To7));
  const double l50 = (lMean - 50) * (lMean - 50);
  const double sL = 1 + 0.015 * l50 / std::sqrt(20 + l50);
  const double sC = 1 + 0.045 * cMean;
  const double sH = 1 + 0.015 * cMean * t;
  const double rT = -std::sin(2 * dTheta) * rC;
  const double tL = dL / sL, tC = dC / sC, tH = dH / sH;
  return std::sqrt(tL * tL + tC * tC + tH * tH + rT * tC * tH);
}

}  // namespace pavona::tracker
