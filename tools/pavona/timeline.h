// A picture of palettes over time: one column per analysed frame, its
// colours stacked with heights by share, frame thumbnails above and time
// labels below.
#ifndef PAVONA_TOOLS_PAVONA_TIMELINE_H_
#define PAVONA_TOOLS_PAVONA_TIMELINE_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "tools/pavona/rgb_image.h"

namespace pavona::tool {

// Pixels across one frame's column.
inline constexpr int kTimelineColumnWidth = 4;
// Thumbnails are made this wide (or narrower for narrow timelines).
inline constexpr int kTimelineThumbnailWidth = 96;

struct TimelineBand {
  uint8_t r = 0;
  uint8_t g = 0;
  uint8_t b = 0;
  double share = 0;  // any scale: a column's bands fill it in proportion
};

struct TimelineColumn {
  double seconds = 0;
  RgbImage thumbnail;               // at most kTimelineThumbnailWidth wide
  std::vector<TimelineBand> bands;  // top to bottom
};

// Where a timeline's thumbnails go, column by column from the left: a
// column shows its thumbnail, and its time below the bands, when it starts
// past the room the previous one took and its time fits in the timeline.
class ThumbnailPlaces {
 public:
  // Whether the column at `x`, with a thumbnail `thumbnailWidth` across (0
  // for none) and the time `seconds`, shows them in a timeline `width`
  // pixels wide; if so, they take their room.
  bool take(int x, int thumbnailWidth, double seconds, int width);
  // Whether the time of a column at `x` fits in a timeline `width` wide.
  static bool labelFits(int x, double seconds, int width);

 private:
  int nextFree_ = 0;
};

// A timeline's columns as frames arrive, with a thumbnail's pixels only
// where renderTimeline may draw them, however many columns there will be.
class TimelineColumns {
 public:
  // Adds a column whose thumbnail has its size but no pixels; `draw` gives
  // them when they may be drawn.
  void add(TimelineColumn column, const std::function<RgbImage()>& draw);
  const std::vector<TimelineColumn>& columns() const { return columns_; }

 private:
  std::vector<TimelineColumn> columns_;
  ThumbnailPlaces places_;  // in a timeline without an end
  long placed_ = -1;        // the last column placed there, until it fits
  // The columns after it: if the timeline ends before its time fits, they
  // may take its room.
  std::vector<size_t> spares_;
};

// kTimelineColumnWidth x columns.size() pixels wide. Thumbnails of every
// column that starts a new thumbnail's width are shown above, each with
// its time below the bands.
RgbImage renderTimeline(const std::vector<TimelineColumn>& columns);

}  // namespace pavona::tool

#endif  // PAVONA_TOOLS_PAVONA_TIMELINE_H_
