/*
 * One analysed frame's palette as the element publishes it: the rows the
 * plug-in wrote and what pavonaGetFrameInfo says about them.
 */
#ifndef PAVONA_GST_PALETTE_H_
#define PAVONA_GST_PALETTE_H_

#include <gst/gst.h>

#include "pavona_host.h"

G_BEGIN_DECLS

typedef struct PavonaPalette {
  gint rows;
  /* R, G, B and lightness exactly as the plug-in wrote them. */
  gfloat rgbl[PAVONA_MAX_COLORS][4];
  /* Each row's part of the working frame, 0..1. */
  gdouble share[PAVONA_MAX_COLORS];
  gint passes;
  gint working_width;
  gint working_height;
  gint sample_max; /* the frame's sample scale: 255, or 1023 for 10 bits */
  GstClockTime analysis_time; /* the plug-in's call, in nanoseconds */
} PavonaPalette;

G_END_DECLS

#endif /* PAVONA_GST_PALETTE_H_ */
