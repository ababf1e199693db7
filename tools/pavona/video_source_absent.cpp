// The video input of a tool built without GStreamer: says so and stops.
#include "tools/pavona/tool_error.h"
#include "tools/pavona/video_source.h"

namespace pavona::tool {

struct VideoSource::Pipeline {};

VideoSource::VideoSource(const std::string&, std::optional<IMAGE_FORMAT_TYPE>) {
  throw ToolError(
      "not a PNG or JPEG file, and video needs GStreamer, which this pavona "
      "was built without (install the gstreamer-1.0, -app and -video "
      "development files and rebuild; use --raw for camera frames)");
}

VideoSource::~VideoSource() = default;

bool VideoSource::next(VideoFrame*) { return false; }

double VideoSource::durationSeconds() const { return 0; }

}  // namespace pavona::tool
