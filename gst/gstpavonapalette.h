/*
 * pavonapalette: a video filter that hands each frame to libPavona in
 * place and posts the dominant colours it finds as element messages.
 */
#ifndef PAVONA_GST_GSTPAVONAPALETTE_H_
#define PAVONA_GST_GSTPAVONAPALETTE_H_

#include <gst/video/gstvideofilter.h>

#include "frame_record.h"
#include "pavona_host.h"

G_BEGIN_DECLS

/* The element's properties; a frame is analysed with a copy taken as it
 * arrives. */
typedef struct PavonaPaletteSettings {
  gint colors;
  guint interval;
  gboolean post_messages;
  gboolean draw;
  gint seed;
  gdouble smooth;
} PavonaPaletteSettings;

#define GST_TYPE_PAVONA_PALETTE (gst_pavona_palette_get_type())
G_DECLARE_FINAL_TYPE(GstPavonaPalette, gst_pavona_palette, GST, PAVONA_PALETTE,
                     GstVideoFilter)

struct _GstPavonaPalette {
  GstVideoFilter parent;

  PavonaPaletteSettings props; /* under the object lock */

  /* Streaming state. */
  PavonaApi api;
  void* handle; /* one per negotiated caps */
  PavonaScratch scratch;
  guint64 frames;                /* since start, analysed or not */
  gboolean warned;               /* a refused frame has been reported */
  struct PavonaTracker* tracker; /* while smooth is above 0 */
  gdouble tracker_weight;
};

GST_ELEMENT_REGISTER_DECLARE(pavonapalette);

G_END_DECLS

#endif /* PAVONA_GST_GSTPAVONAPALETTE_H_ */
