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
  EXPECT_TRUE(parseOptions({"-h"}).options.help);
  EXPECT_EQ(parseOptions({"--version"}).error, "");
}

TEST(Options, MistakesAreNamed) {
  const struct {
    std::vector<std::string> args;
    const char* error;
  } cases[] = {
      {{"--frobnicate", "a.png"}, "unknown option '--frobnicate' (see --help)"},
      {{}, "no input files (see --help)"},
      {{"a.png", "--colors"}, "--colors needs a value"},
      {{"--colors", "four", "a.png"},
       "--colors 'four': expected a whole number from -2147483648 to "
       "2147483647"},
      {{"--json=yes", "a.png"}, "--json takes no value"},
      {{"--format", "rgb", "a.png"},
       "--format 'rgb': expected nv21, nv12 or yuv10"},
      {{"--seed", "-1", "a.png"},
       "--seed '-1': expected a whole number from 0 to 4294967295"},
      {{"--raw", "nv21", "--size", "640by480", "f"},
       "--size '640by480': expected WIDTHxHEIGHT"},
      {{"--raw", "nv21", "--size", "0x480", "f"},
       "--size '0': expected a whole number from 1 to 65536"},
      {{"--raw", "nv21", "--size", "641x480", "f"},
       "--size 641x480: camera frames have even sides of at least 2"},
      {{"--raw", "nv21", "f"}, "--raw needs --size WIDTHxHEIGHT"},
      {{"--raw", "yuv10", "--size", "64x64", "--stride", "100", "f"},
       "--stride 100: shorter than a row of 128 bytes"},
      {{"--size", "64x64", "f.png"},
       "--size and --stride describe raw frames; add --raw"},
      {{"--raw", "nv12", "--size", "64x64", "--format", "nv21", "f"},
       "--format is for pictures; --raw names a frame's format"},
      {{"--init", "63x3000", "f.png"},
       "--init 63x3000: the plug-in works at 1/32 of this size, so each side "
       "needs at least 64"},
      {{"--init", "99999x3000", "f.png"},
       "--init '99999': expected a whole number from 1 to 65536"},
  };
  for (const auto& c : cases) EXPECT_EQ(parseOptions(c.args).error, c.error);
}

TEST(PreviewPath, OneFileUsesTheNameSeveralAreNumberedADirectoryGetsNames) {
  EXPECT_EQ(previewPath("out.png", "a.jpg", 0, 1), "out.png");
  EXPECT_EQ(previewPath("out.png", "a.jpg", 0, 3), "out-1.png");
  EXPECT_EQ(previewPath("shots/out.PNG", "c.jpg", 2, 3), "shots/out-3.PNG");
  EXPECT_EQ(previewPath("out", "a.jpg", 1, 2), "out-2");
  EXPECT_EQ(previewPath("demo/", "samples/coffee.jpg", 0, 4),
            "demo/coffee.png");
  const std::string dir = ::testing::TempDir();
  EXPECT_EQ(previewPath(dir, "x/frame.nv21", 0, 1),
            dir + (dir.back() == '/' ? "" : "/") + "frame.png");
}

TEST(HexColour, RoundsClampsAndScalesTenBitRows) {
  EXPECT_EQ(hexColour({212.5f, 87.49f, 0.4f}, IMAGE_FORMAT_NV21), "#D55700");
  EXPECT_EQ(hexColour({-3, 300, 255.4f}, IMAGE_FORMAT_NV12), "#00FFFF");
  // 512 x 255 / 1023 = 127.6; 2 x 255 / 1023 = 0.499.
  EXPECT_EQ(hexColour({1023, 512, 2}, IMAGE_FORMAT_YUV420SP_10BIT), "#FF8000");
}

FrameReport twoColourReport() {
  FrameReport report;
  report.file = "dir/\"quoted\"\tname.jpg";
  report.sourceWidth = 451;
  report.sourceHeight = 300;
  report.frameWidth = report.frameStride = 450;
  report.frameHeight = 300;
  report.workingWidth = 124;
  report.workingHeight = 92;
  report.colorsRequested = 3;
  report.passes = 12;
  // Three quarters and one quarter of 11408 points.
  report.colours = {{212.5f, 87.5f, 87.5f, 58.82353f, 8556},
                    {10, 20, 30, 7.843137f, 2852}};
  return report;
}

TEST(TextOutput, ListsRankHexRowAndShareWithOptionalSwatches) {
  EXPECT_EQ(formatText(twoColourReport(), false),
            "dir/\"quoted\"\tname.jpg: 451x300 as nv21 450x300, working "
            "124x92, 2 of 3 colours, 12 passes\n"
            "  rank  colour           R         G         B lightness   "
            "share\n"
            "     1  #D55858    212.500    87.500    87.500    58.824  "
            "75.00%\n"
            "     2  #0A141E     10.000    20.000    30.000     7.843  "
            "25.00%\n");
  const std::string text = formatText(twoColourReport(), true);
  EXPECT_NE(text.find("#D55858  \x1b[48;2;213;88;88m        \x1b[0m"),
            std::string::npos);
  EXPECT_NE(text.find("#0A141E  \x1b[48;2;10;20;30m        \x1b[0m"),
            std::string::npos);
}

TEST(JsonOutput, ParsesAndCarriesEveryField) {
  FrameReport failed;
  failed.file = "broken.png";
  failed.error = "bad PNG: \"IDAT\" truncated";
  const nlohmann::json json =
      nlohmann::json::parse(formatJson({twoColourReport(), failed}));
  ASSERT_EQ(json.size(), 2u);
  // The run tests read the other fields from real runs.
  const auto& first = json[0];
  EXPECT_EQ(first["file"], "dir/\"quoted\"\tname.jpg");
  EXPECT_TRUE(first["seed"].is_null());
  ASSERT_EQ(first["colors"].size(), 2u);
  EXPECT_EQ(first["colors"][0]["r"].get<float>(), 212.5f);
  EXPECT_EQ(first["colors"][0]["lightness"].get<float>(), 58.82353f);
  EXPECT_DOUBLE_EQ(first["colors"][1]["share"].get<double>(), 25.0);
  EXPECT_EQ(json[1]["error"], "bad PNG: \"IDAT\" truncated");
  EXPECT_EQ(nlohmann::json::parse(formatJson({})), nlohmann::json::array());
}

}  // namespace
}  // namespace pavona::tool
