#include "gstpavonapalette.h"

#include <stdlib.h>

#include "frame_record.h"
#include "palette_band.h"
#include "palette_message.h"
#include "pavona_ext.h"
#include "pavona_host.h"
#include "tracker/palette_tracker_c.h"
#include "tracker/sample_scale.h"

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

GST_DEBUG_CATEGORY_STATIC(gst_pavona_palette_debug);
#define GST_CAT_DEFAULT gst_pavona_palette_debug

/* The plug-in works on a frame 1/32 of its init size each way, with even
 * sides; 64 is the least that leaves it 2 x 2 pixels. */
enum { kMinSide = 64 };
/* The plug-in trusts planes under 2 GiB. */
#define MAX_PLANE_BYTES ((guint64)G_MAXINT32)

enum {
  PROP_0,
  PROP_COLORS,
  PROP_INTERVAL,
  PROP_POST_MESSAGES,
  PROP_DRAW,
  PROP_SEED,
  PROP_SMOOTH
};

#define DEFAULT_COLORS 3
#define DEFAULT_INTERVAL 1
#define DEFAULT_POST_MESSAGES TRUE
#define DEFAULT_DRAW FALSE
#define DEFAULT_SEED (-1)
#define DEFAULT_SMOOTH 0.0

#define PAVONA_CAPS GST_VIDEO_CAPS_MAKE("{ NV12, NV21, P010_10LE }")

static GstStaticPadTemplate sink_template = GST_STATIC_PAD_TEMPLATE(
    "sink", GST_PAD_SINK, GST_PAD_ALWAYS, GST_STATIC_CAPS(PAVONA_CAPS));
static GstStaticPadTemplate src_template = GST_STATIC_PAD_TEMPLATE(
    "src", GST_PAD_SRC, GST_PAD_ALWAYS, GST_STATIC_CAPS(PAVONA_CAPS));

G_DEFINE_TYPE(GstPavonaPalette, gst_pavona_palette, GST_TYPE_VIDEO_FILTER);
GST_ELEMENT_REGISTER_DEFINE(pavonapalette, "pavonapalette", GST_RANK_NONE,
                            GST_TYPE_PAVONA_PALETTE);

/* The handle and the tracker both follow one stream. */
static void release_handle(GstPavonaPalette* self) {
  if (self->handle != NULL) {
    self->api.releaseHandle(self->handle, NULL);
    self->handle = NULL;
  }
  pavona_tracker_free(self->tracker);
  self->tracker = NULL;
  self->tracker_weight = 0;
}

static gboolean size_is_refused(const GstVideoInfo* info) {
  const gint width = GST_VIDEO_INFO_WIDTH(info);
  const gint height = GST_VIDEO_INFO_HEIGHT(info);
  const guint64 plane = (guint64)GST_VIDEO_INFO_PLANE_STRIDE(info, 0) * height;
  return width % 2 != 0 || height % 2 != 0 || width < kMinSide ||
         height < kMinSide || plane > MAX_PLANE_BYTES;
}

static gboolean gst_pavona_palette_set_info(GstVideoFilter* filter,
                                            GstCaps* incaps,
                                            GstVideoInfo* in_info,
                                            GstCaps* outcaps,
                                            GstVideoInfo* out_info) {
  GstPavonaPalette* self = GST_PAVONA_PALETTE(filter);
  (void)incaps;
  (void)outcaps;
  (void)out_info;
  release_handle(self);
  if (size_is_refused(in_info)) {
    GST_ELEMENT_ERROR(
        self, CORE, NEGOTIATION,
        ("pavonapalette takes even widths and heights of at least %d, with "
         "planes under 2 GiB; got %dx%d",
         kMinSide, GST_VIDEO_INFO_WIDTH(in_info),
         GST_VIDEO_INFO_HEIGHT(in_info)),
        ("the plug-in takes even sizes, and its working frame is 1/32 of "
         "the size each way with even sides: %d leaves it 2 pixels",
         kMinSide));
    return FALSE;
  }
  InitParamData init = {0};
  init.width = GST_VIDEO_INFO_WIDTH(in_info);
  init.height = GST_VIDEO_INFO_HEIGHT(in_info);
  init.format = pavona_image_format(GST_VIDEO_INFO_FORMAT(in_info));
  const int32_t status = self->api.algoInitHandle(&self->handle, &init);
  if (status != STATUS_SUCCESS || self->handle == NULL) {
    GST_ELEMENT_ERROR(self, LIBRARY, INIT,
                      ("libPavona could not make a handle for %dx%d",
                       init.width, init.height),
                      ("algoInitHandle returned %d", status));
    self->handle = NULL;
    return FALSE;
  }
  pavona_scratch_reset(&self->scratch, in_info);
  self->warned = FALSE;
  GST_DEBUG_OBJECT(self, "new handle for %dx%d, format %d", init.width,
                   init.height, init.format);
  return TRUE;
}

