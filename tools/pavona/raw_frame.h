// Camera frames dumped as raw bytes: NV21, NV12, or the 10-bit layout
// (16-bit little-endian words 0..1023, chroma U then V).
#ifndef PAVONA_TOOLS_PAVONA_RAW_FRAME_H_
#define PAVONA_TOOLS_PAVONA_RAW_FRAME_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "api/pavona_host.h"
#include "tools/pavona/yuv_frame.h"

namespace pavona::tool {

struct RawLayout {
  IMAGE_FORMAT_TYPE format = IMAGE_FORMAT_NV21;
  int width = 0;   // even, >= 2
  int height = 0;  // even, >= 2
  int stride = 0;  // bytes a row for both planes; 0 means packed
};

// Bytes a frame of `layout` occupies: every row but the last chroma row at
// full stride, the last one only as long as its samples.
int64_t rawFrameBytes(const RawLayout& layout);

// Wraps the bytes as a frame, keeping the stride so the plug-in sees the
// rows as the camera laid them out. Throws ToolError when `bytes` is too
// short; `note` receives a remark when it is longer than one frame with
// its last row padded to the stride.
YuvFrame rawFrameFromBytes(std::vector<uint8_t> bytes, const RawLayout& layout,
                           std::string* note);

}  // namespace pavona::tool

#endif  // PAVONA_TOOLS_PAVONA_RAW_FRAME_H_
