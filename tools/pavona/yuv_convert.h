// Turns an RGB picture into the semi-planar frame a camera would deliver.
#ifndef PAVONA_TOOLS_PAVONA_YUV_CONVERT_H_
#define PAVONA_TOOLS_PAVONA_YUV_CONVERT_H_

#include "api/pavona_host.h"
#include "tools/pavona/rgb_image.h"
#include "tools/pavona/yuv_frame.h"

namespace pavona::tool {

// Full-range BT.601, the exact inverse of the plug-in's own YUV-to-RGB
// matrix (coefficients 1.402, 0.714, 0.344, 1.772), so a photograph keeps
// its colours through the round trip. Luma per pixel, chroma from the mean
// of each 2x2 block. An odd last column or row is cropped. 10-bit frames
// are computed at 10 bits (RGB scaled by 1023/255). Packed rows. Throws
// ToolError for pictures smaller than 2x2 or an unknown format.
YuvFrame rgbToSemiPlanar(const RgbImage& image, IMAGE_FORMAT_TYPE format);

}  // namespace pavona::tool

#endif  // PAVONA_TOOLS_PAVONA_YUV_CONVERT_H_