/* Runs the plug-in on `frame` and returns the frame's status from
 * pavonaGetFrameInfo; `palette` is filled when it is 0. */
static int32_t analyse(GstPavonaPalette* self, const GstVideoFrame* frame,
                       const PavonaPaletteSettings* settings,
                       PavonaPalette* palette) {
  Image image;
  pavona_frame_record_fill(&image, frame, &self->scratch);
  ProcessParamData param = {0};
  param.colorNum = settings->colors;
  if (settings->seed >= 0) srand((unsigned)settings->seed);
  const GstClockTime start = gst_util_get_timestamp();
  self->api.singleProcessImage(self->handle, &image, &param, NULL);
  palette->analysis_time = gst_util_get_timestamp() - start;

  PavonaFrameInfo info = {0};
  info.size = sizeof info;
  const int32_t result = pavonaGetFrameInfo(self->handle, &info);
  if (result != STATUS_SUCCESS) return result;
  if (info.status != STATUS_SUCCESS) return info.status;
  const gdouble points = (gdouble)info.workingWidth * info.workingHeight;
  palette->rows = CLAMP(info.rows, 0, PAVONA_MAX_COLORS);
  for (gint row = 0; row < palette->rows; ++row) {
    for (gint i = 0; i < 4; ++i) palette->rgbl[row][i] = param.palette[row][i];
    palette->share[row] = info.members[row] / points;
  }
  palette->passes = info.passes;
  palette->working_width = info.workingWidth;
  palette->working_height = info.workingHeight;
  palette->sample_max = pavona_sample_max(image.format);
  return STATUS_SUCCESS;
}

static void post_palette(GstPavonaPalette* self, const GstVideoFrame* frame,
                         const PavonaPalette* palette) {
  GstSegment* segment = &GST_BASE_TRANSFORM(self)->segment;
  const GstClockTime timestamp = GST_BUFFER_PTS(frame->buffer);
  GstStructure* s = pavona_palette_structure_new(
      palette, timestamp,
      gst_segment_to_stream_time(segment, GST_FORMAT_TIME, timestamp),
      gst_segment_to_running_time(segment, GST_FORMAT_TIME, timestamp),
      GST_BUFFER_DURATION(frame->buffer));
  gst_element_post_message(GST_ELEMENT(self),
                           gst_message_new_element(GST_OBJECT(self), s));
}

/* Runs the tracker on the rows when smoothing is on; a new weight starts
 * a new tracker. */
static void smooth_palette(GstPavonaPalette* self, gdouble weight,
                           PavonaPalette* palette) {
  if (weight != self->tracker_weight) {
    pavona_tracker_free(self->tracker);
    self->tracker = weight > 0 ? pavona_tracker_new(weight) : NULL;
    self->tracker_weight = weight;
  }
  if (self->tracker == NULL) return;
  pavona_tracker_update(self->tracker, palette->rgbl, palette->share,
                        palette->rows, palette->sample_max);
}

/* Everything done with an analysed frame's palette. */
static void publish(GstPavonaPalette* self, GstVideoFrame* frame,
                    const PavonaPaletteSettings* settings,
                    const PavonaPalette* palette) {
  /* The frame is writable only when it was mapped out of passthrough. */
  if (settings->draw && (frame->map[0].flags & GST_MAP_WRITE)) {
    pavona_palette_band_draw(frame, palette);
  }
  if (settings->post_messages) post_palette(self, frame, palette);
}

