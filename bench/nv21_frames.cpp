#include "bench/nv21_frames.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <vector>

#include "bench/cache_eviction.h"

namespace bench {

namespace {

constexpr int kColdCopies = 4;

uint8_t toByte(float v) {
  return static_cast<uint8_t>(
      std::fmin(std::fmax(std::round(v), 0.0f), 255.0f));
}

// An outdoor scene: sky fading to ground, a red ball, foliage, shading and
// sensor noise, so that every stage sees photo-like data.
void paint(uint8_t* frame) {
  uint8_t* y = frame;
  uint8_t* vu = frame + kLumaBytes;
  unsigned noise = 2024;
  for (int row = 0; row < kFrameHeight; ++row) {
    const float t = float(row) / kFrameHeight;
    for (int col = 0; col < kFrameWidth; ++col) {
      noise = noise * 1103515245u + 12345u;
      const float n = float((noise >> 16) % 7) - 3.0f;
      const float shade = 0.85f + 0.15f * std::cos(col * 0.0015f);
      float luma = (200.0f - 110.0f * t) * shade;
      const float dx = col - 1300.0f, dy = row - 1600.0f;
      if (dx * dx + dy * dy < 500.0f * 500.0f) luma = 95.0f * shade;
      if (col > 2600 && col < 3550 && row > 1000) luma = 85.0f * shade;
      y[std::size_t{kFrameStride} * row + col] = toByte(luma + n);
    }
  }
  for (int row = 0; row < kFrameHeight / 2; ++row) {
    const float t = float(2 * row) / kFrameHeight;
    uint8_t* line = vu + std::size_t{kFrameStride} * row;
    for (int pair = 0; pair < kFrameWidth / 2; ++pair) {
      float v = 110.0f + 30.0f * t, u = 160.0f - 50.0f * t;  // sky to soil
      const float dx = 2 * pair - 1300.0f, dy = 2 * row - 1600.0f;
      if (dx * dx + dy * dy < 500.0f * 500.0f) v = 200.0f, u = 100.0f;
      if (2 * pair > 2600 && 2 * pair < 3550 && 2 * row > 1000) {
        v = 105.0f, u = 100.0f;
      }
      line[2 * pair] = toByte(v);
      line[2 * pair + 1] = toByte(u);
    }
  }
}

struct Pool {
  std::vector<std::unique_ptr<uint8_t[]>> frames;
  Pool() {
    for (int i = 0; i < 1 + kColdCopies; ++i) {
      frames.emplace_back(new uint8_t[kFrameBytes]);
      if (i == 0) {
        paint(frames[0].get());
      } else {
        std::memcpy(frames[i].get(), frames[0].get(), kFrameBytes);
      }
    }
  }
};

Pool& pool() {
  static Pool frames;
  return frames;
}

Nv21Frame view(uint8_t* bytes) { return {bytes, bytes + kLumaBytes}; }

}  // namespace

const char* cacheName(Cache cache) {
  return cache == Cache::kWarm ? "warm" : "cold";
}

Nv21Frame FrameSource::next() {
  Pool& frames = pool();
  if (cache_ == Cache::kWarm) return view(frames.frames[0].get());
  uint8_t* bytes = frames.frames[1 + turn_].get();
  turn_ = (turn_ + 1) % kColdCopies;
  evictFromCaches(bytes, kFrameBytes);
  return view(bytes);
}

}  // namespace bench
