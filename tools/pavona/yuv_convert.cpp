#include "tools/pavona/yuv_convert.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "tools/pavona/tool_error.h"

namespace pavona::tool {
namespace {

// The plug-in computes, with U and V centred on zero:
//   R = Y + 1.402 V,  G = Y - 0.714 V - 0.344 U,  B = Y + 1.772 U.
// Solving for Y with V = (R - Y) / 1.402 and U = (B - Y) / 1.772 gives
//   Y = (G + a R + b B) / (1 + a + b),  a = 0.714 / 1.402, b = 0.344 / 1.772.
constexpr double kA = 0.714 / 1.402;
constexpr double kB = 0.344 / 1.772;
constexpr double kLumaScale = 1.0 / (1.0 + kA + kB);

struct Yuv {
  double y;
  double u;  // centred on zero
  double v;
};

Yuv fromRgb(double r, double g, double b) {
  const double y = (g + kA * r + kB * b) * kLumaScale;
  return {y, (b - y) / 1.772, (r - y) / 1.402};
}

int roundClamp(double value, int maximum) {
  const double rounded = value + 0.5;
  if (rounded < 0) return 0;
  return std::min(static_cast<int>(rounded), maximum);
}

template <typename Sample>
void store(uint8_t* at, int value) {
  const Sample sample = static_cast<Sample>(value);
  std::memcpy(at, &sample, sizeof sample);
}

template <typename Sample>
void convert(const RgbImage& image, YuvFrame& frame, bool uFirst, int bits) {
  const double scale = bits == 10 ? 1023.0 / 255.0 : 1.0;
  const int maximum = (1 << bits) - 1;
  const double offset = 1 << (bits - 1);
  const size_t inStride = size_t{3} * image.width;
  uint8_t* const luma = frame.yPlane();
  uint8_t* const chroma = frame.uvPlane();
  for (int y = 0; y < frame.height; y += 2) {
    for (int x = 0; x < frame.width; x += 2) {
      double sumU = 0;
      double sumV = 0;
      for (int dy = 0; dy < 2; ++dy) {
        for (int dx = 0; dx < 2; ++dx) {
          const uint8_t* rgb =
              image.pixels.data() + (y + dy) * inStride + 3 * (x + dx);
          const Yuv yuv =
              fromRgb(rgb[0] * scale, rgb[1] * scale, rgb[2] * scale);
          store<Sample>(
              luma + size_t(y + dy) * frame.stride + (x + dx) * sizeof(Sample),
              roundClamp(yuv.y, maximum));
          sumU += yuv.u;
          sumV += yuv.v;
        }
      }
      const int u = roundClamp(sumU / 4 + offset, maximum);
      const int v = roundClamp(sumV / 4 + offset, maximum);
      uint8_t* pair =
          chroma + size_t(y / 2) * frame.stride + x * sizeof(Sample);
      store<Sample>(pair, uFirst ? u : v);
      store<Sample>(pair + sizeof(Sample), uFirst ? v : u);
    }
  }
}

}  // namespace

YuvFrame rgbToSemiPlanar(const RgbImage& image, IMAGE_FORMAT_TYPE format) {
  YuvFrame frame;
  frame.format = format;
  frame.width = image.width & ~1;
  frame.height = image.height & ~1;
  if (frame.width < 2 || frame.height < 2) {
    throw ToolError("picture too small (at least 2x2 pixels are needed)");
  }
  frame.stride = frame.width * bytesPerSample(format);
  frame.bytes.resize(size_t(frame.stride) * frame.height * 3 / 2);
  switch (format) {
    case IMAGE_FORMAT_NV21:
      convert<uint8_t>(image, frame, false, 8);
      break;
    case IMAGE_FORMAT_NV12:
      convert<uint8_t>(image, frame, true, 8);
      break;
    case IMAGE_FORMAT_YUV420SP_10BIT:
      convert<uint16_t>(image, frame, true, 10);
      break;
    default:
      throw ToolError("no conversion to frame format " +
                      std::to_string(static_cast<int>(format)));
  }
  return frame;
}

}  // namespace pavona::tool
