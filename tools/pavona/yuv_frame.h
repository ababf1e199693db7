// A camera frame as a host hands it to the plug-in: a luma plane of
// `height` rows followed by the interleaved chroma plane of height / 2
// rows, both `stride` bytes a row. 10-bit frames hold one native 16-bit
// word per sample.
#ifndef PAVONA_TOOLS_PAVONA_YUV_FRAME_H_
#define PAVONA_TOOLS_PAVONA_YUV_FRAME_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "api/pavona_host.h"

namespace pavona::tool {

struct YuvFrame {
  IMAGE_FORMAT_TYPE format = IMAGE_FORMAT_NV21;
  int width = 0;
  int height = 0;
  int stride = 0;
  std::vector<uint8_t> bytes;

  uint8_t* yPlane() { return bytes.data(); }
  uint8_t* uvPlane() {
    return bytes.data() + static_cast<size_t>(stride) * height;
  }
  const uint8_t* yPlane() const { return bytes.data(); }
  const uint8_t* uvPlane() const {
    return bytes.data() + static_cast<size_t>(stride) * height;
  }
};

// Bytes a sample takes in `format`: 2 for the 10-bit layout, else 1.
inline int bytesPerSample(IMAGE_FORMAT_TYPE format) {
  return format == IMAGE_FORMAT_YUV420SP_10BIT ? 2 : 1;
}

// "nv21", "nv12" or "yuv10", as the command line spells them.
inline const char* formatName(IMAGE_FORMAT_TYPE format) {
  switch (format) {
    case IMAGE_FORMAT_NV21:
      return "nv21";
    case IMAGE_FORMAT_NV12:
      return "nv12";
    case IMAGE_FORMAT_YUV420SP_10BIT:
      return "yuv10";
    default:
      return "unknown";
  }
}

}  // namespace pavona::tool

#endif  // PAVONA_TOOLS_PAVONA_YUV_FRAME_H_
