#include "palette_message.h"

#include <math.h>

static guint to_byte(gfloat value, gint sample_max) {
  const gdouble scaled = value * 255.0 / sample_max;
  return (guint)lround(CLAMP(scaled, 0.0, 255.0));
}

static GstStructure* colour_structure(const PavonaPalette* palette, gint row) {
  const gfloat* c = palette->rgbl[row];
  const gint max = palette->sample_max;
  gchar hex[8];
  g_snprintf(hex, sizeof hex, "#%02X%02X%02X", to_byte(c[0], max),
             to_byte(c[1], max), to_byte(c[2], max));
  return gst_structure_new("color", "r", G_TYPE_DOUBLE, (gdouble)c[0], "g",
                           G_TYPE_DOUBLE, (gdouble)c[1], "b", G_TYPE_DOUBLE,
                           (gdouble)c[2], "lightness", G_TYPE_DOUBLE,
                           (gdouble)c[3], "hex", G_TYPE_STRING, hex, "share",
                           G_TYPE_DOUBLE, palette->share[row], NULL);
}

GstStructure* pavona_palette_structure_new(const PavonaPalette* palette,
                                           GstClockTime timestamp,
                                           GstClockTime stream_time,
                                           GstClockTime running_time,
                                           GstClockTime duration) {
  GValue colours = G_VALUE_INIT;
  gst_value_array_init(&colours, palette->rows);
  for (gint row = 0; row < palette->rows; ++row) {
    GValue colour = G_VALUE_INIT;
    g_value_init(&colour, GST_TYPE_STRUCTURE);
    g_value_take_boxed(&colour, colour_structure(palette, row));
    gst_value_array_append_and_take_value(&colours, &colour);
  }
  GstStructure* s = gst_structure_new(
      "pavona-palette", "timestamp", G_TYPE_UINT64, timestamp, "stream-time",
      G_TYPE_UINT64, stream_time, "running-time", G_TYPE_UINT64, running_time,
      "duration", G_TYPE_UINT64, duration, "passes", G_TYPE_INT,
      palette->passes, "working-width", G_TYPE_INT, palette->working_width,
      "working-height", G_TYPE_INT, palette->working_height, "analysis-time",
      G_TYPE_UINT64, palette->analysis_time, NULL);
  gst_structure_take_value(s, "colors", &colours);
  return s;
}
