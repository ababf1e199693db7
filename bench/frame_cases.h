// The whole-frame case: a 4000 x 3000 NV21 frame to a palette of three
// colours, warm and cold, beside its peer; ours also for more colours and
// with the preview rendered.
#ifndef PAVONA_BENCH_FRAME_CASES_H_
#define PAVONA_BENCH_FRAME_CASES_H_

#include <string>

#include "bench/nv21_frames.h"

namespace bench {

constexpr int kFrameColours = 3;
// The engine's working size for the frame: 1/32 of it, rounded down to
// even.
constexpr int kWorkingWidth = kFrameWidth / 32 & ~1;
constexpr int kWorkingHeight = kFrameHeight / 32 & ~1;

// "frame/4000x3000_k<colours>[_preview]_<warm|cold>/<implementation>"
std::string frameName(Cache cache, const char* implementation,
                      int colours = kFrameColours, bool preview = false);

}  // namespace bench

#endif  // PAVONA_BENCH_FRAME_CASES_H_