static GstFlowReturn gst_pavona_palette_transform_frame_ip(
    GstVideoFilter* filter, GstVideoFrame* frame) {
  GstPavonaPalette* self = GST_PAVONA_PALETTE(filter);
  PavonaPaletteSettings settings;
  GST_OBJECT_LOCK(self);
  settings = self->props;
  GST_OBJECT_UNLOCK(self);

  if (self->frames++ % settings.interval != 0) return GST_FLOW_OK;
  PavonaPalette palette;
  const int32_t status = analyse(self, frame, &settings, &palette);
  if (status != STATUS_SUCCESS) {
    if (!self->warned) {
      GST_ELEMENT_WARNING(self, STREAM, FAILED,
                          ("libPavona refused a frame (status %d); the stream "
                           "goes on and further refusals are not reported",
                           status),
                          (NULL));
      self->warned = TRUE;
    }
    return GST_FLOW_OK;
  }
  smooth_palette(self, settings.smooth, &palette);
  publish(self, frame, &settings, &palette);
  return GST_FLOW_OK;
}

static gboolean gst_pavona_palette_start(GstBaseTransform* trans) {
  GstPavonaPalette* self = GST_PAVONA_PALETTE(trans);
  self->frames = 0;
  self->warned = FALSE;
  return TRUE;
}

static gboolean gst_pavona_palette_stop(GstBaseTransform* trans) {
  GstPavonaPalette* self = GST_PAVONA_PALETTE(trans);
  release_handle(self);
  pavona_scratch_free(&self->scratch);
  return TRUE;
}

static void gst_pavona_palette_set_property(GObject* object, guint prop_id,
                                            const GValue* value,
                                            GParamSpec* pspec) {
  GstPavonaPalette* self = GST_PAVONA_PALETTE(object);
  GST_OBJECT_LOCK(self);
  switch (prop_id) {
    case PROP_COLORS:
      self->props.colors = g_value_get_int(value);
      break;
    case PROP_INTERVAL:
      self->props.interval = g_value_get_uint(value);
      break;
    case PROP_POST_MESSAGES:
      self->props.post_messages = g_value_get_boolean(value);
      break;
    case PROP_DRAW:
      self->props.draw = g_value_get_boolean(value);
      break;
    case PROP_SEED:
      self->props.seed = g_value_get_int(value);
      break;
    case PROP_SMOOTH:
      self->props.smooth = g_value_get_double(value);
      break;
    default:
      G_OBJECT_WARN_INVALID_PROPERTY_ID(object, prop_id, pspec);
      break;
  }
  const gboolean passthrough = !self->props.draw;
  GST_OBJECT_UNLOCK(self);
  /* Drawing needs a writable buffer; reading alone never copies one. */
  if (prop_id == PROP_DRAW) {
    gst_base_transform_set_passthrough(GST_BASE_TRANSFORM(self), passthrough);
  }
}

static void gst_pavona_palette_get_property(GObject* object, guint prop_id,
                                            GValue* value, GParamSpec* pspec) {
  GstPavonaPalette* self = GST_PAVONA_PALETTE(object);
  GST_OBJECT_LOCK(self);
  switch (prop_id) {
    case PROP_COLORS:
      g_value_set_int(value, self->props.colors);
      break;
    case PROP_INTERVAL:
      g_value_set_uint(value, self->props.interval);
      break;
    case PROP_POST_MESSAGES:
      g_value_set_boolean(value, self->props.post_messages);
      break;
    case PROP_DRAW:
      g_value_set_boolean(value, self->props.draw);
      break;
    case PROP_SEED:
      g_value_set_int(value, self->props.seed);
      break;
    case PROP_SMOOTH:
      g_value_set_double(value, self->props.smooth);
      break;
    default:
      G_OBJECT_WARN_INVALID_PROPERTY_ID(object, prop_id, pspec);
      break;
  }
  GST_OBJECT_UNLOCK(self);
}

static void gst_pavona_palette_finalize(GObject* object) {
  GstPavonaPalette* self = GST_PAVONA_PALETTE(object);
  release_handle(self);
  pavona_scratch_free(&self->scratch);
  G_OBJECT_CLASS(gst_pavona_palette_parent_class)->finalize(object);
}

