#include "tools/pavona/palette_preview.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "tools/pavona/frame_thumbnail.h"

namespace pavona::tool {

RgbImage renderPreview(const YuvFrame& frame, const FrameReport& report) {
  const RgbImage picture = frameThumbnail(frame, kPreviewWidth);
  RgbImage image;
  image.width = picture.width;
  image.height = picture.height + kPreviewGap + kPreviewStripHeight;
  image.pixels.assign(size_t{3} * image.width * image.height, 255);
  std::memcpy(image.pixels.data(), picture.pixels.data(),
              picture.pixels.size());

  double total = 0;
  for (const PaletteColour& colour : report.colours) {
    total += std::max(sharePercent(colour, report), 0.0);
  }
  double left = 0;
  for (const PaletteColour& colour : report.colours) {
    const double share = sharePercent(colour, report);
    const double part =
        total > 0 ? std::max(share, 0.0) / total : 1.0 / report.colours.size();
    const int from = static_cast<int>(std::lround(left * image.width));
    left += part;
    const int to = static_cast<int>(std::lround(left * image.width));
    const std::array<uint8_t, 3> rgb = colourBytes(colour, report.format);
    for (int y = picture.height + kPreviewGap; y < image.height; ++y) {
      for (int x = from; x < to; ++x) {
        std::memcpy(&image.pixels[3 * (size_t(y) * image.width + x)],
                    rgb.data(), 3);
      }
    }
  }
  return image;
}

}  // namespace pavona::tool
