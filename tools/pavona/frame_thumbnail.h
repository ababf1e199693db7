// A small RGB picture of a camera frame, for previews and timelines.
#ifndef PAVONA_TOOLS_PAVONA_FRAME_THUMBNAIL_H_
#define PAVONA_TOOLS_PAVONA_FRAME_THUMBNAIL_H_

#include "tools/pavona/rgb_image.h"
#include "tools/pavona/yuv_frame.h"

namespace pavona::tool {

// The frame scaled to `width` pixels across (never up), its height keeping
// the aspect ratio, sampled by nearest neighbour and converted with the
// plug-in's own YUV-to-RGB matrix (full-range BT.601). 10-bit samples are
// scaled to 8 bits.
RgbImage frameThumbnail(const YuvFrame& frame, int width);

// frameThumbnail's width and height, without its pixels.
RgbImage thumbnailShape(const YuvFrame& frame, int width);

}  // namespace pavona::tool

#endif  // PAVONA_TOOLS_PAVONA_FRAME_THUMBNAIL_H_
