// The resizes measured: a 4000 x 3000 NV21 frame, both planes, to the
// working size (our general path) and by the exact factors 2 and 4; and the
// names under which ours, the peers and their memcpy references appear.
#ifndef PAVONA_BENCH_RESIZE_CASES_H_
#define PAVONA_BENCH_RESIZE_CASES_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "bench/nv21_frames.h"

namespace bench {

struct ResizeCase {
  int width;
  int height;
};

constexpr ResizeCase kResizeCases[] = {{124, 92}, {2000, 1500}, {1000, 750}};

// "resize/4000x3000_to_<w>x<h>_<warm|cold>/<implementation>"
std::string resizeName(ResizeCase to, Cache cache, const char* implementation);

// "memcpy/rows_of_<w>x<h>_<warm|cold>/memcpy": a copy of as many bytes as
// the source rows the resize samples (see touchedBytes).
std::string touchedCopyName(ResizeCase to, Cache cache);

// Bytes of the distinct source rows, luma and chroma, that nearest-neighbour
// sampling reads for this size. Every sampled row is read across its width
// in steps below a cache line, so these are the bytes memory must deliver.
std::size_t touchedBytes(ResizeCase to);

// The destination planes of one case, packed, allocated and written once
// before any timing.
struct ResizeOutput {
  explicit ResizeOutput(ResizeCase to);
  ResizeCase size;
  std::unique_ptr<uint8_t[]> y;
  std::unique_ptr<uint8_t[]> vu;
};

}  // namespace bench

#endif  // PAVONA_BENCH_RESIZE_CASES_H_
