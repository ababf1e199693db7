// pavonapalette as GStreamer drives it: in pipelines from videotestsrc and
// from an encoded clip, and buffer by buffer under gst-check's harness.
#include <gst/check/gstharness.h>
#include <gst/gst.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include "pipeline_run.h"
#include "test_frames.h"

namespace pavona::gsttest {
namespace {

std::string testPattern(const std::string& caps, const std::string& element,
                        int frames, const char* pattern = "smpte") {
  return "videotestsrc num-buffers=" + std::to_string(frames) +
         " pattern=" + pattern + " ! " + caps + " ! " + element + " ! fakesink";
}

int intField(const GstStructure* s, const char* name) {
  int value = -1;
  EXPECT_TRUE(gst_structure_get_int(s, name, &value)) << name;
  return value;
}

guint64 timeField(const GstStructure* s, const char* name) {
  guint64 value = 0;
  EXPECT_TRUE(gst_structure_get_uint64(s, name, &value)) << name;
  return value;
}

// The harnessed element with a bus of its own, so its messages are kept.
struct Harnessed {
  GstHarness* h;
  GstBus* bus = gst_bus_new();
  BusLog log;
  explicit Harnessed(const char* launch) : h(gst_harness_new_parse(launch)) {
    gst_element_set_bus(h->element, bus);
  }
  ~Harnessed() {
    // Messages hold their element, which holds the bus: drop them first.
    gst_bus_set_flushing(bus, TRUE);
    gst_harness_teardown(h);
    gst_object_unref(bus);
  }
  // Pushes `in` and returns the buffer that comes out; keeps the messages.
  GstBuffer* push(GstBuffer* in) {
    EXPECT_EQ(gst_harness_push(h, in), GST_FLOW_OK);
    readBus(bus, &log, false);
    return gst_harness_pull(h);
  }
};

class Formats : public ::testing::TestWithParam<const char*> {};

TEST_P(Formats, VideoTestSrcGivesOneMessagePerAnalysedFrame) {
  const std::string caps =
      std::string("video/x-raw,format=") + GetParam() + ",width=320,height=240";
  for (unsigned interval : {1u, 3u}) {
    const BusLog log = runPipeline(testPattern(
        caps, "pavonapalette interval=" + std::to_string(interval), 7));
    ASSERT_EQ(log.error, "");
    ASSERT_EQ(log.palettes.size(), interval == 1 ? 7u : 3u);
    for (size_t i = 0; i < log.palettes.size(); ++i) {
      const GstStructure* s = log.palettes[i].get();
      const guint64 pts = gst_util_uint64_scale(i * interval, GST_SECOND, 30);
      EXPECT_EQ(timeField(s, "timestamp"), pts);
      EXPECT_EQ(timeField(s, "running-time"), pts);
      EXPECT_EQ(timeField(s, "stream-time"), pts);
      EXPECT_NEAR(timeField(s, "duration"), GST_SECOND / 30, 1);
      EXPECT_GT(timeField(s, "analysis-time"), 0u);
      EXPECT_GT(intField(s, "passes"), 0);
      EXPECT_EQ(intField(s, "working-width") * intField(s, "working-height"),
                10 * 6);
      const GValue* colors = gst_structure_get_value(s, "colors");
      const guint rows = gst_value_array_get_size(colors);
      ASSERT_GE(rows, 1u);
      ASSERT_LE(rows, 3u);
      const double scale = std::strcmp(GetParam(), "P010_10LE") ? 1 : 1023;
      double shares = 0;
      for (guint row = 0; row < rows; ++row) {
        const GstStructure* c =
            gst_value_get_structure(gst_value_array_get_value(colors, row));
        double rgb[3], lightness, share;
        ASSERT_TRUE(gst_structure_get(
            c, "r", G_TYPE_DOUBLE, &rgb[0], "g", G_TYPE_DOUBLE, &rgb[1], "b",
            G_TYPE_DOUBLE, &rgb[2], "lightness", G_TYPE_DOUBLE, &lightness,
            "share", G_TYPE_DOUBLE, &share, nullptr));
        char hex[8];
        std::snprintf(
            hex, sizeof hex, "#%02X%02X%02X",
            (int)std::lround(rgb[0] * 255 / (scale == 1 ? 255 : scale)),
            (int)std::lround(rgb[1] * 255 / (scale == 1 ? 255 : scale)),
            (int)std::lround(rgb[2] * 255 / (scale == 1 ? 255 : scale)));
        EXPECT_STREQ(gst_structure_get_string(c, "hex"), hex);
        EXPECT_GT(share, 0);
        shares += share;
      }
      EXPECT_LE(shares, 1.0);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(PavonaPalette, Formats,
                         ::testing::Values("NV12", "NV21", "P010_10LE"));

// Photographs become a VP8/WebM clip, which uridecodebin decodes again.
TEST(PavonaPaletteClip, DecodedFileGivesOneMessagePerAnalysedFrame) {
  const std::string clip =
      (std::filesystem::path(PAVONA_GST_REGISTRY).parent_path() / "clip.webm")
          .string();
  std::string launch =
      "concat name=c ! video/x-raw,framerate=4/1 ! vp8enc ! "
      "webmmux ! filesink location=" +
      clip;
  for (const char* photo : {"astronaut", "chelsea", "coffee", "rocket"}) {
    launch += std::string(" filesrc location=") + PAVONA_SAMPLES_DIR + "/" +
              photo +
              ".jpg ! jpegdec ! videoscale ! videoconvert ! "
              "video/x-raw,format=I420,width=320,height=240,"
              "pixel-aspect-ratio=1/1 ! imagefreeze num-buffers=2 ! c.";
  }
  ASSERT_EQ(runPipeline(launch).error, "");
  gchar* uri = gst_filename_to_uri(clip.c_str(), nullptr);
  for (unsigned interval : {1u, 3u}) {
    const BusLog log = runPipeline(
        std::string("uridecodebin uri=") + uri +
        " ! videoconvert ! video/x-raw,format=NV12 ! pavonapalette interval=" +
        std::to_string(interval) + " ! fakesink");
    EXPECT_EQ(log.error, "");
    EXPECT_EQ(log.palettes.size(), interval == 1 ? 8u : 3u);
  }
  g_free(uri);
}

// videoconvert only reorders I420's chroma into NV12's or NV21's pairs, so
// both carry one picture. With a seed, k-means starts alike every frame.
TEST(PavonaPalette, Nv12AndNv21GiveOnePalette) {
  for (const char* element :
       {"pavonapalette colors=4", "pavonapalette colors=6 seed=11"}) {
    std::string palettes[2];
    for (int f = 0; f < 2; ++f) {
      const BusLog log = runPipeline(testPattern(
          std::string("video/x-raw,format=I420,width=640,height=480 ! "
                      "videoconvert ! video/x-raw,format=") +
              (f == 0 ? "NV12" : "NV21"),
          element, 3, "colors"));
      ASSERT_EQ(log.palettes.size(), 3u);
      for (const Structure& s : log.palettes) {
        EXPECT_EQ(colorsOf(s.get()), colorsOf(log.palettes[0].get()));
      }
      palettes[f] = colorsOf(log.palettes[0].get());
    }
    EXPECT_EQ(palettes[0], palettes[1]) << element;
  }
}

// Chroma rows on a stride of their own are moved to the luma stride.
TEST(PavonaPalette, ChromaStrideOfItsOwnGivesThePackedPalette) {
  for (GstVideoFormat format : {GST_VIDEO_FORMAT_NV12, GST_VIDEO_FORMAT_NV21,
                                GST_VIDEO_FORMAT_P010_10LE}) {
    std::string palettes[2];
    for (int pad : {0, 64}) {
      Harnessed e("pavonapalette colors=5 seed=3");
      gst_harness_set_src_caps_str(e.h, capsFor(format, 640, 480).c_str());
      gst_buffer_unref(e.push(makeBuffer(format, 640, 480, 2, pad)));
      ASSERT_EQ(e.log.palettes.size(), 1u);
      palettes[pad != 0] = colorsOf(e.log.palettes[0].get());
    }
    EXPECT_EQ(palettes[0], palettes[1]) << gst_video_format_to_string(format);
  }
}

// New caps make a new handle, sized and formatted for them: the working
// frame follows the size, and 10-bit frames are taken after 8-bit ones.
TEST(PavonaPalette, CapsChangeMakesANewHandle) {
  Harnessed e("pavonapalette");
  const struct {
    GstVideoFormat format;
    int width, height, working_width;
  } steps[] = {{GST_VIDEO_FORMAT_NV12, 640, 480, 20},
               {GST_VIDEO_FORMAT_P010_10LE, 1280, 720, 40},
               {GST_VIDEO_FORMAT_NV21, 320, 240, 10}};
  size_t expected = 0;
  for (const auto& step : steps) {
    gst_harness_set_src_caps_str(
        e.h, capsFor(step.format, step.width, step.height).c_str());
    for (int frame = 0; frame < 2; ++frame) {
      gst_buffer_unref(
          e.push(makeBuffer(step.format, step.width, step.height, frame)));
      ASSERT_EQ(e.log.palettes.size(), ++expected);
      EXPECT_EQ(intField(e.log.palettes.back().get(), "working-width"),
                step.working_width);
    }
  }
  EXPECT_EQ(e.log.warnings, 0);
}

// The working frame is 1/32 of the size each way, even: 64 gives 2 pixels.
TEST(PavonaPalette, OddAndTooSmallSizesAreRefusedAtNegotiation) {
  const struct {
    int width, height;
    bool taken;
  } cases[] = {{63, 64, false}, {64, 63, false}, {62, 64, false},
               {64, 62, false}, {64, 64, true},  {66, 96, true}};
  for (const auto& c : cases) {
    for (const char* format : {"NV12", "P010_10LE"}) {
      const BusLog log =
          runPipeline(testPattern(std::string("video/x-raw,format=") + format +
                                      ",width=" + std::to_string(c.width) +
                                      ",height=" + std::to_string(c.height),
                                  "pavonapalette", 2));
      SCOPED_TRACE(std::to_string(c.width) + "x" + std::to_string(c.height) +
                   " " + format);
      EXPECT_EQ(log.palettes.size(), c.taken ? 2u : 0u);
      EXPECT_EQ(log.warnings, 0);
      if (c.taken) {
        EXPECT_EQ(log.error, "");
      } else {
        EXPECT_NE(log.error.find("even widths and heights of at least 64"),
                  std::string::npos)
            << log.error;
      }
    }
  }
}

// Only the band at the bottom changes, each column in it one colour; with
// draw off the very buffer passes through.
TEST(PavonaPalette, DrawPaintsOnlyTheBand) {
  const int width = 640, height = 480, band = 60;
  for (GstVideoFormat format : {GST_VIDEO_FORMAT_NV12, GST_VIDEO_FORMAT_NV21,
                                GST_VIDEO_FORMAT_P010_10LE}) {
    SCOPED_TRACE(gst_video_format_to_string(format));
    const int bytes = format == GST_VIDEO_FORMAT_P010_10LE ? 2 : 1;
    const size_t row = static_cast<size_t>(width) * bytes;
    for (bool draw : {false, true}) {
      Harnessed e(draw ? "pavonapalette draw=true colors=4"
                       : "pavonapalette colors=4");
      gst_harness_set_src_caps_str(e.h, capsFor(format, width, height).c_str());
      GstBuffer* in = makeBuffer(format, width, height, 1);
      GstBuffer* out = e.push(gst_buffer_ref(in));
      ASSERT_NE(out, nullptr);
      EXPECT_EQ(out == in, !draw);
      GstMapInfo a, b;
      gst_buffer_map(in, &a, GST_MAP_READ);
      gst_buffer_map(out, &b, GST_MAP_READ);
      ASSERT_EQ(a.size, b.size);
      const size_t luma = row * height, top = row * (height - band);
      const size_t chroma_top = luma + row * (height - band) / 2;
      EXPECT_EQ(std::memcmp(a.data, b.data, top), 0);
      EXPECT_EQ(std::memcmp(a.data + luma, b.data + luma, chroma_top - luma),
                0);
      EXPECT_EQ(std::memcmp(a.data + top, b.data + top, luma - top) != 0, draw);
      EXPECT_EQ(std::memcmp(a.data + chroma_top, b.data + chroma_top,
                            b.size - chroma_top) != 0,
                draw);
      for (int y = height - band + 1; draw && y < height; ++y) {
        EXPECT_EQ(std::memcmp(b.data + top, b.data + y * row, row), 0);
      }
      gst_buffer_unmap(in, &a);
      gst_buffer_unmap(out, &b);
      gst_buffer_unref(in);
      gst_buffer_unref(out);
    }
  }
}

// Every start after a stop gets its own handle; run under ASan or memcheck,
// nothing of the plug-in's or the element's may be left behind.
TEST(PavonaPalette, RepeatedNullPlayingNull) {
  GstElement* pipeline = gst_parse_launch(
      testPattern("video/x-raw,format=NV12,width=128,height=96",
                  "pavonapalette draw=true", 2)
          .c_str(),
      nullptr);
  ASSERT_NE(pipeline, nullptr);
  for (int cycle = 0; cycle < 5; ++cycle) {
    const BusLog log = playToEnd(pipeline);
    EXPECT_EQ(log.error, "");
    EXPECT_EQ(log.palettes.size(), 2u) << "cycle " << cycle;
  }
  gst_object_unref(pipeline);
}

}  // namespace
}  // namespace pavona::gsttest

// The plugin is found in the build tree beside a few of the system's, in a
// registry of this build's own, scanned in-process (a sanitised plugin
// cannot load into the uninstrumented scanner helper).
int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  setenv("GST_PLUGIN_PATH", PAVONA_GST_PLUGIN_DIR, 1);
  setenv("GST_PLUGIN_SYSTEM_PATH", PAVONA_GST_SYSTEM_PLUGINS, 1);
  setenv("GST_REGISTRY", PAVONA_GST_REGISTRY, 1);
  setenv("GST_REGISTRY_FORK", "no", 1);
  gst_init(&argc, &argv);
  const int status = RUN_ALL_TESTS();
  gst_deinit();
  return status;
}
