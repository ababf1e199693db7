// Decoding, raw frames and the RGB-to-YUV conversion of the pavona tool.
// The round trip decodes with the plug-in's own conversion, not with the
// tool's inverse of it.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "colorconv/nv21_to_rgb.h"
#include "tools/pavona/file_bytes.h"
#include "tools/pavona/image_decode.h"
#include "tools/pavona/png_write.h"
#include "tools/pavona/raw_frame.h"
#include "tools/pavona/timeline.h"
#include "tools/pavona/tool_error.h"
#include "tools/pavona/yuv_convert.h"

namespace pavona::tool {
namespace {

using Rgb = std::array<int, 3>;

int sampleAt(const YuvFrame& frame, const uint8_t* plane, int x, int row) {
  const uint8_t* at =
      plane + size_t(row) * frame.stride + x * bytesPerSample(frame.format);
  if (frame.format != IMAGE_FORMAT_YUV420SP_10BIT) return *at;
  uint16_t word;
  std::memcpy(&word, at, sizeof word);
  return word;
}

// The frame back to RGB, as the plug-in converts it.
template <typename T, bool uFirst, int bits>
std::vector<float> pluginRgb(YuvFrame& frame) {
  std::vector<float> rgb(size_t{3} * frame.width * frame.height);
  EXPECT_EQ(0, (pavona::nv21_to_rgb<T, uFirst, bits, 0>(
                   reinterpret_cast<const T*>(frame.yPlane()),
                   reinterpret_cast<const T*>(frame.uvPlane()), rgb.data(),
                   frame.width, frame.height, frame.stride, frame.stride,
                   12 * frame.width)));
  return rgb;
}

RgbImage uniform(int width, int height, Rgb colour) {
  RgbImage image{width, height, {}};
  for (int i = 0; i < width * height; ++i) {
    for (int c : colour) image.pixels.push_back(static_cast<uint8_t>(c));
  }
  return image;
}

// 4096 colours (every channel on a lattice of step 17), each filling one
// 2x2 block, so that a block's shared chroma belongs to one colour.
RgbImage latticeOfBlocks() {
  RgbImage image = uniform(128, 128, {0, 0, 0});
  for (int y = 0; y < 128; ++y) {
    for (int x = 0; x < 128; ++x) {
      const int index = y / 2 * 64 + x / 2;
      uint8_t* p = &image.pixels[3 * (y * 128 + x)];
      p[0] = static_cast<uint8_t>(index / 256 * 17);
      p[1] = static_cast<uint8_t>(index / 16 % 16 * 17);
      p[2] = static_cast<uint8_t>(index % 16 * 17);
    }
  }
  return image;
}

// NV12 and NV21 decode with their own chroma order, so a swapped pair
// fails here too. NV21's bytes, and so the shared equations, rounding and
// chroma means, SamplePalettes pins bit for bit.
class RoundTrip : public ::testing::TestWithParam<IMAGE_FORMAT_TYPE> {};

TEST_P(RoundTrip, EveryLatticeColourComesBackWithinOneStep) {
  const RgbImage image = latticeOfBlocks();
  YuvFrame frame = rgbToSemiPlanar(image, GetParam());
  ASSERT_EQ(frame.width, 128);
  ASSERT_EQ(frame.height, 128);
  const bool tenBit = GetParam() == IMAGE_FORMAT_YUV420SP_10BIT;
  const std::vector<float> back = tenBit ? pluginRgb<uint16_t, true, 10>(frame)
                                  : GetParam() == IMAGE_FORMAT_NV12
                                      ? pluginRgb<uint8_t, true, 8>(frame)
                                      : pluginRgb<uint8_t, false, 8>(frame);
  // A 10-bit result is compared with the 8-bit colour scaled to 10 bits:
  // half a step from rounding plus the chroma and luma rounding errors.
  for (size_t i = 0; i < back.size(); ++i) {
    const double expected = image.pixels[i] * (tenBit ? 1023.0 / 255.0 : 1);
    ASSERT_LE(std::fabs(back[i] - expected), tenBit ? 2.0 : 1.0)
        << "pixel " << i / 3 << " channel " << i % 3;
  }
}

INSTANTIATE_TEST_SUITE_P(Formats, RoundTrip,
                         ::testing::Values(IMAGE_FORMAT_NV21, IMAGE_FORMAT_NV12,
                                           IMAGE_FORMAT_YUV420SP_10BIT));

TEST(RgbToSemiPlanar, OddSizesAreCroppedToEven) {
  YuvFrame frame =
      rgbToSemiPlanar(uniform(5, 3, {9, 9, 9}), IMAGE_FORMAT_YUV420SP_10BIT);
  EXPECT_EQ(frame.width, 4);
  EXPECT_EQ(frame.height, 2);
  EXPECT_EQ(frame.stride, 8);
  EXPECT_EQ(frame.bytes.size(), 24u);
  EXPECT_THROW(rgbToSemiPlanar(uniform(1, 6, {0, 0, 0}), IMAGE_FORMAT_NV21),
               ToolError);
  EXPECT_THROW(
      rgbToSemiPlanar(uniform(2, 2, {0, 0, 0}), IMAGE_FORMAT_RESERVED10),
      ToolError);
}

std::string scratch(const char* suffix) {
  return ::testing::TempDir() + "pavona_tool_io_" +
         ::testing::UnitTest::GetInstance()->current_test_info()->name() +
         suffix;
}

std::string decodeError(const std::vector<uint8_t>& bytes) {
  try {
    decodeImage(bytes.data(), bytes.size());
  } catch (const ToolError& error) {
    return error.what();
  }
  return "(decoded)";
}

// JPEG sizes, truncated JPEGs and foreign data: ToolCommandLine runs them.
TEST(Decode, PngRoundTripsAndBadDataIsRefusedWithAReason) {
  RgbImage image = latticeOfBlocks();
  image.height = 6;  // the first six rows
  image.pixels.resize(size_t{3} * 128 * 6);
  writePng(scratch(".png"), image);
  std::vector<uint8_t> bytes = readFileBytes(scratch(".png"));
  const RgbImage back = decodeImage(bytes.data(), bytes.size());
  EXPECT_EQ(back.width, 128);
  EXPECT_EQ(back.height, 6);
  EXPECT_EQ(back.pixels, image.pixels);

  bytes.resize(bytes.size() - 20);
  EXPECT_NE(decodeError(bytes).find("bad PNG"), std::string::npos)
      << decodeError(bytes);
  EXPECT_EQ(decodeError({}), "empty file");
  EXPECT_THROW(writePng("/nonexistent/dir/out.png", uniform(2, 2, {1, 2, 3})),
               ToolError);
}

TEST(RawFrame, SizeCountsStrideAndSampleWidth) {
  // 720 rows of 640 bytes; with a stride every row but the last is padded.
  EXPECT_EQ(rawFrameBytes({IMAGE_FORMAT_NV21, 640, 480, 0}), 460800);
  EXPECT_EQ(rawFrameBytes({IMAGE_FORMAT_NV12, 640, 480, 704}), 719 * 704 + 640);
  EXPECT_EQ(rawFrameBytes({IMAGE_FORMAT_YUV420SP_10BIT, 640, 480, 0}), 921600);
}

TEST(RawFrame, LongDataIsNotedAndTenBitWordsAreLittleEndian) {
  std::string note;
  YuvFrame frame = rawFrameFromBytes(std::vector<uint8_t>(14),
                                     {IMAGE_FORMAT_NV21, 4, 2, 0}, &note);
  EXPECT_EQ(note,
            "2 bytes more than a 4x2 nv21 frame with stride 4; the rest is "
            "ignored");
  EXPECT_EQ(frame.stride, 4);

  std::vector<uint8_t> bytes(12, 0);
  bytes[0] = 0xFF;  // first luma word: 0x03FF = 1023
  bytes[1] = 0x03;
  bytes[9] = 0x02;  // first chroma word (U): 0x0200 = 512
  YuvFrame deep =
      rawFrameFromBytes(bytes, {IMAGE_FORMAT_YUV420SP_10BIT, 2, 2, 0}, nullptr);
  EXPECT_EQ(sampleAt(deep, deep.yPlane(), 0, 0), 1023);
  EXPECT_EQ(sampleAt(deep, deep.uvPlane(), 0, 0), 512);
  EXPECT_EQ(deep.stride, 4);
}

// Wherever a timeline ends, the columns collected as frames arrive hold
// the pixels of each thumbnail it draws, and of few others. Column 26 is
// the second to get one; where its "60.0s" does not fit, the shorter "1:00"
// of column 27 may.
TEST(Timeline, CollectedColumnsKeepTheThumbnailsDrawnWhereverItEnds) {
  std::vector<TimelineColumn> full;
  TimelineColumns collected;
  for (int i = 0; i < 40; ++i) {
    TimelineColumn column;
    column.seconds = 58.94 + i * 0.04;
    column.bands = {{1, 2, 3, 1}};
    column.thumbnail.width = 96;
    column.thumbnail.height = 54;
    const TimelineColumn shape = column;
    column.thumbnail.pixels.assign(3 * 96 * 54, static_cast<uint8_t>(i));
    full.push_back(column);
    collected.add(shape, [&column] { return column.thumbnail; });
    ASSERT_EQ(renderTimeline(collected.columns()).pixels,
              renderTimeline(full).pixels)
        << i;
  }
  int kept = 0;
  for (const TimelineColumn& column : collected.columns()) {
    kept += !column.thumbnail.pixels.empty();
  }
  EXPECT_EQ(kept, 2);  // columns 0 and 26
}

}  // namespace
}  // namespace pavona::tool
