#include "tools/pavona/frame_report.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace pavona::tool {
namespace {

uint8_t toByte(float value, IMAGE_FORMAT_TYPE format) {
  const double scaled = format == IMAGE_FORMAT_YUV420SP_10BIT
                            ? value * 255.0 / 1023.0
                            : static_cast<double>(value);
  return static_cast<uint8_t>(std::lround(std::clamp(scaled, 0.0, 255.0)));
}

}  // namespace

std::array<uint8_t, 3> colourBytes(const PaletteColour& colour,
                                   IMAGE_FORMAT_TYPE format) {
  return {toByte(colour.r, format), toByte(colour.g, format),
          toByte(colour.b, format)};
}

std::string hexColour(const PaletteColour& colour, IMAGE_FORMAT_TYPE format) {
  const std::array<uint8_t, 3> rgb = colourBytes(colour, format);
  char text[8];
  std::snprintf(text, sizeof text, "#%02X%02X%02X", rgb[0], rgb[1], rgb[2]);
  return text;
}

double sharePercent(const PaletteColour& colour, const FrameReport& report) {
  const int points = report.workingWidth * report.workingHeight;
  if (colour.members < 0 || points <= 0) return -1;
  return 100.0 * colour.members / points;
}

}  // namespace pavona::tool