static void gst_pavona_palette_class_init(GstPavonaPaletteClass* klass) {
  GObjectClass* gobject_class = G_OBJECT_CLASS(klass);
  GstElementClass* element_class = GST_ELEMENT_CLASS(klass);
  GstBaseTransformClass* trans_class = GST_BASE_TRANSFORM_CLASS(klass);
  GstVideoFilterClass* filter_class = GST_VIDEO_FILTER_CLASS(klass);
  const GParamFlags flags =
      G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS | GST_PARAM_MUTABLE_PLAYING;

  gobject_class->set_property = gst_pavona_palette_set_property;
  gobject_class->get_property = gst_pavona_palette_get_property;
  gobject_class->finalize = gst_pavona_palette_finalize;

  g_object_class_install_property(
      gobject_class, PROP_COLORS,
      g_param_spec_int("colors", "Colours",
                       "Colours to find in each frame; the plug-in may "
                       "write fewer when colours tie",
                       1, PAVONA_MAX_COLORS, DEFAULT_COLORS, flags));
  g_object_class_install_property(
      gobject_class, PROP_INTERVAL,
      g_param_spec_uint("interval", "Interval",
                        "Analyse every Nth frame, counted from the first "
                        "frame after start",
                        1, G_MAXUINT, DEFAULT_INTERVAL, flags));
  g_object_class_install_property(
      gobject_class, PROP_POST_MESSAGES,
      g_param_spec_boolean(
          "post-messages", "Post messages",
          "Post a pavona-palette element message for each analysed frame",
          DEFAULT_POST_MESSAGES, flags));
  g_object_class_install_property(
      gobject_class, PROP_DRAW,
      g_param_spec_boolean(
          "draw", "Draw",
          "Paint the palette into a band at the bottom of each analysed "
          "frame, one swatch per colour, as wide as its share (the buffer "
          "is then made writable, which may copy it)",
          DEFAULT_DRAW, flags));
  g_object_class_install_property(
      gobject_class, PROP_SEED,
      g_param_spec_int(
          "seed", "Seed",
          "When 0 or more, call srand(seed) before each analysed frame, so "
          "the same frame gives the same palette for every colour count. "
          "rand() is shared by the whole process: this reseeds it for "
          "every other user too. -1 leaves rand() alone",
          -1, G_MAXINT, DEFAULT_SEED, flags));
  g_object_class_install_property(
      gobject_class, PROP_SMOOTH,
      g_param_spec_double(
          "smooth", "Smooth",
          "When above 0, follow each colour from frame to frame, keep the "
          "rows in a stable order and move each colour by this weight "
          "towards the row it matches (in CIELAB); posted and drawn rows "
          "are then the smoothed ones. 0 posts the plug-in's rows as they "
          "are",
          0.0, 1.0, DEFAULT_SMOOTH, flags));

  gst_element_class_set_static_metadata(
      element_class, "Pavona palette", "Filter/Analyzer/Video",
      "Finds the dominant colours of each frame with libPavona and posts "
      "them as pavona-palette element messages",
      "Pavona developers");
  gst_element_class_add_static_pad_template(element_class, &sink_template);
  gst_element_class_add_static_pad_template(element_class, &src_template);

  trans_class->start = GST_DEBUG_FUNCPTR(gst_pavona_palette_start);
  trans_class->stop = GST_DEBUG_FUNCPTR(gst_pavona_palette_stop);
  filter_class->set_info = GST_DEBUG_FUNCPTR(gst_pavona_palette_set_info);
  filter_class->transform_frame_ip =
      GST_DEBUG_FUNCPTR(gst_pavona_palette_transform_frame_ip);

  GST_DEBUG_CATEGORY_INIT(gst_pavona_palette_debug, "pavonapalette", 0,
                          "Pavona palette element");
}

static void gst_pavona_palette_init(GstPavonaPalette* self) {
  self->props.colors = DEFAULT_COLORS;
  self->props.interval = DEFAULT_INTERVAL;
  self->props.post_messages = DEFAULT_POST_MESSAGES;
  self->props.draw = DEFAULT_DRAW;
  self->props.seed = DEFAULT_SEED;
  self->props.smooth = DEFAULT_SMOOTH;
  get_algo_api(&self->api);
  self->api.setLogStatus(0);
  gst_base_transform_set_in_place(GST_BASE_TRANSFORM(self), TRUE);
  gst_base_transform_set_passthrough(GST_BASE_TRANSFORM(self), !DEFAULT_DRAW);
}
