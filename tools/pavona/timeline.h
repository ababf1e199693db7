// A picture of palettes over time: one column per analysed frame, its
// colours stacked with heights by share, frame thumbnails above and time
// labels below.
#ifndef PAVONA_TOOLS_PAVONA_TIMELINE_H_
#define PAVONA_TOOLS_PAVONA_TIMELINE_H_

#include <cstdint>
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

// kTimelineColumnWidth x columns.size() pixels wide. Thumbnails of every
// column that starts a new thumbnail's width are shown above, each with
// its time below the bands.
RgbImage renderTimeline(const std::vector<TimelineColumn>& columns);

}  // namespace pavona::tool

#endif  // PAVONA_TOOLS_PAVONA_TIMELINE_H_
