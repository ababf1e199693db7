#include "pipeline_run.h"

#include <gtest/gtest.h>

namespace pavona::gsttest {

void readBus(GstBus* bus, BusLog* log, bool until_end) {
  const auto types =
      static_cast<GstMessageType>(GST_MESSAGE_ELEMENT | GST_MESSAGE_EOS |
                                  GST_MESSAGE_ERROR | GST_MESSAGE_WARNING);
  for (;;) {
    GstMessage* message =
        gst_bus_timed_pop_filtered(bus, until_end ? 60 * GST_SECOND : 0, types);
    if (message == nullptr) {
      if (until_end) ADD_FAILURE() << "no EOS or error within a minute";
      return;
    }
    const GstMessageType type = GST_MESSAGE_TYPE(message);
    if (type == GST_MESSAGE_ELEMENT &&
        gst_message_has_name(message, "pavona-palette")) {
      log->palettes.emplace_back(
          gst_structure_copy(gst_message_get_structure(message)));
    } else if (type == GST_MESSAGE_WARNING) {
      ++log->warnings;
    } else if (type == GST_MESSAGE_ERROR && log->error.empty()) {
      GError* error = nullptr;
      gst_message_parse_error(message, &error, nullptr);
      log->error = error->message;
      g_error_free(error);
    }
    gst_message_unref(message);
    if (until_end && (type == GST_MESSAGE_EOS || type == GST_MESSAGE_ERROR)) {
      return;
    }
  }
}

BusLog playToEnd(GstElement* pipeline) {
  BusLog log;
  GstBus* bus = gst_element_get_bus(pipeline);
  gst_element_set_state(pipeline, GST_STATE_PLAYING);
  readBus(bus, &log, true);
  gst_element_set_state(pipeline, GST_STATE_NULL);
  gst_object_unref(bus);
  return log;
}

BusLog runPipeline(const std::string& description) {
  GError* error = nullptr;
  GstElement* pipeline = gst_parse_launch(description.c_str(), &error);
  if (error != nullptr) {
    ADD_FAILURE() << description << ": " << error->message;
    g_error_free(error);
    if (pipeline != nullptr) gst_object_unref(pipeline);
    return {};
  }
  BusLog log = playToEnd(pipeline);
  gst_object_unref(pipeline);
  return log;
}

std::string colorsOf(const GstStructure* palette) {
  gchar* text = gst_value_serialize(gst_structure_get_value(palette, "colors"));
  std::string colors = text != nullptr ? text : "";
  g_free(text);
  return colors;
}

}  // namespace pavona::gsttest
