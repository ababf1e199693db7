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

Frame makeFrame8(IMAGE_FORMAT_TYPE format, int width, int height, int seed,
                 int stride) {
  Frame frame;
  const int pitch = stride == 0 ? width : stride;
  frame.y.assign(static_cast<size_t>(pitch) * height, 0);
  frame.uv.assign(static_cast<size_t>(pitch) * (height / 2), 0);
  for (int row = 0; row < height; ++row) {
    for (int col = 0; col < width; ++col) {
      frame.y[static_cast<size_t>(row) * pitch + col] =
          static_cast<uint8_t>(scene(col, row, width, height, seed).y);
    }
  }
  const bool uFirst = format == IMAGE_FORMAT_NV12;
  for (int row = 0; row < height / 2; ++row) {
    for (int pair = 0; pair < width / 2; ++pair) {
      const Yuv c = scene(2 * pair, 2 * row, width, height, seed);
      uint8_t* out = &frame.uv[static_cast<size_t>(row) * pitch + 2 * pair];
      out[0] = static_cast<uint8_t>(uFirst ? c.u : c.v);
      out[1] = static_cast<uint8_t>(uFirst ? c.v : c.u);
    }
  }
  frame.image.format = format;
  frame.image.width = width;
  frame.image.height = height;
  frame.image.stride = stride;
  bind(frame);
  return frame;
}

Frame makeFrame10(int width, int height, int seed) {
  const Frame eight = makeFrame8(IMAGE_FORMAT_NV12, width, height, seed);
  Frame frame;
  frame.y.resize(eight.y.size() * 2);
  frame.uv.resize(eight.uv.size() * 2);
  auto widen = [](const std::vector<uint8_t>& in, std::vector<uint8_t>& out) {
    for (size_t i = 0; i < in.size(); ++i) {
      const uint16_t v = static_cast<uint16_t>(in[i] * 4);
      std::memcpy(&out[2 * i], &v, sizeof v);
    }
  };
  widen(eight.y, frame.y);
  widen(eight.uv, frame.uv);
  frame.image.format = IMAGE_FORMAT_YUV420SP_10BIT;
  frame.image.width = width;
  frame.image.height = height;
  frame.image.stride = 0;
  bind(frame);
  return frame;
}

Frame upscale2x(const Frame& frame) {
  const Image& in = frame.image;
  const int width = in.width, height = in.height;
  const int pitch = in.stride == 0 ? width : in.stride;
  Frame big;
  big.y.resize(static_cast<size_t>(4) * width * height);
  big.uv.resize(static_cast<size_t>(2) * width * height);
  for (int row = 0; row < 2 * height; ++row) {
    for (int col = 0; col < 2 * width; ++col) {
      big.y[static_cast<size_t>(row) * 2 * width + col] =
          frame.y[static_cast<size_t>(row / 2) * pitch + col / 2];
    }
  }
  for (int row = 0; row < height; ++row) {
    for (int pair = 0; pair < width; ++pair) {
      const uint8_t* src =
          &frame.uv[static_cast<size_t>(row / 2) * pitch + 2 * (pair / 2)];
      uint8_t* dst = &big.uv[static_cast<size_t>(row) * 2 * width + 2 * pair];
      dst[0] = src[0];
      dst[1] = src[1];
    }
  }
  big.image = in;
  big.image.width = 2 * width;
  big.image.height = 2 * height;
  big.image.stride = 0;
  bind(big);
  return big;
}

}  // namespace pavona::testing
