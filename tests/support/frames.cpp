#include "tests/support/frames.h"

#include <algorithm>
#include <cstring>

namespace pavona::testing {
namespace {

struct Yuv {
  int y, u, v;
};

// Four regions and a diagonal band; seed shifts region colours.
Yuv scene(int x, int y, int width, int height, int seed) {
  static const Yuv kRegions[5] = {{81, 90, 240},
                                  {145, 54, 34},
                                  {41, 240, 110},
                                  {210, 16, 146},
                                  {128, 170, 60}};
  int region = (y * 2 >= height) * 2 + (x * 2 >= width);
  const int band = (x * height - y * width) / std::max(1, width + height);
  if (band > -height / 16 && band < height / 16) region = 4;
  Yuv c = kRegions[region];
  c.y = std::clamp(c.y + (seed * 37 + (x + y) / 64) % 41 - 20, 0, 255);
  c.u = std::clamp(c.u + (seed * 13) % 21 - 10, 0, 255);
  c.v = std::clamp(c.v - (seed * 7) % 21 + 10, 0, 255);
  return c;
}

}  // namespace

void bind(Frame& frame) {
  frame.image.yPlane = frame.y.data();
  frame.image.uvPlane = frame.uv.data();
}

// Describes packed planes of `width` x `height` samples.
void describe(Frame& frame, IMAGE_FORMAT_TYPE format, int width, int height) {
  frame.image.format = format;
  frame.image.width = width;
  frame.image.height = height;
  frame.image.stride = 0;
  bind(frame);
}

Frame makeFrame8(IMAGE_FORMAT_TYPE format, int width, int height, int seed) {
  Frame frame;
  frame.y.resize(static_cast<size_t>(width) * height);
  frame.uv.resize(static_cast<size_t>(width) * (height / 2));
  for (int row = 0; row < height; ++row) {
    for (int col = 0; col < width; ++col) {
      frame.y[static_cast<size_t>(row) * width + col] =
          static_cast<uint8_t>(scene(col, row, width, height, seed).y);
    }
  }
  const bool uFirst = format == IMAGE_FORMAT_NV12;
  for (int row = 0; row < height / 2; ++row) {
    for (int pair = 0; pair < width / 2; ++pair) {
      const Yuv c = scene(2 * pair, 2 * row, width, height, seed);
      uint8_t* out = &frame.uv[static_cast<size_t>(row) * width + 2 * pair];
      out[0] = static_cast<uint8_t>(uFirst ? c.u : c.v);
      out[1] = static_cast<uint8_t>(uFirst ? c.v : c.u);
    }
  }
  describe(frame, format, width, height);
  return frame;
}

Frame makeFrame10(int width, int height, int seed) {
  const Frame eight = makeFrame8(IMAGE_FORMAT_NV12, width, height, seed);
  Frame frame;
  auto widen = [](const std::vector<uint8_t>& in, std::vector<uint8_t>& out) {
    out.resize(2 * in.size());
    for (size_t i = 0; i < in.size(); ++i) {
      const uint16_t v = static_cast<uint16_t>(in[i] * 4);
      std::memcpy(&out[2 * i], &v, sizeof v);
    }
  };
  widen(eight.y, frame.y);
  widen(eight.uv, frame.uv);
  describe(frame, IMAGE_FORMAT_YUV420SP_10BIT, width, height);
  return frame;
}

Frame upscale2x(const Frame& frame) {
  const int width = frame.image.width, height = frame.image.height;
  Frame big;
  big.y.resize(static_cast<size_t>(4) * width * height);
  big.uv.resize(static_cast<size_t>(2) * width * height);
  for (int row = 0; row < 2 * height; ++row) {
    for (int col = 0; col < 2 * width; ++col) {
      big.y[static_cast<size_t>(row) * 2 * width + col] =
          frame.y[static_cast<size_t>(row / 2) * width + col / 2];
      // Each chroma pair covers two columns, so byte `col` of a doubled
      // row comes from pair col / 4 of the source row.
      if (row < height) {
        big.uv[static_cast<size_t>(row) * 2 * width + col] =
            frame.uv[static_cast<size_t>(row / 2) * width + 2 * (col / 4) +
                     col % 2];
      }
    }
  }
  describe(big, frame.image.format, 2 * width, 2 * height);
  return big;
}

}  // namespace pavona::testing
