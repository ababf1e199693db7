/*
 * What the pavonapalette element costs a frame over the plug-in's own call:
 * one photograph, scaled and converted by GStreamer, goes through the table
 * alone and through the element under gst-check's harness, in NV12 and P010
 * at 1920x1080 and 4000x3000. Times are the calling thread's CPU time (the
 * harness runs the element in this thread); rounds of the two alternate and
 * the medians are compared.
 */
#include <fcntl.h>
#include <gst/app/gstappsink.h>
#include <gst/check/gstharness.h>
#include <gst/gst.h>
#include <gst/video/video.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

#include "frame_record.h"
#include "pavona_host.h"

enum { kRounds = 9, kFrames = 20, kSeed = 1 };

static double thread_seconds(void) {
  struct timespec t;
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
  return t.tv_sec + t.tv_nsec * 1e-9;
}

static int compare_doubles(const void* a, const void* b) {
  const double x = *(const double*)a, y = *(const double*)b;
  return (x > y) - (x < y);
}

static double median(double* values, int count) {
  qsort(values, count, sizeof *values, compare_doubles);
  return values[count / 2];
}

/* The photograph as one frame of `format`, decoded and scaled by GStreamer. */
static GstSample* photo_frame(const char* format, int width, int height) {
  gchar* launch = g_strdup_printf(
      "filesrc location=%s ! jpegdec ! videoscale ! videoconvert ! "
      "video/x-raw,format=%s,width=%d,height=%d ! appsink name=sink",
      PAVONA_BENCH_PHOTO, format, width, height);
  GstElement* pipeline = gst_parse_launch(launch, NULL);
  g_free(launch);
  GstElement* sink = gst_bin_get_by_name(GST_BIN(pipeline), "sink");
  gst_element_set_state(pipeline, GST_STATE_PLAYING);
  GstSample* sample = gst_app_sink_pull_sample(GST_APP_SINK(sink));
  gst_element_set_state(pipeline, GST_STATE_NULL);
  gst_object_unref(sink);
  gst_object_unref(pipeline);
  return sample;
}

static double plugin_round(const PavonaApi* api, void* handle, Image* image) {
  const double start = thread_seconds();
  for (int i = 0; i < kFrames; ++i) {
    ProcessParamData param;
    memset(&param, 0, sizeof param);
    param.colorNum = 3;
    srand(kSeed);
    api->singleProcessImage(handle, image, &param, NULL);
  }
  return (thread_seconds() - start) / kFrames;
}

/* The messages are the application's to read, after the timing. */
static double element_round(GstHarness* h, GstBus* bus, GstBuffer* buffer) {
  const double start = thread_seconds();
  for (int i = 0; i < kFrames; ++i) {
    gst_harness_push(h, gst_buffer_ref(buffer));
    gst_buffer_unref(gst_harness_pull(h));
  }
  const double seconds = (thread_seconds() - start) / kFrames;
  GstMessage* message;
  while ((message = gst_bus_pop(bus)) != NULL) gst_message_unref(message);
  return seconds;
}

static void bench_case(FILE* report, const PavonaApi* api, const char* format,
                       int width, int height) {
  GstSample* sample = photo_frame(format, width, height);
  GstBuffer* buffer = gst_sample_get_buffer(sample);
  GstVideoInfo info;
  gst_video_info_from_caps(&info, gst_sample_get_caps(sample));
  GstVideoFrame frame;
  gst_video_frame_map(&frame, &info, buffer, GST_MAP_READ);
  /* The element's own frame record, filled once, outside the timing. */
  PavonaScratch scratch = {NULL, 0};
  pavona_scratch_reset(&scratch, &info);
  Image image;
  pavona_frame_record_fill(&image, &frame, &scratch);
  InitParamData init;
  memset(&init, 0, sizeof init);
  init.width = width;
  init.height = height;
  init.format = image.format;
  void* handle = NULL;
  api->algoInitHandle(&handle, &init);

  gchar* launch = g_strdup_printf("pavonapalette seed=%d", kSeed);
  GstHarness* h = gst_harness_new_parse(launch);
  g_free(launch);
  GstBus* bus = gst_bus_new();
  gst_element_set_bus(h->element, bus);
  gst_harness_set_src_caps(h, gst_caps_ref(gst_sample_get_caps(sample)));

  double plugin[kRounds], element[kRounds];
  element_round(h, bus, buffer); /* warm-up: the handle, the scratch */
  for (int round = 0; round < kRounds; ++round) {
    plugin[round] = plugin_round(api, handle, &image);
    element[round] = element_round(h, bus, buffer);
  }
  const double p = median(plugin, kRounds), e = median(element, kRounds);
  fprintf(report, "%-10s %4dx%-4d %10.3f ms %10.3f ms %8.2f %+10.3f ms\n",
          format, width, height, p * 1e3, e * 1e3, e / p, (e - p) * 1e3);
  fflush(report);

  gst_harness_teardown(h);
  gst_object_unref(bus);
  api->releaseHandle(handle, NULL);
  pavona_scratch_free(&scratch);
  gst_video_frame_unmap(&frame);
  gst_sample_unref(sample);
}

int main(int argc, char** argv) {
  setenv("GST_PLUGIN_PATH", PAVONA_GST_PLUGIN_DIR, 0);
  setenv("GST_REGISTRY", PAVONA_GST_REGISTRY, 0);
  gst_init(&argc, &argv);
  /* The plug-in prints a line a frame on stdout; the report goes to the
   * original stdout. */
  FILE* report = fdopen(dup(STDOUT_FILENO), "w");
  const int devnull = open("/dev/null", O_WRONLY);
  dup2(devnull, STDOUT_FILENO);
  close(devnull);

  PavonaApi api;
  memset(&api, 0, sizeof api);
  get_algo_api(&api);
  api.setLogStatus(0);
  fprintf(report, "%-20s %13s %13s %8s %13s\n", "frame", "plug-in", "element",
          "ratio", "overhead");
  const int sizes[2][2] = {{1920, 1080}, {4000, 3000}};
  for (int s = 0; s < 2; ++s) {
    bench_case(report, &api, "NV12", sizes[s][0], sizes[s][1]);
    bench_case(report, &api, "P010_10LE", sizes[s][0], sizes[s][1]);
  }
  fclose(report);
  gst_deinit();
  return 0;
}
