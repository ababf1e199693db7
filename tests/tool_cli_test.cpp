// The pavona tool's command line, preview naming and result formats,
// without the plug-in.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tools/pavona/frame_report.h"
#include "tools/pavona/json_output.h"
#include "tools/pavona/options.h"
#include "tools/pavona/preview_path.h"
#include "tools/pavona/text_output.h"

namespace pavona::tool {
namespace {

std::string errorOf(const std::vector<std::string>& args) {
  return parseOptions(args).error;
}

TEST(Options, DefaultsAreACameraSizedNv21RunWithFourColours) {
  const ParsedOptions parsed = parseOptions({"a.jpg", "b.png"});
  ASSERT_EQ(parsed.error, "");
  const Options& options = parsed.options;
  EXPECT_EQ(options.inputs, (std::vector<std::string>{"a.jpg", "b.png"}));
  EXPECT_EQ(options.frameFormat(), IMAGE_FORMAT_NV21);
  EXPECT_EQ(options.initWidth, 4000);
  EXPECT_EQ(options.initHeight, 3000);
  EXPECT_EQ(options.colors, 4);
  EXPECT_FALSE(options.seed.has_value());
}

TEST(Options, ValuesAreTakenSeparateOrAttached) {
  const ParsedOptions parsed =
      parseOptions({"--colors=25", "--seed", "7", "--raw", "yuv10", "--size",
                    "640x480", "--stride=1408", "--init", "1920x1080", "--json",
                    "--", "--odd-name.raw"});
  ASSERT_EQ(parsed.error, "");
  const Options& options = parsed.options;
  EXPECT_EQ(options.colors, 25);  // the plug-in clamps, not the tool
  EXPECT_EQ(options.seed, 7u);
  EXPECT_EQ(options.frameFormat(), IMAGE_FORMAT_YUV420SP_10BIT);
  EXPECT_EQ(options.rawWidth, 640);
  EXPECT_EQ(options.rawHeight, 480);
  EXPECT_EQ(options.rawStride, 1408);
  EXPECT_EQ(options.initWidth, 1920);
  EXPECT_TRUE(options.json);
  EXPECT_EQ(options.inputs, std::vector<std::string>{"--odd-name.raw"});
  EXPECT_EQ(parseOptions({"-k", "-2", "x.png"}).options.colors, -2);
}

TEST(Options, HelpAndVersionNeedNoFiles) {
  EXPECT_TRUE(parseOptions({"--help"}).options.help);
  EXPECT_TRUE(parseOptions({"-h"}).options.help);
  EXPECT_TRUE(parseOptions({"--version"}).options.version);
  EXPECT_EQ(errorOf({"--version"}), "");
}

TEST(Options, MistakesAreNamed) {
  EXPECT_EQ(errorOf({"--frobnicate", "a.png"}),
            "unknown option '--frobnicate' (see --help)");
  EXPECT_EQ(errorOf({}), "no input files (see --help)");
  EXPECT_EQ(errorOf({"a.png", "--colors"}), "--colors needs a value");
  EXPECT_EQ(errorOf({"--colors", "four", "a.png"}),
            "--colors 'four': expected a whole number from -2147483648 to "
            "2147483647");
  EXPECT_EQ(errorOf({"--json=yes", "a.png"}), "--json takes no value");
  EXPECT_EQ(errorOf({"--format", "rgb", "a.png"}),
            "--format 'rgb': expected nv21, nv12 or yuv10");
  EXPECT_EQ(errorOf({"--seed", "-1", "a.png"}),
            "--seed '-1': expected a whole number from 0 to 4294967295");
}

TEST(Options, SizesAreCheckedForTheirUse) {
  EXPECT_EQ(errorOf({"--raw", "nv21", "--size", "640by480", "f"}),
            "--size '640by480': expected WIDTHxHEIGHT");
  EXPECT_EQ(errorOf({"--raw", "nv21", "--size", "0x480", "f"}),
            "--size '0': expected a whole number from 1 to 65536");
  EXPECT_EQ(errorOf({"--raw", "nv21", "--size", "641x480", "f"}),
            "--size 641x480: camera frames have even sides of at least 2");
  EXPECT_EQ(errorOf({"--raw", "nv21", "f"}), "--raw needs --size WIDTHxHEIGHT");
  EXPECT_EQ(
      errorOf({"--raw", "yuv10", "--size", "64x64", "--stride", "100", "f"}),
      "--stride 100: shorter than a row of 128 bytes");
  EXPECT_EQ(errorOf({"--size", "64x64", "f.png"}),
            "--size and --stride describe raw frames; add --raw");
  EXPECT_EQ(
      errorOf({"--raw", "nv12", "--size", "64x64", "--format", "nv21", "f"}),
      "--format is for pictures; --raw names a frame's format");
  EXPECT_EQ(errorOf({"--init", "63x3000", "f.png"}),
            "--init 63x3000: the plug-in works at 1/32 of this size, so each "
            "side needs at least 64");
  EXPECT_EQ(errorOf({"--init", "99999x3000", "f.png"}),
            "--init '99999': expected a whole number from 1 to 65536");
}

TEST(PreviewPath, OneFileUsesTheNameAndSeveralAreNumbered) {
  EXPECT_EQ(previewPath("out.png", "a.jpg", 0, 1), "out.png");
  EXPECT_EQ(previewPath("out.png", "a.jpg", 0, 3), "out-1.png");
  EXPECT_EQ(previewPath("shots/out.PNG", "c.jpg", 2, 3), "shots/out-3.PNG");
  EXPECT_EQ(previewPath("out", "a.jpg", 1, 2), "out-2");
}

TEST(PreviewPath, ADirectoryGetsOneFilePerInputName) {
  EXPECT_EQ(previewPath("demo/", "samples/coffee.jpg", 0, 4),
            "demo/coffee.png");
  const std::string dir = ::testing::TempDir();
  EXPECT_EQ(previewPath(dir, "x/frame.nv21", 0, 1),
            dir + (dir.back() == '/' ? "" : "/") + "frame.png");
}

TEST(HexColour, RoundsClampsAndScalesTenBitRows) {
  PaletteColour colour;
  colour.r = 212.5f;
  colour.g = 87.49f;
  colour.b = 0.4f;
  EXPECT_EQ(hexColour(colour, IMAGE_FORMAT_NV21), "#D55700");
  colour.r = -3;
  colour.g = 300;
  colour.b = 255.4f;
  EXPECT_EQ(hexColour(colour, IMAGE_FORMAT_NV12), "#00FFFF");
  // 512 x 255 / 1023 = 127.6; 2 x 255 / 1023 = 0.499.
  colour.r = 1023;
  colour.g = 512;
  colour.b = 2;
  EXPECT_EQ(hexColour(colour, IMAGE_FORMAT_YUV420SP_10BIT), "#FF8000");
}

FrameReport twoColourReport() {
  FrameReport report;
  report.file = "dir/\"quoted\"\tname.jpg";
  report.sourceWidth = 451;
  report.sourceHeight = 300;
  report.format = IMAGE_FORMAT_NV21;
  report.frameWidth = 450;
  report.frameHeight = 300;
  report.frameStride = 450;
  report.workingWidth = 124;
  report.workingHeight = 92;
  report.colorsRequested = 3;
  report.passes = 12;
  PaletteColour first;
  first.r = 212.5f;
  first.g = 87.5f;
  first.b = 87.5f;
  first.lightness = 58.82353f;
  first.members = 8556;  // three quarters of 11408 points
  PaletteColour second;
  second.r = 10;
  second.g = 20;
  second.b = 30;
  second.lightness = 7.843137f;
  second.members = 2852;
  report.colours = {first, second};
  return report;
}

TEST(TextOutput, ListsRankHexRowAndShare) {
  const std::string text = formatText(twoColourReport(), false);
  EXPECT_EQ(text,
            "dir/\"quoted\"\tname.jpg: 451x300 as nv21 450x300, working "
            "124x92, 2 of 3 colours, 12 passes\n"
            "  rank  colour           R         G         B lightness   "
            "share\n"
            "     1  #D55858    212.500    87.500    87.500    58.824  "
            "75.00%\n"
            "     2  #0A141E     10.000    20.000    30.000     7.843  "
            "25.00%\n");
}

TEST(TextOutput, SwatchesAre24BitBackgroundCells) {
  const std::string text = formatText(twoColourReport(), true);
  EXPECT_NE(text.find("#D55858  \x1b[48;2;213;88;88m        \x1b[0m"),
            std::string::npos);
  EXPECT_NE(text.find("#0A141E  \x1b[48;2;10;20;30m        \x1b[0m"),
            std::string::npos);
  EXPECT_EQ(formatText(twoColourReport(), false).find('\x1b'),
            std::string::npos);
}

TEST(JsonOutput, ParsesAndCarriesEveryField) {
  FrameReport failed;
  failed.file = "broken.png";
  failed.error = "bad PNG: \"IDAT\" truncated";
  const nlohmann::json json =
      nlohmann::json::parse(formatJson({twoColourReport(), failed}));
  ASSERT_TRUE(json.is_array());
  ASSERT_EQ(json.size(), 2u);
  const auto& first = json[0];
  EXPECT_EQ(first["file"], "dir/\"quoted\"\tname.jpg");
  EXPECT_EQ(first["format"], "nv21");
  EXPECT_EQ(first["working"]["width"], 124);
  EXPECT_EQ(first["rows"], 2);
  EXPECT_EQ(first["passes"], 12);
  EXPECT_TRUE(first["seed"].is_null());
  ASSERT_EQ(first["colors"].size(), 2u);
  EXPECT_EQ(first["colors"][0]["hex"], "#D55858");
  EXPECT_EQ(first["colors"][0]["r"].get<float>(), 212.5f);
  EXPECT_EQ(first["colors"][0]["lightness"].get<float>(), 58.82353f);
  EXPECT_EQ(first["colors"][1]["members"], 2852);
  EXPECT_DOUBLE_EQ(first["colors"][1]["share"].get<double>(), 25.0);
  EXPECT_EQ(json[1]["error"], "bad PNG: \"IDAT\" truncated");
  EXPECT_EQ(nlohmann::json::parse(formatJson({})), nlohmann::json::array());
}

}  // namespace
}  // namespace pavona::tool
