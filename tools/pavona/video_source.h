// Decodes video files into the frames a camera would hand the plug-in.
#ifndef PAVONA_TOOLS_PAVONA_VIDEO_SOURCE_H_
#define PAVONA_TOOLS_PAVONA_VIDEO_SOURCE_H_

#include <memory>
#include <optional>
#include <string>

#include "api/pavona_host.h"
#include "tools/pavona/yuv_frame.h"

namespace pavona::tool {

struct VideoFrame {
  YuvFrame frame;
  double seconds = 0;  // presentation time from the start of the stream
};

class VideoSource {
 public:
  // Opens anything GStreamer can decode. Frames come as `format`, or when
  // none is given, NV21 from 8-bit sources and the 10-bit layout from
  // deeper ones. Throws ToolError when this build of the tool has no video
  // support or GStreamer cannot start; errors in the file itself show up
  // at the first next().
  VideoSource(const std::string& path, std::optional<IMAGE_FORMAT_TYPE> format);
  ~VideoSource();
  VideoSource(const VideoSource&) = delete;
  VideoSource& operator=(const VideoSource&) = delete;

  // The next frame, cropped to even sides with packed rows; false at the
  // end of the stream. A null `frame` passes over the frame without
  // copying it. Throws ToolError with GStreamer's reason when decoding
  // fails.
  bool next(VideoFrame* frame);
  // The stream's length, or 0 when the container does not say.
  double durationSeconds() const;

 private:
  struct Pipeline;
  std::unique_ptr<Pipeline> pipeline_;
};

}  // namespace pavona::tool

#endif  // PAVONA_TOOLS_PAVONA_VIDEO_SOURCE_H_
