#include "frame_record.h"

#include <string.h>

IMAGE_FORMAT_TYPE pavona_image_format(GstVideoFormat format) {
  switch (format) {
    case GST_VIDEO_FORMAT_NV12:
      return IMAGE_FORMAT_NV12;
    case GST_VIDEO_FORMAT_NV21:
      return IMAGE_FORMAT_NV21;
    case GST_VIDEO_FORMAT_P010_10LE:
      return IMAGE_FORMAT_YUV420SP_10BIT;
    default:
      return (IMAGE_FORMAT_TYPE)0;
  }
}

static guint8* scratch_bytes(PavonaScratch* scratch, gsize size) {
  if (scratch->size < size) {
    g_free(scratch->data);
    scratch->data = g_malloc(size);
    scratch->size = size;
  }
  return scratch->data;
}

void pavona_scratch_reset(PavonaScratch* scratch, const GstVideoInfo* info) {
  pavona_scratch_free(scratch);
  if (GST_VIDEO_INFO_FORMAT(info) == GST_VIDEO_FORMAT_P010_10LE) {
    scratch_bytes(scratch, (gsize)GST_VIDEO_INFO_WIDTH(info) *
                               GST_VIDEO_INFO_HEIGHT(info) * 3 / 2 *
                               sizeof(guint16));
  }
}

void pavona_scratch_free(PavonaScratch* scratch) {
  g_free(scratch->data);
  scratch->data = NULL;
  scratch->size = 0;
}

/* P010 keeps its 10 bits at the top of each little-endian word. Its rows
 * are word-aligned, so the loop reads words and vectorises. */
static void shift_p010_rows(guint16* dst, const guint8* src, gint src_stride,
                            gint samples, gint rows) {
  for (gint row = 0; row < rows; ++row) {
    const guint16* in = (const guint16*)(src + (gsize)row * src_stride);
    for (gint i = 0; i < samples; ++i) dst[i] = GUINT16_FROM_LE(in[i]) >> 6;
    dst += samples;
  }
}

void pavona_frame_record_fill(Image* image, const GstVideoFrame* frame,
                              PavonaScratch* scratch) {
  const gint width = GST_VIDEO_FRAME_WIDTH(frame);
  const gint height = GST_VIDEO_FRAME_HEIGHT(frame);
  const gint y_stride = GST_VIDEO_FRAME_PLANE_STRIDE(frame, 0);
  const gint uv_stride = GST_VIDEO_FRAME_PLANE_STRIDE(frame, 1);
  guint8* y_plane = GST_VIDEO_FRAME_PLANE_DATA(frame, 0);
  guint8* uv_plane = GST_VIDEO_FRAME_PLANE_DATA(frame, 1);

  memset(image, 0, sizeof *image);
  image->format = pavona_image_format(GST_VIDEO_FRAME_FORMAT(frame));
  image->width = width;
  image->height = height;
  if (image->format == IMAGE_FORMAT_YUV420SP_10BIT) {
    guint16* words = (guint16*)scratch->data;
    shift_p010_rows(words, y_plane, y_stride, width, height);
    shift_p010_rows(words + (gsize)width * height, uv_plane, uv_stride, width,
                    height / 2);
    image->stride = width * (gint)sizeof(guint16);
    image->yPlane = words;
    image->uvPlane = words + (gsize)width * height;
    return;
  }
  image->stride = y_stride;
  image->yPlane = y_plane;
  image->uvPlane = uv_plane;
  if (uv_stride != y_stride) {
    guint8* rows = scratch_bytes(scratch, (gsize)y_stride * (height / 2));
    for (gint row = 0; row < height / 2; ++row) {
      memcpy(rows + (gsize)row * y_stride, uv_plane + (gsize)row * uv_stride,
             width);
    }
    image->uvPlane = rows;
  }
}
