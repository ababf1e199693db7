/*
 * The palette painted into the bottom of the frame itself: one swatch per
 * row, side by side, as wide as the row's share.
 */
#ifndef PAVONA_GST_PALETTE_BAND_H_
#define PAVONA_GST_PALETTE_BAND_H_

#include <gst/video/video.h>

#include "palette.h"

G_BEGIN_DECLS

/* Rows the band covers at the bottom of a frame `height` rows high. */
gint pavona_palette_band_height(gint height);

/* Paints into a frame mapped for writing, in its own format (NV12, NV21 or
 * P010_10LE). */
void pavona_palette_band_draw(GstVideoFrame* frame,
                              const PavonaPalette* palette);

G_END_DECLS

#endif /* PAVONA_GST_PALETTE_BAND_H_ */
