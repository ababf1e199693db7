// The pavona binary end to end: its command line and error paths, and what
// it reports about the plug-in's palette, checked against the rendering
// and colour rules worked out independently here.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
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

// The plug-in's saturation boost of a palette row at scale s: HSL
// saturation up by a quarter, or to full at 0.8 and above.
Colour boosted(Colour c, double s) {
  const double mx = std::max({c[0], c[1], c[2]});
  const double mn = std::min({c[0], c[1], c[2]});
  const double d = (mx - mn) / s;
  if (d == 0) return c;
  const double t = (mx + mn) / s;
  const double l = t * 0.5;
  const double sat = l < 0.5 ? d / t : d / (2 - t);
  const double factor = sat + 0.2 < 1 ? 0.25 : 1 / sat - 1;
  for (double& v : c) v += (v - s * l) * factor;
  return c;
}

Colour rowOf(const nlohmann::json& colour) {
  return {colour["r"].get<double>(), colour["g"].get<double>(),
          colour["b"].get<double>()};
}

nlohmann::json runJson(const std::vector<std::string>& args) {
  std::vector<std::string> all = {"--json"};
  all.insert(all.end(), args.begin(), args.end());
  const ToolRun run = runTool(all);
  EXPECT_EQ(run.status, 0) << run.err;
  return nlohmann::json::parse(run.out);
}

bool hasLibraryChatter(const std::string& text) {
  for (const char* marker :
       {"set log status", "close all log", "[INFO]", "[ERROR]", "Pavona_SDK"}) {
    if (text.find(marker) != std::string::npos) return true;
  }
  return false;
}

