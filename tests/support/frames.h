// Synthetic camera frames for tests: semi-planar planes owned by vectors,
// described by an Image record laid out as the host lays it out.
#ifndef PAVONA_TESTS_SUPPORT_FRAMES_H_
#define PAVONA_TESTS_SUPPORT_FRAMES_H_

#include <cstdint>
#include <vector>

#include "api/pavona_host.h"

namespace pavona::testing {

struct Frame {
  std::vector<uint8_t> y;   // luma plane bytes
  std::vector<uint8_t> uv;  // chroma plane bytes
  Image image{};            // points into y and uv
};

// An 8-bit frame of `format` (NV21 or NV12): a smooth scene of a few
// coloured regions, varied by `seed`. Chroma bytes are written in the
// format's own order, so NV21 and NV12 frames of one seed show one scene.
Frame makeFrame8(IMAGE_FORMAT_TYPE format, int width, int height, int seed);

// The 10-bit frame of the same scene: every sample of makeFrame8's NV12
// frame times 4, in 16-bit words.
Frame makeFrame10(int width, int height, int seed);

// The same packed frame with every pixel repeated twice in each direction.
Frame upscale2x(const Frame& frame);

// Points `image` at the frame's current planes (after a copy or move).
void bind(Frame& frame);

}  // namespace pavona::testing

#endif  // PAVONA_TESTS_SUPPORT_FRAMES_H_
