// The cases the AArch64 guest counts, one a process: each runs its work
// once unmarked to warm up, then marks each repeat as a region for the
// counting plugin. What the table needs beyond counts (passes) goes to
// standard output.
#ifndef PAVONA_BENCH_AARCH64_COUNTED_CASES_H_
#define PAVONA_BENCH_AARCH64_COUNTED_CASES_H_

#include <vector>

#include "bench/aarch64/count_marker.h"
#include "src/neon/KMeansAlgo_neon.h"

namespace bench {

// Marked repeats of a stage; stages repeat to the instruction.
constexpr int kCountedRepeats = 3;
// Frames through the table after the warm-up: a fixed run from process
// start, so that rand() draws the same sequence on every run.
constexpr int kCountedFrames = 20;

// Runs `work` once, then `repeats` times as marked regions.
template <class Work>
void countRepeats(int repeats, Work&& work) {
  work();
  for (int i = 0; i < repeats; ++i) {
    pavonaCountMark(PAVONA_COUNT_START);
    work();
    pavonaCountMark(PAVONA_COUNT_STOP);
  }
}

// The working points of the photo frame, as our engine prepares them.
std::vector<_Point> workingPoints();

// Ours. Stages: "resize", "convert", "kmeans", "select", "preview";
// "floor" sums the points of the k-means lists once; "frame" is the whole
// frame through the entry table.
void countPavona(const char* what, int k);
// A bundled photograph's raw NV21 frame (packed rows) at `path`, whole
// through the entry table as the pavona tool runs it.
void countSample(const char* path, int width, int height, int k);
// libyuv: "resize", "convert".
void countLibyuv(const char* what, int k);
// OpenCV: "resize", "convert", "kmeans", "frame".
void countOpenCV(const char* what, int k);

}  // namespace bench

#endif  // PAVONA_BENCH_AARCH64_COUNTED_CASES_H_