TEST(ToolCommandLine, HelpAndVersionPrintAndSucceed) {
  const ToolRun help = runTool({"--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_EQ(help.out.rfind("Usage: pavona", 0), 0u) << help.out;
  EXPECT_NE(help.out.find("--seed N"), std::string::npos);
  EXPECT_EQ(help.err, "");

  const ToolRun version = runTool({"--version"});
  EXPECT_EQ(version.status, 0);
  EXPECT_EQ(version.out, "pavona " PAVONA_PROJECT_VERSION
                         "\nplug-in SDK_BASE_20200330_version_1.0\n");
  EXPECT_EQ(version.err, "");
}

TEST(ToolCommandLine, UsageErrorsExitWithStatusTwo) {
  const ToolRun unknown = runTool({"--bogus", sample("coffee.jpg")});
  EXPECT_EQ(unknown.status, 2);
  EXPECT_EQ(unknown.err, "pavona: unknown option '--bogus' (see --help)\n");
  EXPECT_EQ(unknown.out, "");

  const ToolRun badSize =
      runTool({"--raw", "nv21", "--size", "640x", "frame.nv21"});
  EXPECT_EQ(badSize.status, 2);
  EXPECT_EQ(badSize.err, "pavona: --size '640x': expected WIDTHxHEIGHT\n");

  EXPECT_EQ(runTool({}).status, 2);
  EXPECT_EQ(runTool({"--init", "32x32", sample("coffee.jpg")}).status, 2);
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

TEST(ToolCommandLine, ShortRawFrameIsRefusedWithTheSizeItNeeds) {
  const std::string path = scratch("short.nv21");
  writeBytes(path, std::vector<uint8_t>(1000));
  const ToolRun run =
      runTool({"--raw", "nv21", "--size", "64x48", "--stride", "80", path});
  EXPECT_EQ(run.status, 1);
  // 72 rows: 71 of 80 bytes and a last one of 64.
  EXPECT_EQ(run.err, "pavona: " + path +
                         ": 1000 bytes, but a 64x48 nv21 frame with stride 80 "
                         "needs 5744\n");
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

TEST(ToolPalette, JsonAgreesWithTheTextOutput) {
  const std::vector<std::string> files = {sample("coffee.jpg"),
                                          sample("chelsea.jpg")};
  const nlohmann::json json = runJson(files);
  const ToolRun text = runTool(files);
  ASSERT_EQ(text.status, 0);
  ASSERT_EQ(json.size(), 2u);
  std::istringstream lines(text.out);
  std::string line;
  for (const auto& frame : json) {
    ASSERT_TRUE(std::getline(lines, line));
    EXPECT_EQ(line.rfind(frame["file"].get<std::string>() + ": ", 0), 0u);
    ASSERT_TRUE(std::getline(lines, line));  // column heads
    for (const auto& colour : frame["colors"]) {
      ASSERT_TRUE(std::getline(lines, line));
      int rank = 0;
      char hex[8] = {};
      double r, g, b, lightness, share;
      ASSERT_EQ(std::sscanf(line.c_str(), "%d %7s %lf %lf %lf %lf %lf%%", &rank,
                            hex, &r, &g, &b, &lightness, &share),
                7)
          << line;
      EXPECT_EQ(rank, colour["rank"].get<int>());
      EXPECT_EQ(hex, colour["hex"].get<std::string>());
      EXPECT_NEAR(r, colour["r"].get<double>(), 0.0005);
      EXPECT_NEAR(g, colour["g"].get<double>(), 0.0005);
      EXPECT_NEAR(b, colour["b"].get<double>(), 0.0005);
      EXPECT_NEAR(lightness, colour["lightness"].get<double>(), 0.0005);
      EXPECT_NEAR(share, colour["share"].get<double>(), 0.005);
    }
    std::getline(lines, line);  // blank line between blocks
  }
}

TEST(ToolPalette, CoffeeWithFourColoursGivesTheRecordedPalette) {
  // k = 4 seeds k-means from a fixed diamond of points, so no rand() is
  // involved. Recorded once and checked by eye against the picture and its
  // preview: dark coffee, the cream of the crema, the red saucer and the
  // orange wood of the table.
  struct Row {
    const char* hex;
    double r, g, b, lightness;
    int members;
  };
  const Row expected[] = {
      {"#3A0901", 57.5824242, 8.63609791, 0.712495327, 11.4303761, 2343},
      {"#F4C69D", 244.25209, 198.020996, 156.587555, 78.5960083, 1322},
      {"#AF3207", 175.454941, 49.6035309, 7.32079315, 35.8383789, 3964},
      {"#D57635", 213.02359, 117.836037, 53.2508278, 52.2106705, 3779},
  };
  const nlohmann::json json = runJson({"--colors", "4", sample("coffee.jpg")});
  const auto& colours = json[0]["colors"];
  ASSERT_EQ(colours.size(), 4u);
  EXPECT_EQ(json[0]["passes"], 19);
  for (size_t i = 0; i < 4; ++i) {
    SCOPED_TRACE(i);
    const Colour row = rowOf(colours[i]);
    EXPECT_EQ(colours[i]["hex"], expected[i].hex);
    EXPECT_NEAR(row[0], expected[i].r, 1e-3);
    EXPECT_NEAR(row[1], expected[i].g, 1e-3);
    EXPECT_NEAR(row[2], expected[i].b, 1e-3);
    EXPECT_NEAR(colours[i]["lightness"].get<double>(), expected[i].lightness,
                1e-3);
    EXPECT_EQ(colours[i]["members"], expected[i].members);
    // The boost keeps min + max, so the lightness figure still follows
    // from the written row.
    const double mn = std::min({row[0], row[1], row[2]});
    const double mx = std::max({row[0], row[1], row[2]});
    EXPECT_NEAR(colours[i]["lightness"].get<double>(), (mn + mx) * 10 / 51,
                1e-3);
  }
}

TEST(ToolPalette, SharesOfAllClustersAddUpToTheWholeFrame) {
  const nlohmann::json json =
      runJson({"--colors", "4", sample("coffee.jpg"), sample("astronaut.jpg")});
  for (const auto& frame : json) {
    ASSERT_EQ(frame["rows"], 4) << "a row was not written";
    EXPECT_EQ(frame["working"]["width"], 124);
    EXPECT_EQ(frame["working"]["height"], 92);
    double shares = 0;
    int members = 0;
    for (const auto& colour : frame["colors"]) {
      shares += colour["share"].get<double>();
      members += colour["members"].get<int>();
    }
    EXPECT_NEAR(shares, 100.0, 1e-4);
    EXPECT_EQ(members, 124 * 92);
    EXPECT_GT(frame["passes"].get<int>(), 0);
  }
}

TEST(ToolPalette, UniformPictureGivesOneRowOfItsBoostedColour) {
  // Every point is the same colour, so every cluster centre has the same
  // distinctness (0) and only the first enters the palette.
  const std::string path = scratch("uniform.png");
  const Colour colour = {200, 100, 50};
  writePng(path, solid(64, 48, colour));
  const nlohmann::json nv21 = runJson({path});
  ASSERT_EQ(nv21[0]["rows"], 1);
  const auto& row = nv21[0]["colors"][0];
  const Colour expected = boosted(colour, 255);  // (212.5, 87.5, 25)
  // The YUV round trip moves each channel by at most 1, the boost by 1.25.
  for (int c = 0; c < 3; ++c) EXPECT_NEAR(rowOf(row)[c], expected[c], 1.5);
  EXPECT_NEAR(row["lightness"].get<double>(), 250 * 10 / 51.0, 0.5);
  EXPECT_EQ(row["members"], 124 * 92);
  EXPECT_DOUBLE_EQ(row["share"].get<double>(), 100.0);

  // The same picture as a 10-bit frame: rows in 10-bit units, boosted at
  // the plug-in's 10-bit scale of 1024, and the hex scaled back to 8 bits.
  const nlohmann::json yuv10 = runJson({"--format", "yuv10", path});
  ASSERT_EQ(yuv10[0]["rows"], 1);
  const auto& deep = yuv10[0]["colors"][0];
  const Colour deepExpected = boosted(
      {colour[0] * 1023 / 255, colour[1] * 1023 / 255, colour[2] * 1023 / 255},
      1024);
  for (int c = 0; c < 3; ++c) {
    EXPECT_NEAR(rowOf(deep)[c], deepExpected[c], 3.0);
  }
  EXPECT_EQ(yuv10[0]["format"], "yuv10");
  EXPECT_EQ(deep["hex"].get<std::string>().size(), 7u);
}

TEST(ToolPalette, RawFrameWithPaddedRowsMatchesThePicture) {
  const std::string picture = scratch("stripes.png");
  RgbImage image = solid(64, 48, {30, 160, 220});
  for (int y = 24; y < 48; ++y) {
    for (int x = 0; x < 64; ++x) {
      uint8_t* p = &image.pixels[3 * (y * 64 + x)];
      p[0] = 240;
      p[1] = 200;
      p[2] = 20;
    }
  }
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

  nlohmann::json fromPicture = runJson({"--format", "nv12", picture});
  nlohmann::json fromRaw =
      runJson({"--raw", "nv12", "--size", "64x48", "--stride", "80", rawPath});
  EXPECT_EQ(fromRaw[0]["frame"]["stride"], 80);
  EXPECT_EQ(fromRaw[0]["colors"], fromPicture[0]["colors"]);
}

TEST(ToolPalette, SeedMakesRandomlySeededRunsRepeatable) {
  // k = 5 seeds k-means from rand(); the tool reseeds before every frame,
  // so the same file twice in one run gives the same block twice as well.
  const std::vector<std::string> args = {"--seed",
                                         "42",
                                         "--colors",
                                         "5",
                                         sample("rocket.jpg"),
                                         sample("rocket.jpg")};
  const ToolRun first = runTool(args);
  const ToolRun second = runTool(args);
  ASSERT_EQ(first.status, 0);
  EXPECT_EQ(first.out, second.out);
  const nlohmann::json json = runJson(args);
  EXPECT_EQ(json[0]["colors"], json[1]["colors"]);
  EXPECT_EQ(json[0]["seed"], 42);
}

TEST(ToolPreview, PictureAboveSwatchesAsWideAsTheirShares) {
  const std::string path = scratch("preview.png");
  const nlohmann::json json =
      runJson({"--colors", "4", "--preview", path, sample("coffee.jpg")});
  EXPECT_EQ(json[0]["preview"], path);
  const std::vector<uint8_t> bytes = readFileBytes(path);
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
}

TEST(ToolPreview, SeveralFilesGetNumberedPreviews) {
  const std::string base = scratch("many.png");
  const ToolRun run =
      runTool({"--preview", base, sample("coffee.jpg"), sample("chelsea.jpg")});
  ASSERT_EQ(run.status, 0) << run.err;
  for (const char* suffix : {"-1.png", "-2.png"}) {
    const std::string path = base.substr(0, base.size() - 4) + suffix;
    const std::vector<uint8_t> bytes = readFileBytes(path);
    EXPECT_EQ(decodeImage(bytes.data(), bytes.size()).width, 320) << path;
    EXPECT_NE(run.out.find("preview: " + path), std::string::npos);
  }
}

}  // namespace
}  // namespace pavona::tool
