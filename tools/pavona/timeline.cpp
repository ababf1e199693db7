#include "tools/pavona/timeline.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>

#include "tools/pavona/bitmap_font.h"

namespace pavona::tool {
namespace {

constexpr uint8_t kBackground = 32;
constexpr uint8_t kInk = 220;
constexpr int kGap = 6;
constexpr int kBandsHeight = 160;
constexpr int kTickHeight = 4;
constexpr int kFontScale = 2;

void fill(RgbImage& image, int x, int y, int width, int height,
          const uint8_t rgb[3]) {
  for (int row = y; row < y + height; ++row) {
    for (int col = x; col < std::min(x + width, image.width); ++col) {
      std::memcpy(&image.pixels[3 * (size_t(row) * image.width + col)], rgb, 3);
    }
  }
}

void paste(RgbImage& image, int x, int y, const RgbImage& picture) {
  const int width = std::min(picture.width, image.width - x);
  for (int row = 0; row < picture.height; ++row) {
    std::memcpy(&image.pixels[3 * (size_t(y + row) * image.width + x)],
                &picture.pixels[3 * size_t(row) * picture.width],
                3 * size_t(width));
  }
}

std::string timeLabel(double seconds) {
  char text[32];
  if (seconds < 60) {
    std::snprintf(text, sizeof text, "%.1fs", seconds);
  } else {
    const long whole = std::lround(seconds);
    std::snprintf(text, sizeof text, "%ld:%02ld", whole / 60, whole % 60);
  }
  return text;
}

}  // namespace

RgbImage renderTimeline(const std::vector<TimelineColumn>& columns) {
  int thumbnailHeight = 0;
  for (const TimelineColumn& column : columns) {
    thumbnailHeight = std::max(thumbnailHeight, column.thumbnail.height);
  }
  const int labelHeight = kGlyphHeight * kFontScale;
  const int bandsTop = thumbnailHeight + kGap;
  const int labelsTop = bandsTop + kBandsHeight + kTickHeight + 2;
  RgbImage image;
  image.width = std::max<int>(1, kTimelineColumnWidth * columns.size());
  image.height = labelsTop + labelHeight + kGap;
  image.pixels.assign(size_t{3} * image.width * image.height, kBackground);

  // A thumbnail (and a label) wherever the previous one has ended.
  int nextFree = 0;
  for (size_t i = 0; i < columns.size(); ++i) {
    const TimelineColumn& column = columns[i];
    const int x = static_cast<int>(i) * kTimelineColumnWidth;
    double total = 0;
    for (const TimelineBand& band : column.bands) total += band.share;
    double above = 0;
    for (const TimelineBand& band : column.bands) {
      if (total <= 0) break;
      const int top =
          static_cast<int>(std::lround(above / total * kBandsHeight));
      above += band.share;
      const int bottom =
          static_cast<int>(std::lround(above / total * kBandsHeight));
      const uint8_t rgb[3] = {band.r, band.g, band.b};
      fill(image, x, bandsTop + top, kTimelineColumnWidth, bottom - top, rgb);
    }
    const std::string label = timeLabel(column.seconds);
    if (x < nextFree || column.thumbnail.width == 0 ||
        (x > 0 && x + textWidth(label, kFontScale) > image.width)) {
      continue;
    }
    paste(image, x, 0, column.thumbnail);
    const uint8_t ink[3] = {kInk, kInk, kInk};
    fill(image, x, bandsTop + kBandsHeight + 1, 1, kTickHeight, ink);
    drawText(image, x, labelsTop, label, kFontScale, kInk);
    nextFree = x +
               std::max(column.thumbnail.width, textWidth(label, kFontScale)) +
               kGap;
  }
  return image;
}

}  // namespace pavona::tool
