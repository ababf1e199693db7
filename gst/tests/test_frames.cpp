#include "test_frames.h"

#include <cstring>

#include "tests/support/frames.h"

namespace pavona::gsttest {

GstBuffer* makeBuffer(GstVideoFormat format, int width, int height, int seed,
                      int chroma_pad) {
  const bool words = format == GST_VIDEO_FORMAT_P010_10LE;
  pavona::testing::Frame frame =
      words ? pavona::testing::makeFrame10(width, height, seed)
            : pavona::testing::makeFrame8(format == GST_VIDEO_FORMAT_NV21
                                              ? IMAGE_FORMAT_NV21
                                              : IMAGE_FORMAT_NV12,
                                          width, height, seed);
  const gsize row = static_cast<gsize>(width) * (words ? 2 : 1);
  const gsize luma = row * height;
  gint strides[2] = {static_cast<gint>(row),
                     static_cast<gint>(row + chroma_pad)};
  gsize offsets[2] = {0, luma};
  GstBuffer* buffer = gst_buffer_new_allocate(
      nullptr, luma + strides[1] * (height / 2), nullptr);
  GstMapInfo map;
  gst_buffer_map(buffer, &map, GST_MAP_WRITE);
  memset(map.data, 0x5A, map.size);  // the padding, which must not matter
  std::memcpy(map.data, frame.y.data(), luma);
  for (int r = 0; r < height / 2; ++r) {
    std::memcpy(map.data + luma + r * strides[1], frame.uv.data() + r * row,
                row);
  }
  if (words) {  // 0..1023 words to P010's top-aligned bits
    auto* samples = reinterpret_cast<guint16*>(map.data);
    for (gsize i = 0; i < map.size / 2; ++i) {
      samples[i] = GUINT16_TO_LE(static_cast<guint16>(samples[i] << 6));
    }
  }
  gst_buffer_unmap(buffer, &map);
  gst_buffer_add_video_meta_full(buffer, GST_VIDEO_FRAME_FLAG_NONE, format,
                                 width, height, 2, offsets, strides);
  return buffer;
}

std::string capsFor(GstVideoFormat format, int width, int height) {
  return std::string("video/x-raw,format=") +
         gst_video_format_to_string(format) +
         ",width=" + std::to_string(width) +
         ",height=" + std::to_string(height) + ",framerate=30/1";
}

}  // namespace pavona::gsttest
