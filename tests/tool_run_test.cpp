// The pavona binary end to end: its command line and error paths, and what
// it reports about the plug-in's palette, checked against a worked boost,
// the same frame given raw, and the preview it draws.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "tests/tool_subprocess.h"
#include "tools/pavona/file_bytes.h"
#include "tools/pavona/image_decode.h"
#include "tools/pavona/png_write.h"
#include "tools/pavona/yuv_convert.h"

namespace pavona::tool {
namespace {

using pavona::testing::runTool;
using pavona::testing::runToolJson;
using pavona::testing::ToolRun;
using Colour = std::array<double, 3>;

std::string sample(const char* name) {
  return std::string(PAVONA_SAMPLES_DIR) + "/" + name;
}

// A path in the test's temporary directory, unique to the running test.
std::string scratch(const std::string& name) {
  const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
  return ::testing::TempDir() + "pavona_" + info->test_suite_name() + "_" +
         info->name() + "_" + name;
}

void writeBytes(const std::string& path, const std::vector<uint8_t>& bytes) {
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
}

RgbImage solid(int width, int height, Colour colour) {
  RgbImage image;
  image.width = width;
  image.height = height;
  for (int i = 0; i < width * height; ++i) {
    for (double c : colour) image.pixels.push_back(static_cast<uint8_t>(c));
  }
  return image;
}

Colour rowOf(const nlohmann::json& colour) {
  return {colour["r"].get<double>(), colour["g"].get<double>(),
          colour["b"].get<double>()};
}

bool hasLibraryChatter(const std::string& text) {
  for (const char* marker :
       {"set log status", "close all log", "[INFO]", "[ERROR]", "Pavona_SDK"}) {
    if (text.find(marker) != std::string::npos) return true;
  }
  return false;
}

TEST(ToolCommandLine, HelpVersionAndUsageErrorsGoWhereTheyBelong) {
  const std::string shortRaw = scratch("short.nv21");
  writeBytes(shortRaw, std::vector<uint8_t>(1000));
  const struct {
    std::vector<std::string> args;
    int status;
    std::string out, err;  // out: its first characters only
  } cases[] = {
      {{"--help"}, 0, "Usage: pavona", ""},
      {{"--version"},
       0,
       "pavona " PAVONA_PROJECT_VERSION
       "\nplug-in SDK_BASE_20200330_version_1.0\n",
       ""},
      {{"--bogus", sample("coffee.jpg")},
       2,
       "",
       "pavona: unknown option '--bogus' (see --help)\n"},
      // 72 rows: 71 of 80 bytes and a last one of 64.
      {{"--raw", "nv21", "--size", "64x48", "--stride", "80", shortRaw},
       1,
       "",
       "pavona: " + shortRaw +
           ": 1000 bytes, but a 64x48 nv21 frame with stride 80 needs 5744\n"},
  };
  for (const auto& c : cases) {
    const ToolRun run = runTool(c.args);
    EXPECT_EQ(run.status, c.status) << c.args[0];
    EXPECT_EQ(run.out.substr(0, c.out.size()), c.out);
    EXPECT_EQ(run.out.empty(), c.out.empty());
    EXPECT_EQ(run.err, c.err);
  }
}

TEST(ToolCommandLine, BadFilesAreNamedAndTheOthersStillProcessed) {
  const std::string truncated = scratch("truncated.jpg");
  std::vector<uint8_t> jpeg = readFileBytes(sample("rocket.jpg"));
  jpeg.resize(jpeg.size() / 3);
  writeBytes(truncated, jpeg);
  const std::string corrupt = scratch("corrupt.png");
  writeBytes(corrupt, {'n', 'o', 't', ' ', 'a', ' ', 'p', 'n', 'g'});
  const std::string missing = scratch("missing.png");

  const ToolRun run = runTool(
      {missing, truncated, sample("coffee.jpg"), corrupt, "--no-color"});
  EXPECT_EQ(run.status, 1);
  std::istringstream lines(run.err);
  std::vector<std::string> errors;
  for (std::string line; std::getline(lines, line);) errors.push_back(line);
  ASSERT_EQ(errors.size(), 3u) << run.err;
  EXPECT_EQ(errors[0], "pavona: " + missing + ": No such file or directory");
  EXPECT_EQ(errors[1].rfind("pavona: " + truncated + ": bad JPEG: ", 0), 0u)
      << errors[1];
  // Not a picture, so tried as a video (or refused for want of GStreamer).
  EXPECT_EQ(
      errors[2].rfind("pavona: " + corrupt + ": not a PNG or JPEG file", 0),
      0u);
  EXPECT_NE(errors[2].find("(use --raw for camera frames)"), std::string::npos);
  EXPECT_EQ(run.out.rfind(sample("coffee.jpg") + ": 600x400 as nv21", 0), 0u)
      << run.out;
  EXPECT_FALSE(hasLibraryChatter(run.out));
}

TEST(ToolCommandLine, VerboseSendsTheLibraryLogToStderrOnly) {
  const ToolRun quiet = runTool({sample("chelsea.jpg")});
  EXPECT_EQ(quiet.status, 0);
  EXPECT_EQ(quiet.err, "");
  EXPECT_FALSE(hasLibraryChatter(quiet.out));
  const ToolRun verbose = runTool({"--verbose", sample("chelsea.jpg")});
  EXPECT_EQ(verbose.status, 0);
  EXPECT_NE(verbose.err.find("Pavona version : vc0.0.0"), std::string::npos)
      << verbose.err;
  EXPECT_EQ(verbose.out, quiet.out);
}

TEST(ToolPalette, UniformPictureGivesOneRowOfItsBoostedColour) {
  // Every point is the same colour, so every cluster centre has the same
  // distinctness (0) and only the first enters the palette.
  const std::string path = scratch("uniform.png");
  const Colour colour = {200, 100, 50};
  writePng(path, solid(64, 48, colour));
  // HSL saturation 0.6, raised by a quarter about the mean of the extremes
  // (125): (218.75, 93.75, 31.25). A 10-bit frame has the same rows in 10-bit
  // units. The YUV round trip moves each channel by at most a step, the
  // boost by 1.25 of them.
  const struct {
    const char* format;
    double maximum, tolerance;
  } cases[] = {{"nv21", 255, 1.5}, {"yuv10", 1023, 3.0}};
  for (const auto& c : cases) {
    const nlohmann::json json = runToolJson({"--format", c.format, path});
    ASSERT_EQ(json[0]["rows"], 1);
    const auto& row = json[0]["colors"][0];
    const Colour expected = {218.75, 93.75, 31.25};
    for (int i = 0; i < 3; ++i) {
      EXPECT_NEAR(rowOf(row)[i], expected[i] * c.maximum / 255, c.tolerance)
          << c.format;
    }
    EXPECT_EQ(row["members"], 124 * 92);
    EXPECT_DOUBLE_EQ(row["share"].get<double>(), 100.0);
  }
}

TEST(ToolPalette, RawFrameWithPaddedRowsMatchesThePicture) {
  const std::string picture = scratch("stripes.png");
  RgbImage image = solid(64, 48, {30, 160, 220});
  const RgbImage yellow = solid(64, 24, {240, 200, 20});
  std::copy(yellow.pixels.begin(), yellow.pixels.end(),
            image.pixels.begin() + 3 * 64 * 24);
  writePng(picture, image);
  // The same frame with 16 bytes of padding after every row.
  const YuvFrame frame = rgbToSemiPlanar(image, IMAGE_FORMAT_NV12);
  std::vector<uint8_t> raw;
  for (int row = 0; row < 72; ++row) {
    const uint8_t* start = frame.bytes.data() + row * 64;
    raw.insert(raw.end(), start, start + 64);
    raw.insert(raw.end(), 16, 0xEE);
  }
  const std::string rawPath = scratch("stripes.nv12");
  writeBytes(rawPath, raw);

  nlohmann::json fromPicture = runToolJson({"--format", "nv12", picture});
  nlohmann::json fromRaw = runToolJson(
      {"--raw", "nv12", "--size", "64x48", "--stride", "80", rawPath});
  EXPECT_EQ(fromRaw[0]["frame"]["stride"], 80);
  EXPECT_EQ(fromRaw[0]["colors"], fromPicture[0]["colors"]);
}

TEST(ToolPreview, NumberedPicturesAboveSwatchesAsWideAsTheirShares) {
  const std::string base = scratch("many.png");
  const nlohmann::json json = runToolJson(
      {"--preview", base, sample("coffee.jpg"), sample("chelsea.jpg")});
  const std::string stem = base.substr(0, base.size() - 4);
  EXPECT_EQ(json[1]["preview"], stem + "-2.png");
  EXPECT_EQ(json[0]["preview"], stem + "-1.png");
  const std::vector<uint8_t> bytes = readFileBytes(stem + "-1.png");
  const RgbImage preview = decodeImage(bytes.data(), bytes.size());
  // 600 x 400 downscaled to 320 x 213, a 4-pixel gap and a 48-pixel strip.
  ASSERT_EQ(preview.width, 320);
  ASSERT_EQ(preview.height, 213 + 4 + 48);
  auto hexAt = [&](int x, int y) {
    const uint8_t* p = &preview.pixels[3 * (y * preview.width + x)];
    char hex[8];
    std::snprintf(hex, sizeof hex, "#%02X%02X%02X", p[0], p[1], p[2]);
    return std::string(hex);
  };
  EXPECT_EQ(hexAt(100, 215), "#FFFFFF");
  // Each row's swatch spans its share of the strip, in the plug-in's order;
  // probe the middle of each.
  double left = 0;
  for (const auto& colour : json[0]["colors"]) {
    const double share = colour["share"].get<double>() / 100;
    const int middle = static_cast<int>((left + share / 2) * 320);
    left += share;
    EXPECT_EQ(hexAt(middle, 240), colour["hex"]) << middle;
  }
  EXPECT_FALSE(readFileBytes(stem + "-2.png").empty());
}

}  // namespace
}  // namespace pavona::tool
