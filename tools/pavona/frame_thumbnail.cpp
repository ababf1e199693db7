#include "tools/pavona/frame_thumbnail.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace pavona::tool {
namespace {

double sample(const uint8_t* row, int index, bool deep) {
  if (!deep) return row[index];
  uint16_t word;
  std::memcpy(&word, row + 2 * index, 2);
  return word * 255.0 / 1023.0;
}

uint8_t toByte(double value) {
  return static_cast<uint8_t>(std::lround(std::clamp(value, 0.0, 255.0)));
}

}  // namespace

RgbImage thumbnailShape(const YuvFrame& frame, int width) {
  RgbImage image;
  image.width = std::max(1, std::min(width, frame.width));
  image.height = std::max(
      1, static_cast<int>(int64_t{frame.height} * image.width / frame.width));
  return image;
}

RgbImage frameThumbnail(const YuvFrame& frame, int width) {
  const bool deep = frame.format == IMAGE_FORMAT_YUV420SP_10BIT;
  const bool uFirst = frame.format != IMAGE_FORMAT_NV21;
  const double centre = deep ? 512 * 255.0 / 1023.0 : 128;
  RgbImage image = thumbnailShape(frame, width);
  image.pixels.resize(size_t{3} * image.width * image.height);
  uint8_t* out = image.pixels.data();
  for (int y = 0; y < image.height; ++y) {
    const int sy = static_cast<int>(int64_t{y} * frame.height / image.height);
    const uint8_t* luma = frame.yPlane() + size_t(sy) * frame.stride;
    const uint8_t* chroma = frame.uvPlane() + size_t(sy / 2) * frame.stride;
    for (int x = 0; x < image.width; ++x) {
      const int sx = static_cast<int>(int64_t{x} * frame.width / image.width);
      const int pair = sx / 2 * 2;
      const double l = sample(luma, sx, deep);
      const double u = sample(chroma, pair + (uFirst ? 0 : 1), deep) - centre;
      const double v = sample(chroma, pair + (uFirst ? 1 : 0), deep) - centre;
      *out++ = toByte(l + 1.402 * v);
      *out++ = toByte(l - 0.714 * v - 0.344 * u);
      *out++ = toByte(l + 1.772 * u);
    }
  }
  return image;
}

}  // namespace pavona::tool
