// pavonapalette as GStreamer drives it: in pipelines from videotestsrc and
// from an encoded clip, and buffer by buffer under gst-check's harness.
#include <gst/check/gstharness.h>
#include <gst/gst.h>
#include <gst/video/video.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/frames.h"

namespace pavona::gsttest {
namespace {

struct StructureFree {
  void operator()(GstStructure* s) const { gst_structure_free(s); }
};
using Structure = std::unique_ptr<GstStructure, StructureFree>;

struct BusLog {
  std::vector<Structure> palettes;  // the pavona-palette messages, in order
  std::string error;                // the first error's text, or empty
  int warnings = 0;
};

// Takes what waits on `bus`: up to EOS or an error when `until_end`, else
// until it is empty.
void readBus(GstBus* bus, BusLog* log, bool until_end) {
  const auto types =
      static_cast<GstMessageType>(GST_MESSAGE_ELEMENT | GST_MESSAGE_EOS |
                                  GST_MESSAGE_ERROR | GST_MESSAGE_WARNING);
  for (;;) {
    GstMessage* message =
        gst_bus_timed_pop_filtered(bus, until_end ? 60 * GST_SECOND : 0, types);
    if (message == nullptr) {
      if (until_end) ADD_FAILURE() << "no EOS or error within a minute";
      return;
    }
    const GstMessageType type = GST_MESSAGE_TYPE(message);
    if (type == GST_MESSAGE_ELEMENT &&
        gst_message_has_name(message, "pavona-palette")) {
      log->palettes.emplace_back(
          gst_structure_copy(gst_message_get_structure(message)));
    } else if (type == GST_MESSAGE_WARNING) {
      ++log->warnings;
    } else if (type == GST_MESSAGE_ERROR && log->error.empty()) {
      GError* error = nullptr;
      gst_message_parse_error(message, &error, nullptr);
      log->error = error->message;
      g_error_free(error);
    }
    gst_message_unref(message);
    if (until_end && (type == GST_MESSAGE_EOS || type == GST_MESSAGE_ERROR)) {
      return;
    }
  }
}

// Plays `pipeline` to EOS or the first error, then sets it to NULL.
BusLog playToEnd(GstElement* pipeline) {
  BusLog log;
  GstBus* bus = gst_element_get_bus(pipeline);
  gst_element_set_state(pipeline, GST_STATE_PLAYING);
  readBus(bus, &log, true);
  gst_element_set_state(pipeline, GST_STATE_NULL);
  gst_object_unref(bus);
  return log;
}

BusLog runPipeline(const std::string& description) {
  GstElement* pipeline = gst_parse_launch(description.c_str(), nullptr);
  if (pipeline == nullptr) ADD_FAILURE() << "cannot make " << description;
  if (pipeline == nullptr) return {};
  BusLog log = playToEnd(pipeline);
  gst_object_unref(pipeline);
  return log;
}

std::string colorsOf(const GstStructure* palette) {
  gchar* text = gst_value_serialize(gst_structure_get_value(palette, "colors"));
  std::string colors = text != nullptr ? text : "";
  g_free(text);
  return colors;
}

// A scene (varied by `seed`) as an NV12, NV21 or P010_10LE buffer with
// video meta; `chroma_pad` extra bytes end each chroma row.
GstBuffer* makeBuffer(GstVideoFormat format, int width, int height, int seed,
                      int chroma_pad = 0) {
  const bool words = format == GST_VIDEO_FORMAT_P010_10LE;
  pavona::testing::Frame frame =
      words ? pavona::testing::makeFrame10(width, height, seed)
            : pavona::testing::makeFrame8(format == GST_VIDEO_FORMAT_NV21
                                              ? IMAGE_FORMAT_NV21
                                              : IMAGE_FORMAT_NV12,
                                          width, height, seed);
  const gsize row = static_cast<gsize>(width) * (words ? 2 : 1);
  const gsize luma = row * height;
  gint strides[2] = {static_cast<gint>(row),
                     static_cast<gint>(row + chroma_pad)};
  gsize offsets[2] = {0, luma};
  GstBuffer* buffer = gst_buffer_new_allocate(
      nullptr, luma + strides[1] * (height / 2), nullptr);
  GstMapInfo map;
  gst_buffer_map(buffer, &map, GST_MAP_WRITE);
  memset(map.data, 0x5A, map.size);  // the padding, which must not matter
  std::memcpy(map.data, frame.y.data(), luma);
  for (int r = 0; r < height / 2; ++r) {
    std::memcpy(map.data + luma + r * strides[1], frame.uv.data() + r * row,
                row);
  }
  if (words) {  // 0..1023 words to P010's top-aligned bits
    auto* samples = reinterpret_cast<guint16*>(map.data);
    for (gsize i = 0; i < map.size / 2; ++i) {
      samples[i] = GUINT16_TO_LE(static_cast<guint16>(samples[i] << 6));
    }
  }
  gst_buffer_unmap(buffer, &map);
  gst_buffer_add_video_meta_full(buffer, GST_VIDEO_FRAME_FLAG_NONE, format,
                                 width, height, 2, offsets, strides);
  return buffer;
}

std::string capsFor(GstVideoFormat format, int width, int height) {
  return std::string("video/x-raw,format=") +
         gst_video_format_to_string(format) +
         ",width=" + std::to_string(width) +
         ",height=" + std::to_string(height) + ",framerate=30/1";
}

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

struct Row {
  double rgb[3];
  double share;
};

Row rowOf(const GstStructure* colour) {
  Row row{};
  EXPECT_TRUE(gst_structure_get(colour, "r", G_TYPE_DOUBLE, &row.rgb[0], "g",
                                G_TYPE_DOUBLE, &row.rgb[1], "b", G_TYPE_DOUBLE,
                                &row.rgb[2], "share", G_TYPE_DOUBLE, &row.share,
                                nullptr));
  return row;
}

// The harnessed element with a bus of its own, so its messages are kept.
struct Harnessed {
  GstHarness* h;
  GstBus* bus = gst_bus_new();
  BusLog log;
  Harnessed(const char* launch, const std::string& caps)
      : h(gst_harness_new_parse(launch)) {
    gst_element_set_bus(h->element, bus);
    gst_harness_set_src_caps_str(h, caps.c_str());
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
  const double to8 = std::strcmp(GetParam(), "P010_10LE") ? 1 : 255. / 1023;
  const auto byte = [to8](double v) {
    return static_cast<int>(std::lround(std::clamp(v * to8, 0.0, 255.0)));
  };
  // Every third frame with smoothing: the tracker's rows must hold to the
  // same rules.
  for (unsigned interval : {1u, 3u}) {
    const BusLog log = runPipeline(
        testPattern(caps,
                    "pavonapalette interval=" + std::to_string(interval) +
                        (interval == 3 ? " smooth=0.5" : ""),
                    7));
    ASSERT_EQ(log.error, "");
    ASSERT_EQ(log.palettes.size(), interval == 1 ? 7u : 3u);
    for (size_t i = 0; i < log.palettes.size(); ++i) {
      const GstStructure* s = log.palettes[i].get();
      const guint64 pts = gst_util_uint64_scale(i * interval, GST_SECOND, 30);
      for (const char* name : {"timestamp", "running-time", "stream-time"}) {
        EXPECT_EQ(timeField(s, name), pts) << name;
      }
      EXPECT_NEAR(timeField(s, "duration"), GST_SECOND / 30, 1);
      EXPECT_GT(timeField(s, "analysis-time"), 0u);
      EXPECT_GT(intField(s, "passes"), 0);
      EXPECT_EQ(intField(s, "working-width") * intField(s, "working-height"),
                10 * 6);
      const GValue* colors = gst_structure_get_value(s, "colors");
      const guint rows = gst_value_array_get_size(colors);
      ASSERT_GE(rows, 1u);
      ASSERT_LE(rows, 3u);
      double shares = 0;
      for (guint row = 0; row < rows; ++row) {
        const GstStructure* c =
            gst_value_get_structure(gst_value_array_get_value(colors, row));
        const Row got = rowOf(c);
        char hex[8];
        std::snprintf(hex, sizeof hex, "#%02X%02X%02X", byte(got.rgb[0]),
                      byte(got.rgb[1]), byte(got.rgb[2]));
        EXPECT_STREQ(gst_structure_get_string(c, "hex"), hex);
        EXPECT_GT(got.share, 0);
        shares += got.share;
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

// New caps make a new handle, sized and formatted for them: the working
// frame follows the size, and 10-bit frames are taken after 8-bit ones.
// Chroma rows on a stride of their own are moved to the luma stride, so a
// padded buffer gives the packed one's palette. NV12 and NV21 buffers of
// one scene give one palette: each chroma order is read as its own.
TEST(PavonaPalette, CapsChangeMakesANewHandleAndChromaStrideIsFollowed) {
  const struct {
    GstVideoFormat format;
    int width, height, working_width;
  } steps[] = {{GST_VIDEO_FORMAT_NV12, 640, 480, 20},
               {GST_VIDEO_FORMAT_P010_10LE, 1280, 720, 40},
               {GST_VIDEO_FORMAT_NV21, 640, 480, 20}};
  Harnessed e("pavonapalette colors=5 seed=3",
              capsFor(steps[0].format, 640, 480));
  for (const auto& step : steps) {
    SCOPED_TRACE(gst_video_format_to_string(step.format));
    gst_harness_set_src_caps_str(
        e.h, capsFor(step.format, step.width, step.height).c_str());
    for (int pad : {0, 64}) {
      gst_buffer_unref(
          e.push(makeBuffer(step.format, step.width, step.height, 2, pad)));
      EXPECT_EQ(intField(e.log.palettes.back().get(), "working-width"),
                step.working_width);
    }
    const size_t n = e.log.palettes.size();
    ASSERT_GE(n, 2u);
    EXPECT_EQ(colorsOf(e.log.palettes[n - 1].get()),
              colorsOf(e.log.palettes[n - 2].get()));
  }
  ASSERT_EQ(e.log.palettes.size(), 6u);
  EXPECT_EQ(colorsOf(e.log.palettes[5].get()),
            colorsOf(e.log.palettes[0].get()));
  EXPECT_EQ(e.log.warnings, 0);
}

// The working frame is 1/32 of the size each way, even: 64 gives 2 pixels.
TEST(PavonaPalette, OddAndTooSmallSizesAreRefusedAtNegotiation) {
  const struct {
    const char* size;
    bool taken;
  } cases[] = {{"width=63,height=64", false}, {"width=64,height=63", false},
               {"width=62,height=64", false}, {"width=64,height=62", false},
               {"width=64,height=64", true},  {"width=66,height=96", true}};
  for (const auto& c : cases) {
    for (const char* format : {"NV12", "P010_10LE"}) {
      SCOPED_TRACE(std::string(c.size) + " " + format);
      const BusLog log = runPipeline(testPattern(
          std::string("video/x-raw,format=") + format + "," + c.size,
          "pavonapalette", 2));
      EXPECT_EQ(log.palettes.size(), c.taken ? 2u : 0u);
      EXPECT_EQ(log.warnings, 0);
      EXPECT_EQ(log.error.empty(), c.taken) << log.error;
      EXPECT_EQ(log.error.find("even widths and heights of at least 64") !=
                    std::string::npos,
                !c.taken);
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
    const size_t luma = row * height, top = row * (height - band);
    const size_t chroma_top = luma + row * (height - band) / 2;
    for (bool draw : {false, true}) {
      Harnessed e(
          draw ? "pavonapalette draw=true colors=4" : "pavonapalette colors=4",
          capsFor(format, width, height));
      GstBuffer* in = makeBuffer(format, width, height, 1);
      GstBuffer* out = e.push(gst_buffer_ref(in));
      ASSERT_NE(out, nullptr);
      EXPECT_EQ(out == in, !draw);
      GstMapInfo a, b;
      gst_buffer_map(in, &a, GST_MAP_READ);
      gst_buffer_map(out, &b, GST_MAP_READ);
      ASSERT_EQ(a.size, b.size);
      auto same = [&](size_t from, size_t to) {
        return std::memcmp(a.data + from, b.data + from, to - from) == 0;
      };
      EXPECT_TRUE(same(0, top));
      EXPECT_TRUE(same(luma, chroma_top));
      EXPECT_NE(same(top, luma), draw);
      EXPECT_NE(same(chroma_top, b.size), draw);
      for (int y = height - band + 1; draw && y < height; ++y) {
        EXPECT_EQ(std::memcmp(b.data + top, b.data + y * row, row), 0);
      }
      if (draw) {  // read as the plug-in reads frames, each swatch gives a
                   // posted colour, the first swatch the first colour
        const GValue* colors =
            gst_structure_get_value(e.log.palettes.at(0).get(), "colors");
        std::vector<Row> posted;
        for (guint i = 0; i < gst_value_array_get_size(colors); ++i) {
          posted.push_back(rowOf(
              gst_value_get_structure(gst_value_array_get_value(colors, i))));
        }
        const double half = bytes == 2 ? 512 : 128;
        const int vu = format == GST_VIDEO_FORMAT_NV21;
        auto at = [&](size_t i) -> double {
          return bytes == 2 ? GST_READ_UINT16_LE(b.data + i) >> 6 : b.data[i];
        };
        int off_column = -1;
        for (int x = 0; x < width && off_column < 0; x += 2) {
          const double y = at(top + x * bytes);
          const double u = at(chroma_top + (x + vu) * bytes) - half;
          const double v = at(chroma_top + (x + 1 - vu) * bytes) - half;
          const double rgb[3] = {y + 1.402 * v, y - 0.714 * v - 0.344 * u,
                                 y + 1.772 * u};
          const auto shows = [&rgb](const Row& c) {
            return std::abs(rgb[0] - c.rgb[0]) <= 1.5 &&
                   std::abs(rgb[1] - c.rgb[1]) <= 1.5 &&
                   std::abs(rgb[2] - c.rgb[2]) <= 1.5;
          };
          const auto last = x == 0 ? posted.begin() + 1 : posted.end();
          if (std::find_if(posted.begin(), last, shows) == last) off_column = x;
        }
        EXPECT_EQ(off_column, -1);
      }
      gst_buffer_unmap(in, &a);
      gst_buffer_unmap(out, &b);
      gst_buffer_unref(in);
      gst_buffer_unref(out);
    }
  }
}

// With smoothing the second scene's palette keeps some of the first's; the
// first palette shows as the plug-in's either way.
TEST(PavonaPalette, SmoothCarriesTheLastPaletteOver) {
  std::string hexes[2][2];
  for (int smooth = 0; smooth < 2; ++smooth) {
    Harnessed e(
        smooth ? "pavonapalette seed=1 smooth=0.5" : "pavonapalette seed=1",
        capsFor(GST_VIDEO_FORMAT_NV12, 640, 480));
    for (int scene = 0; scene < 2; ++scene) {
      gst_buffer_unref(
          e.push(makeBuffer(GST_VIDEO_FORMAT_NV12, 640, 480, scene + 1)));
      const GValue* colors =
          gst_structure_get_value(e.log.palettes.at(scene).get(), "colors");
      for (guint row = 0; row < gst_value_array_get_size(colors); ++row) {
        hexes[smooth][scene] += gst_structure_get_string(
            gst_value_get_structure(gst_value_array_get_value(colors, row)),
            "hex");
      }
    }
  }
  EXPECT_EQ(hexes[1][0], hexes[0][0]);
  EXPECT_NE(hexes[1][1], hexes[0][1]);
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
