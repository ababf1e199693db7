/*
 * pavonapalette: a video filter that hands each frame to libPavona in
 * place and posts the dominant colours it finds as element messages.
 */
#ifndef PAVONA_GST_GSTPAVONAPALETTE_H_
#define PAVONA_GST_GSTPAVONAPALETTE_H_

#include <gst/video/gstvideofilter.h>

G_BEGIN_DECLS

#define GST_TYPE_PAVONA_PALETTE (gst_pavona_palette_get_type())
G_DECLARE_FINAL_TYPE(GstPavonaPalette, gst_pavona_palette, GST, PAVONA_PALETTE,
                     GstVideoFilter)

GST_ELEMENT_REGISTER_DECLARE(pavonapalette);

G_END_DECLS

#endif /* PAVONA_GST_GSTPAVONAPALETTE_H_ */
