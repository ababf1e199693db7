#include "tools/pavona/raw_frame.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "tools/pavona/tool_error.h"

namespace pavona::tool {
namespace {

int effectiveStride(const RawLayout& layout) {
  return layout.stride != 0 ? layout.stride
                            : layout.width * bytesPerSample(layout.format);
}

std::string describe(const RawLayout& layout) {
  return "a " + std::to_string(layout.width) + "x" +
         std::to_string(layout.height) + " " + formatName(layout.format) +
         " frame with stride " + std::to_string(effectiveStride(layout));
}

}  // namespace

int64_t rawFrameBytes(const RawLayout& layout) {
  const int64_t rows = int64_t{layout.height} * 3 / 2;
  const int64_t rowBytes =
      int64_t{layout.width} * bytesPerSample(layout.format);
  return (rows - 1) * effectiveStride(layout) + rowBytes;
}

YuvFrame rawFrameFromBytes(std::vector<uint8_t> bytes, const RawLayout& layout,
                           std::string* note) {
  const int64_t needed = rawFrameBytes(layout);
  const int64_t have = static_cast<int64_t>(bytes.size());
  if (have < needed) {
    throw ToolError(std::to_string(have) + " bytes, but " + describe(layout) +
                    " needs " + std::to_string(needed));
  }
  // Dumps often pad the last row too; only more than that is worth a word.
  const int64_t padded =
      int64_t{effectiveStride(layout)} * (int64_t{layout.height} * 3 / 2);
  if (have > std::max(needed, padded) && note != nullptr) {
    *note = std::to_string(have - std::max(needed, padded)) +
            " bytes more than " + describe(layout) + "; the rest is ignored";
  }
  YuvFrame frame;
  frame.format = layout.format;
  frame.width = layout.width;
  frame.height = layout.height;
  frame.stride = effectiveStride(layout);
  frame.bytes = std::move(bytes);
  // The plug-in reads whole rows of stride bytes; pad a short last row.
  frame.bytes.resize(size_t(frame.stride) * frame.height * 3 / 2);
  if (layout.format == IMAGE_FORMAT_YUV420SP_10BIT) {
    // Words arrive little-endian; the plug-in reads native ones.
    for (size_t i = 0; i + 1 < frame.bytes.size(); i += 2) {
      const uint16_t word = uint16_t(frame.bytes[i] | frame.bytes[i + 1] << 8);
      std::memcpy(&frame.bytes[i], &word, sizeof word);
    }
  }
  return frame;
}

}  // namespace pavona::tool
