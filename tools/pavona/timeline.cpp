#include "tools/pavona/timeline.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
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

bool ThumbnailPlaces::labelFits(int x, double seconds, int width) {
  return x == 0 || x + textWidth(timeLabel(seconds), kFontScale) <= width;
}

bool ThumbnailPlaces::take(int x, int thumbnailWidth, double seconds,
                           int width) {
  if (x < nextFree_ || thumbnailWidth == 0 || !labelFits(x, seconds, width)) {
    return false;
  }
  nextFree_ =
      x + std::max(thumbnailWidth, textWidth(timeLabel(seconds), kFontScale)) +
      kGap;
  return true;
}

void TimelineColumns::add(TimelineColumn column,
                          const std::function<RgbImage()>& draw) {
  const int x = static_cast<int>(columns_.size()) * kTimelineColumnWidth;
  // Once the placed column's time fits, it is shown wherever the timeline
  // ends, and no column after it before the next placed one is.
  if (placed_ >= 0 &&
      ThumbnailPlaces::labelFits(
          static_cast<int>(placed_) * kTimelineColumnWidth,
          columns_[placed_].seconds, x + kTimelineColumnWidth)) {
    for (size_t spare : spares_) {
      columns_[spare].thumbnail.pixels = std::vector<uint8_t>();
    }
    spares_.clear();
    placed_ = -1;
  }
  if (places_.take(x, column.thumbnail.width, column.seconds,
                   std::numeric_limits<int>::max())) {
    placed_ = static_cast<long>(columns_.size());
    column.thumbnail = draw();
  } else if (placed_ >= 0) {
    spares_.push_back(columns_.size());
    column.thumbnail = draw();
  }
  columns_.push_back(std::move(column));
}

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

  ThumbnailPlaces places;
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
    if (!places.take(x, column.thumbnail.width, column.seconds, image.width)) {
      continue;
    }
    paste(image, x, 0, column.thumbnail);
    const uint8_t ink[3] = {kInk, kInk, kInk};
    fill(image, x, bandsTop + kBandsHeight + 1, 1, kTickHeight, ink);
    drawText(image, x, labelsTop, timeLabel(column.seconds), kFontScale, kInk);
  }
  return image;
}

}  // namespace pavona::tool
