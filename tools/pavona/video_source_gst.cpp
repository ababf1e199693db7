// The video input through GStreamer: uridecodebin decodes whatever the
// installed plug-ins can, videoconvert gives the frame layout, and an
// appsink hands over one frame at a time.
#include <gst/app/gstappsink.h>
#include <gst/gst.h>
#include <gst/video/video.h>

#include <cstring>

#include "tools/pavona/tool_error.h"
#include "tools/pavona/video_source.h"

namespace pavona::tool {
namespace {

// How long one wait for a frame lasts before the bus is checked for an
// error that stopped the stream (an appsink alone would wait forever).
constexpr GstClockTime kPollInterval = 100 * GST_MSECOND;

const char* capsFormats(std::optional<IMAGE_FORMAT_TYPE> format) {
  if (!format) return "{ NV21, P010_10LE }";
  switch (*format) {
    case IMAGE_FORMAT_NV12:
      return "NV12";
    case IMAGE_FORMAT_YUV420SP_10BIT:
      return "P010_10LE";
    default:
      return "NV21";
  }
}

IMAGE_FORMAT_TYPE frameFormat(GstVideoFormat format) {
  switch (format) {
    case GST_VIDEO_FORMAT_NV12:
      return IMAGE_FORMAT_NV12;
    case GST_VIDEO_FORMAT_P010_10LE:
      return IMAGE_FORMAT_YUV420SP_10BIT;
    default:
      return IMAGE_FORMAT_NV21;
  }
}

// Copies `rows` rows of `bytes` each. P010 keeps its 10 bits at the top of
// each 16-bit word; the plug-in wants them at the bottom.
void copyPlane(const uint8_t* from, int fromStride, uint8_t* to, int bytes,
               int rows, bool p010) {
  for (int row = 0; row < rows; ++row) {
    const uint8_t* source = from + static_cast<ptrdiff_t>(fromStride) * row;
    uint8_t* target = to + static_cast<ptrdiff_t>(bytes) * row;
    if (!p010) {
      std::memcpy(target, source, bytes);
      continue;
    }
    for (int i = 0; i < bytes; i += 2) {
      uint16_t word;
      std::memcpy(&word, source + i, 2);
      word = static_cast<uint16_t>(word >> 6);
      std::memcpy(target + i, &word, 2);
    }
  }
}

std::string gstError(GstMessage* message) {
  GError* error = nullptr;
  gst_message_parse_error(message, &error, nullptr);
  std::string text = error != nullptr ? error->message : "unknown error";
  g_clear_error(&error);
  return text;
}

}  // namespace

struct VideoSource::Pipeline {
  GstElement* pipeline = nullptr;
  GstAppSink* sink = nullptr;
  GstBus* bus = nullptr;

  ~Pipeline() {
    if (pipeline != nullptr) gst_element_set_state(pipeline, GST_STATE_NULL);
    if (bus != nullptr) gst_object_unref(bus);
    if (sink != nullptr) gst_object_unref(sink);
    if (pipeline != nullptr) gst_object_unref(pipeline);
  }

