#include "palette_band.h"

#include <math.h>

gint pavona_palette_band_height(gint height) {
  return MAX(2, (height / 8) & ~1);
}

/* Full-range BT.601 at full precision. The plug-in reads frames with this
 * matrix's inverse rounded to three decimals, so a swatch read back gives
 * the colour it stands for to within rounding. */
static void rgb_to_yuv(const gfloat* rgb, gint max, guint yuv[3]) {
  const gdouble r = rgb[0], g = rgb[1], b = rgb[2];
  const gdouble half = (max + 1) / 2;
  const gdouble v[3] = {0.299 * r + 0.587 * g + 0.114 * b,
                        half - 0.168736 * r - 0.331264 * g + 0.5 * b,
                        half + 0.5 * r - 0.418688 * g - 0.081312 * b};
  for (gint i = 0; i < 3; ++i) {
    yuv[i] = (guint)lround(CLAMP(v[i], 0.0, (gdouble)max));
  }
}

static void put_sample(guint8* row, gint index, guint value, gboolean words) {
  if (words) {
    GST_WRITE_UINT16_LE(row + 2 * index, value << 6);
  } else {
    row[index] = (guint8)value;
  }
}

static void fill_swatch(GstVideoFrame* frame, gint x0, gint x1, gint top,
                        const guint yuv[3]) {
  const gboolean words =
      GST_VIDEO_FRAME_FORMAT(frame) == GST_VIDEO_FORMAT_P010_10LE;
  const gboolean v_first =
      GST_VIDEO_FRAME_FORMAT(frame) == GST_VIDEO_FORMAT_NV21;
  const gint height = GST_VIDEO_FRAME_HEIGHT(frame);
  for (gint y = top; y < height; ++y) {
    guint8* row = (guint8*)GST_VIDEO_FRAME_PLANE_DATA(frame, 0) +
                  (gsize)y * GST_VIDEO_FRAME_PLANE_STRIDE(frame, 0);
    for (gint x = x0; x < x1; ++x) put_sample(row, x, yuv[0], words);
  }
  for (gint y = top / 2; y < height / 2; ++y) {
    guint8* row = (guint8*)GST_VIDEO_FRAME_PLANE_DATA(frame, 1) +
                  (gsize)y * GST_VIDEO_FRAME_PLANE_STRIDE(frame, 1);
    for (gint x = x0; x < x1; x += 2) {
      put_sample(row, x, yuv[v_first ? 2 : 1], words);
      put_sample(row, x + 1, yuv[v_first ? 1 : 2], words);
    }
  }
}

void pavona_palette_band_draw(GstVideoFrame* frame,
                              const PavonaPalette* palette) {
  const gint width = GST_VIDEO_FRAME_WIDTH(frame);
  const gint height = GST_VIDEO_FRAME_HEIGHT(frame);
  const gint top = height - pavona_palette_band_height(height);
  gdouble total = 0;
  for (gint row = 0; row < palette->rows; ++row) total += palette->share[row];
  if (total <= 0) return;
  /* Edges on even columns keep each chroma pair in one swatch; the last
   * swatch ends at the frame's edge, so the band is always full. */
  gdouble covered = 0;
  gint x0 = 0;
  for (gint row = 0; row < palette->rows; ++row) {
    covered += palette->share[row];
    const gint x1 = row + 1 == palette->rows
                        ? width
                        : (gint)lround(width * covered / total / 2) * 2;
    guint yuv[3];
    rgb_to_yuv(palette->rgbl[row], palette->sample_max, yuv);
    fill_swatch(frame, x0, x1, top, yuv);
    x0 = x1;
  }
}
