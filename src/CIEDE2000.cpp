// The palette must come out bit for bit the same on every build, so each
// step below keeps its own precision: float where the value lives in float,
// double only where the step widens, and sums in the order written.
//
// The colour difference is CIEDE2000 as published by G. Sharma, W. Wu and
// E. N. Dalal, "The CIEDE2000 color-difference formula: implementation
// notes, supplementary test data, and mathematical observations", Color
// Research & Application 30(1), 2005. Its angles are in degrees there and in
// radians here; each constant below names its degrees.
#include "src/CIEDE2000.h"

#include <cmath>

namespace CIEDE2000 {
namespace {

// 25^7 as it was once rounded to float; every palette depends on it.
constexpr double kPow25To7 = 6103515648.0;
constexpr float kTwoPi = 6.2831855f;  // 360°
constexpr float kPi = 3.1415927f;     // 180°

// sRGB companding, undone. The threshold compares in double.
float linearise(float v) {
  if (static_cast<double>(v) > 0.04045) {
    return powf((v + 0.055f) / 1.055f, 2.4f);
  }
  return static_cast<float>(static_cast<double>(v) / 12.92);
}

float labF(float t) {
  if (t > 0.008856f) {
    return powf(t, 0.33333334f);
  }
  return t * 7.787f + 0.137931f;
}

// Hue angle in [0, 2pi); a colour without chroma has hue 0.
float hueAngle(float b, float aPrime) {
  if (b == 0.0f && aPrime == 0.0f) {
    return 0.0f;
  }
  float h = atan2f(b, aPrime);
  if (h < 0.0f) {
    h += kTwoPi;
  }
  return h;
}

}  // namespace

void RGB2Lab(float r, float g, float b, float& l, float& a, float& bStar) {
  const float blue = linearise(b);
  const float green = linearise(g);
  const float red = linearise(r);
  const double rd = red;
  const double gd = green;
  const double bd = blue;

  const float xRaw =
      static_cast<float>((gd * 0.35758 + rd * 0.412453) + bd * 0.180423);
  const float x = static_cast<float>(static_cast<double>(xRaw) / 0.95047);
  const float y =
      static_cast<float>((gd * 0.71516 + rd * 0.212671) + bd * 0.072169);
  const float zRaw =
      static_cast<float>((gd * 0.119193 + rd * 0.019334) + bd * 0.950227);
  const float z = static_cast<float>(static_cast<double>(zRaw) / 1.08883);

  const float fx = labF(x);
  const float fy = labF(y);
  const float fz = labF(z);
  l = y > 0.008856f ? 116.0f * fy - 16.0f : 903.3f * y;
  a = (fx - fy) * 500.0f;
  bStar = (fy - fz) * 200.0f;
}

float CIEDE2000(const LAB& lab1, const LAB& lab2) {
  const float l1 = lab1.l, a1 = lab1.a, b1 = lab1.b;
  const float l2 = lab2.l, a2 = lab2.a, b2 = lab2.b;

  const float c1 = sqrtf(a1 * a1 + b1 * b1);
  const float c2 = sqrtf(a2 * a2 + b2 * b2);
  const float cBar = (c1 + c2) * 0.5f;

  const double cBar7 = pow(static_cast<double>(cBar), 7.0);
  const float g =
      static_cast<float>((1.0 - sqrt(cBar7 / (cBar7 + kPow25To7))) * 0.5);

  const double onePlusG = 1.0 + static_cast<double>(g);
  const float a1p = static_cast<float>(onePlusG * static_cast<double>(a1));
  const float a2p = static_cast<float>(onePlusG * static_cast<double>(a2));
  const float c1p = sqrtf(a1p * a1p + b1 * b1);
  const float c2p = sqrtf(a2p * a2p + b2 * b2);

  const float h1p = hueAngle(b1, a1p);
  const float h2p = hueAngle(b2, a2p);

  const float dLp = l2 - l1;
  const float dCp = c2p - c1p;
  const float chromaProduct = c1p * c2p;
  float dhp = 0.0f;
  if (chromaProduct != 0.0f) {
    dhp = h2p - h1p;
    if (dhp < -kPi) {
      dhp += kTwoPi;
    } else if (dhp > kPi) {
      dhp -= kTwoPi;
    }
  }

  const double rootProduct = sqrtf(chromaProduct);
  const float dHp = static_cast<float>((2.0 * rootProduct) *
                                       sin(static_cast<double>(dhp) * 0.5));

  const float lBarP = (l1 + l2) * 0.5f;
  const float cBarP = (c1p + c2p) * 0.5f;
  float hBarP;
  if (chromaProduct == 0.0f) {
    hBarP = h1p + h2p;
  } else if (fabsf(h1p - h2p) <= kPi) {
    hBarP = (h1p + h2p) * 0.5f;
  } else if (h1p + h2p < kTwoPi) {
    hBarP = (h1p + h2p + kTwoPi) * 0.5f;
  } else {
    hBarP = (h1p + h2p - kTwoPi) * 0.5f;
  }

  const double hBar = hBarP;
  // T = 1 - 0.17 cos(h - 30°) + 0.24 cos(2h) + 0.32 cos(3h + 6°)
  //       - 0.20 cos(4h - 63°)
  const double cosFirst = cosf(hBarP - 0.5235988f);  // 30°
  const float t =
      static_cast<float>(1.0 - 0.17 * cosFirst + 0.24 * cos(2.0 * hBar) +
                         0.32 * cos(3.0 * hBar + 0.10471975803375244) -  // 6°
                         0.2 * cos(4.0 * hBar - 1.0995573997497559));    // 63°

  // Δθ = 30° exp(-((h - 275°) / 25°)^2)
  const double q = (hBarP - 4.7996554f) / 0.43633232f;  // 275°, 25°
  const float dTheta =
      static_cast<float>(0.5235987901687622 * exp(-(q * q)));  // 30°

  const double cBarPd = cBarP;
  const double cBarP7 = pow(cBarPd, 7.0);
  const float rC =
      static_cast<float>(2.0 * sqrt(cBarP7 / (cBarP7 + kPow25To7)));

  const double lOff = static_cast<double>(lBarP) - 50.0;
  const double lOffSq = lOff * lOff;
  const float sL =
      static_cast<float>(1.0 + 0.015 * lOffSq / sqrt(20.0 + lOffSq));
  const float sC = static_cast<float>(1.0 + 0.045 * cBarPd);
  const float sH =
      static_cast<float>(1.0 + 0.015 * cBarPd * static_cast<double>(t));

  const float rotation = static_cast<float>(
      sin(2.0 * static_cast<double>(dTheta)) * static_cast<double>(rC));

  const float tl = dLp / sL;
  const float tc = dCp / sC;
  const float th = dHp / sH;
  const double tld = tl, tcd = tc, thd = th;
  const float cross = (tc * rotation) * th;
  return static_cast<float>(
      sqrt(tcd * tcd + tld * tld + thd * thd - static_cast<double>(cross)));
}

}  // namespace CIEDE2000