  // Throws the first error the pipeline posted, if any.
  void checkBus() {
    GstMessage* message = gst_bus_pop_filtered(bus, GST_MESSAGE_ERROR);
    if (message == nullptr) return;
    const std::string text = gstError(message);
    gst_message_unref(message);
    throw ToolError(text);
  }
};

VideoSource::VideoSource(const std::string& path,
                         std::optional<IMAGE_FORMAT_TYPE> format)
    : pipeline_(std::make_unique<Pipeline>()) {
  GError* error = nullptr;
  static const bool started = gst_init_check(nullptr, nullptr, &error);
  if (!started) {
    const std::string text = error != nullptr ? error->message : "";
    g_clear_error(&error);
    throw ToolError("GStreamer does not start: " + text);
  }
  gchar* uri = gst_filename_to_uri(path.c_str(), &error);
  if (uri == nullptr) {
    g_clear_error(&error);
    throw ToolError("not a file name GStreamer can open");
  }
  // Only video streams are decoded and exposed; audio is left alone.
  const std::string description =
      std::string(
          "uridecodebin caps=video/x-raw expose-all-streams=false "
          "uri=\"") +
      uri + "\" ! videoconvert ! appsink name=sink sync=false " +
      "max-buffers=4 caps=\"video/x-raw, format=(string)" +
      capsFormats(format) + "\"";
  g_free(uri);
  pipeline_->pipeline = gst_parse_launch(description.c_str(), &error);
  if (pipeline_->pipeline == nullptr || error != nullptr) {
    const std::string text = error != nullptr ? error->message : "";
    g_clear_error(&error);
    throw ToolError("GStreamer lacks what video needs: " + text);
  }
  pipeline_->sink =
      GST_APP_SINK(gst_bin_get_by_name(GST_BIN(pipeline_->pipeline), "sink"));
  pipeline_->bus = gst_element_get_bus(pipeline_->pipeline);
  if (gst_element_set_state(pipeline_->pipeline, GST_STATE_PLAYING) ==
      GST_STATE_CHANGE_FAILURE) {
    pipeline_->checkBus();
    throw ToolError("the pipeline does not start");
  }
}

VideoSource::~VideoSource() = default;

bool VideoSource::next(VideoFrame* out) {
  GstSample* sample = nullptr;
  while (sample == nullptr) {
    pipeline_->checkBus();
    if (gst_app_sink_is_eos(pipeline_->sink)) return false;
    sample = gst_app_sink_try_pull_sample(pipeline_->sink, kPollInterval);
  }
  if (out == nullptr) {
    gst_sample_unref(sample);
    return true;
  }
  GstVideoInfo info;
  GstVideoFrame mapped;
  GstBuffer* buffer = gst_sample_get_buffer(sample);
  if (!gst_video_info_from_caps(&info, gst_sample_get_caps(sample)) ||
      !gst_video_frame_map(&mapped, &info, buffer, GST_MAP_READ)) {
    gst_sample_unref(sample);
    throw ToolError("a frame without a readable layout");
  }
  YuvFrame& frame = out->frame;
  frame.format = frameFormat(GST_VIDEO_INFO_FORMAT(&info));
  frame.width = GST_VIDEO_INFO_WIDTH(&info) & ~1;
  frame.height = GST_VIDEO_INFO_HEIGHT(&info) & ~1;
  frame.stride = frame.width * bytesPerSample(frame.format);
  frame.bytes.resize(static_cast<size_t>(frame.stride) * frame.height * 3 / 2);
  const bool p010 = frame.format == IMAGE_FORMAT_YUV420SP_10BIT;
  for (int plane = 0; plane < 2; ++plane) {
    copyPlane(
        static_cast<const uint8_t*>(GST_VIDEO_FRAME_PLANE_DATA(&mapped, plane)),
        GST_VIDEO_FRAME_PLANE_STRIDE(&mapped, plane),
        plane == 0 ? frame.yPlane() : frame.uvPlane(), frame.stride,
        plane == 0 ? frame.height : frame.height / 2, p010);
  }
  gst_video_frame_unmap(&mapped);
  const GstClockTime pts = GST_BUFFER_PTS(buffer);
  out->seconds =
      GST_CLOCK_TIME_IS_VALID(pts) ? static_cast<double>(pts) / GST_SECOND : 0;
  gst_sample_unref(sample);
  return true;
}

double VideoSource::durationSeconds() const {
  gint64 duration = 0;
  if (!gst_element_query_duration(pipeline_->pipeline, GST_FORMAT_TIME,
                                  &duration) ||
      duration <= 0) {
    return 0;
  }
  return static_cast<double>(duration) / GST_SECOND;
}

}  // namespace pavona::tool
