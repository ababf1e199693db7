// The test suites' synthetic scenes as GStreamer buffers.
#ifndef PAVONA_GST_TESTS_TEST_FRAMES_H_
#define PAVONA_GST_TESTS_TEST_FRAMES_H_

#include <gst/video/video.h>

#include <string>

namespace pavona::gsttest {

// A scene (varied by `seed`) as an NV12, NV21 or P010_10LE buffer with
// video meta. `chroma_pad` extra bytes end each chroma row, so the two
// planes' strides differ.
GstBuffer* makeBuffer(GstVideoFormat format, int width, int height, int seed,
                      int chroma_pad = 0);

// Caps for such a buffer.
std::string capsFor(GstVideoFormat format, int width, int height);

}  // namespace pavona::gsttest

#endif  // PAVONA_GST_TESTS_TEST_FRAMES_H_
