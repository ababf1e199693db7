// The pavona binary on videos made here with GStreamer: frames through the
// table, the timeline picture and the flicker figures.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <string>

#include "tests/tool_subprocess.h"
#include "tools/pavona/file_bytes.h"
#include "tools/pavona/image_decode.h"
#include "tools/pavona/timeline.h"
#include "tracker/delta_e.h"

namespace pavona::tool {
namespace {

using pavona::testing::runTool;
using pavona::testing::runToolJson;
using pavona::testing::ToolRun;

// Encodes `sources` (gst-launch syntax, each ending in "! c.") into a
// 128x96 WebM clip at 10 frames a second.
std::string makeClip(const std::string& name, const std::string& sources) {
  const std::string path = ::testing::TempDir() + "pavona_video_" + name;
  const std::string command =
      "gst-launch-1.0 -q concat name=c ! videoconvert ! vp8enc ! webmmux ! "
      "filesink location=" +
      path + " " + sources + " >/dev/null 2>&1";
  return std::system(command.c_str()) == 0 ? path : "";
}

std::string source(const char* pattern, int frames) {
  return "videotestsrc pattern=" + std::string(pattern) +
         " num-buffers=" + std::to_string(frames) +
         " ! video/x-raw,width=128,height=96,framerate=10/1 ! c. ";
}

tracker::Lab labOf(const nlohmann::json& colour) {
  return tracker::labFromRgb(
      {colour["r"].get<double>(), colour["g"].get<double>(),
       colour["b"].get<double>()},
      255);
}

// Every decoded frame goes through the table; one colour a frame, so the
// flicker at the cut is the distance between the two rows, with the
// weights of the whole frame, and k = 4 (seeded without rand()) keeps the
// static frames still.
TEST(ToolVideo, FramesGoThroughTheTableAndFlickerIsTheJumpAtACut) {
  const std::string clip =
      makeClip("cut.webm", source("red", 5) + source("blue", 5));
  if (clip.empty()) GTEST_SKIP() << "GStreamer cannot encode a VP8 clip here";
  const nlohmann::json frames = runToolJson({clip});
  ASSERT_EQ(frames.size(), 10u);
  const double jump = tracker::deltaE00(labOf(frames[4]["colors"][0]),
                                        labOf(frames[5]["colors"][0]));
  EXPECT_GT(jump, 30);
  for (size_t i = 0; i < frames.size(); ++i) {
    const nlohmann::json& frame = frames[i];
    EXPECT_EQ(frame["index"], i);
    EXPECT_NEAR(frame["timestamp"].get<double>(), i * 0.1, 1e-6);
    EXPECT_EQ(frame["frame"]["width"], 128);
    EXPECT_GT(frame["pluginMs"].get<double>(), 0);
    EXPECT_GT(frame["passes"].get<int>(), 0);
    int members = 0;
    for (const auto& colour : frame["colors"])
      members += colour["members"].get<int>();
    EXPECT_EQ(members, 124 * 92);  // every working pixel is in a row
    if (i == 0) {
      EXPECT_TRUE(frame["flicker"].is_null());
    } else {
      EXPECT_NEAR(frame["flicker"].get<double>(), i == 5 ? jump : 0,
                  i == 5 ? 1e-6 : 1.0)
          << i;
    }
  }
  const nlohmann::json picked =
      runToolJson({"--every", "3", "--max-frames", "3", clip});
  ASSERT_EQ(picked.size(), 3u);
  EXPECT_EQ(picked[2]["index"], 6);

  const std::string timeline = ::testing::TempDir() + "pavona_timeline.png";
  const ToolRun text = runTool(
      {"--timeline", timeline, "--preview", timeline + ".unused.png", clip});
  ASSERT_EQ(text.status, 0) << text.err;
  EXPECT_NE(text.err.find("--preview draws pictures"), std::string::npos);
  double median = -1, p95 = -1, max = -1;
  const size_t line = text.out.find("flicker");
  ASSERT_NE(line, std::string::npos) << text.out;
  ASSERT_EQ(std::sscanf(text.out.c_str() + line,
                        "flicker (dE00) median %lf p95 %lf max %lf", &median,
                        &p95, &max),
            3)
      << text.out;
  EXPECT_LT(median, 1.0);
  // Nine pairs: the 95th percentile by nearest rank is the largest.
  EXPECT_NEAR(p95, jump, 1e-3);
  EXPECT_NEAR(max, jump, 1e-3);

  const std::vector<uint8_t> bytes = readFileBytes(timeline);
  const RgbImage picture = decodeImage(bytes.data(), bytes.size());
  EXPECT_EQ(picture.width, 10 * kTimelineColumnWidth);
  // Mid-height is inside the bands: each column shows its frame's colour.
  for (int column : {0, 9}) {
    const uint8_t* p = &picture.pixels[3 * (picture.height / 2 * picture.width +
                                            column * kTimelineColumnWidth)];
    char hex[8];
    std::snprintf(hex, sizeof hex, "#%02X%02X%02X", p[0], p[1], p[2]);
    EXPECT_EQ(hex, frames[column]["colors"][0]["hex"]) << column;
  }
}

// --smooth on a cut between near colours: the tracks blend towards the new
// rows, and each row keeps the members of the row that joined its track.
TEST(ToolVideo, SmoothingBlendsANearCutAndKeepsEachRowsMembers) {
  const std::string clip = makeClip(
      "near.webm",
      source("bar foreground-color=0xffc81e1e background-color=0xff1e28c8", 5) +
          source("bar foreground-color=0xffdc3c28 background-color=0xff283cdc",
                 5));
  if (clip.empty()) GTEST_SKIP() << "GStreamer cannot encode a VP8 clip here";
  const nlohmann::json plain = runToolJson({clip});
  const nlohmann::json smooth = runToolJson({"--smooth", "0.5", clip});
  ASSERT_EQ(smooth.size(), plain.size());
  const double jump = plain[5]["flicker"].get<double>();
  EXPECT_GT(jump, 2);
  EXPECT_NEAR(smooth[5]["flicker"].get<double>(), jump / 2, jump / 4);
  for (size_t i = 0; i < smooth.size(); ++i) {
    int members = 0;
    for (const auto& colour : smooth[i]["colors"]) {
      members += colour["members"].get<int>();
      for (const auto& row : plain[i]["colors"]) {
        if (row["hex"] == colour["hex"]) {
          EXPECT_EQ(row["members"], colour["members"]) << i;
        }
      }
    }
    EXPECT_EQ(members, 124 * 92) << i;
  }
}

}  // namespace
}  // namespace pavona::tool
