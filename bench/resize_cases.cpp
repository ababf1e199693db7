#include "bench/resize_cases.h"

#include <set>

namespace bench {

namespace {

std::string size(ResizeCase to) {
  return std::to_string(to.width) + "x" + std::to_string(to.height);
}

// Distinct rows trunc(y * srcRows / dstRows) for y < dstRows, in float as
// the resize forms them.
std::size_t sampledRows(int srcRows, int dstRows) {
  const float scale = static_cast<float>(srcRows) / static_cast<float>(dstRows);
  std::set<int> rows;
  for (int y = 0; y < dstRows; ++y) {
    rows.insert(static_cast<int>(static_cast<float>(y) * scale));
  }
  return rows.size();
}

}  // namespace

std::string resizeName(ResizeCase to, Cache cache, const char* implementation) {
  return "resize/" + std::to_string(kFrameWidth) + "x" +
         std::to_string(kFrameHeight) + "_to_" + size(to) + "_" +
         cacheName(cache) + "/" + implementation;
}

std::string touchedCopyName(ResizeCase to, Cache cache) {
  return "memcpy/rows_of_" + size(to) + "_" + cacheName(cache) + "/memcpy";
}

std::size_t touchedBytes(ResizeCase to) {
  const std::size_t rows = sampledRows(kFrameHeight, to.height) +
                           sampledRows(kFrameHeight / 2, to.height / 2);
  return rows * kFrameStride;
}

ResizeOutput::ResizeOutput(ResizeCase to)
    : size(to),
      y(new uint8_t[std::size_t{1} * to.width * to.height]()),
      vu(new uint8_t[std::size_t{1} * to.width * to.height / 2]()) {}

}  // namespace bench
