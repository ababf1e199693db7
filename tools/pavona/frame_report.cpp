#include "tools/pavona/frame_report.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace pavona::tool {
namespace {

int toByte(float value, IMAGE_FORMAT_TYPE format) {
  const double scaled = format == IMAGE_FORMAT_YUV420SP_10BIT
                            ? value * 255.0 / 1023.0
                            : static_cast<double>(value);
  return static_cast<int>(std::lround(std::clamp(scaled, 0.0, 255.0)));
}

}  // namespace

std::string hexColour(const PaletteColour& colour, IMAGE_FORMAT_TYPE format) {
  char text[8];
  std::snprintf(text, sizeof text, "#%02X%02X%02X", toByte(colour.r, format),
                toByte(colour.g, format), toByte(colour.b, format));
  return text;
}

double sharePercent(const PaletteColour& colour, const FrameReport& report) {
  const int points = report.workingWidth * report.workingHeight;
  if (colour.members < 0 || points <= 0) return -1;
  return 100.0 * colour.members / points;
}

}  // namespace pavona::tool
