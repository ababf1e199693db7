// The tool's preview of one result: the frame, downscaled, above a strip
// of the palette's colours.
#ifndef PAVONA_TOOLS_PAVONA_PALETTE_PREVIEW_H_
#define PAVONA_TOOLS_PAVONA_PALETTE_PREVIEW_H_

#include "tools/pavona/frame_report.h"
#include "tools/pavona/rgb_image.h"
#include "tools/pavona/yuv_frame.h"

namespace pavona::tool {

// The preview's width at most; smaller frames keep their own width.
inline constexpr int kPreviewWidth = 320;
// The swatch strip below the picture, after a white gap.
inline constexpr int kPreviewGap = 4;
inline constexpr int kPreviewStripHeight = 48;

// The frame's thumbnail (frameThumbnail) on white, and below it one swatch
// per row in the plug-in's order, left to right, each as wide as the row's
// share of the strip (equal widths when shares are unknown), in the row's
// #RRGGBB.
RgbImage renderPreview(const YuvFrame& frame, const FrameReport& report);

}  // namespace pavona::tool

#endif  // PAVONA_TOOLS_PAVONA_PALETTE_PREVIEW_H_
