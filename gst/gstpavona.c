/* The `pavona` plugin: one element, pavonapalette. */
#include "gstpavonapalette.h"

#define PACKAGE "Pavona"

static gboolean plugin_init(GstPlugin* plugin) {
  return GST_ELEMENT_REGISTER(pavonapalette, plugin);
}

/* The macro leaves the descriptor's reserved tail to zero-initialisation. */
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"
GST_PLUGIN_DEFINE(GST_VERSION_MAJOR, GST_VERSION_MINOR, pavona,
                  "Dominant colours of video frames with libPavona",
                  plugin_init, PAVONA_VERSION, "Proprietary", PACKAGE,
                  "Pavona camera plug-in")
#pragma GCC diagnostic pop
