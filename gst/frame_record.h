/*
 * A mapped GstVideoFrame as the plug-in's frame record, which has one
 * stride for both planes and takes 10-bit samples as plain 16-bit words.
 */
#ifndef PAVONA_GST_FRAME_RECORD_H_
#define PAVONA_GST_FRAME_RECORD_H_

#include <gst/video/video.h>

#include "pavona_host.h"

G_BEGIN_DECLS

/* Room for what a frame cannot lend as it is: P010's samples shifted into
 * words, or NV12/NV21 chroma rows moved to the luma stride. */
typedef struct PavonaScratch {
  guint8* data;
  gsize size;
} PavonaScratch;

/* The plug-in's layout for a negotiated format; 0 for any other. */
IMAGE_FORMAT_TYPE pavona_image_format(GstVideoFormat format);

/* Sizes the scratch for new caps: P010 gets its words now, once; other
 * formats start empty and grow only if a frame needs it. */
void pavona_scratch_reset(PavonaScratch* scratch, const GstVideoInfo* info);
void pavona_scratch_free(PavonaScratch* scratch);

/* Fills `image` for `frame`: NV12 and NV21 planes are handed over as they
 * are unless their strides differ; P010 goes through the scratch. */
void pavona_frame_record_fill(Image* image, const GstVideoFrame* frame,
                              PavonaScratch* scratch);

G_END_DECLS

#endif /* PAVONA_GST_FRAME_RECORD_H_ */
