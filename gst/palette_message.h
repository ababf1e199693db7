/* The structure of the `pavona-palette` element message. */
#ifndef PAVONA_GST_PALETTE_MESSAGE_H_
#define PAVONA_GST_PALETTE_MESSAGE_H_

#include <gst/gst.h>

#include "palette.h"

G_BEGIN_DECLS

/* The times are the buffer's, as GstBaseTransform's segment gives them. */
GstStructure* pavona_palette_structure_new(const PavonaPalette* palette,
                                           GstClockTime timestamp,
                                           GstClockTime stream_time,
                                           GstClockTime running_time,
                                           GstClockTime duration);

G_END_DECLS

#endif /* PAVONA_GST_PALETTE_MESSAGE_H_ */
