// pavonaGetFrameInfo, and what failed frames print, as a host sees them:
// linked against libPavona.so, fed through the entry table.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "api/pavona_ext.h"
#include "tests/support/frames.h"
#include "tests/support/host_records.h"

namespace {

using pavona::testing::Frame;
using pavona::testing::Handle;
using pavona::testing::initRecord;
using pavona::testing::linkedTable;
using pavona::testing::makeFrame8;
using ::testing::HasSubstr;

PavonaFrameInfo frameInfo(void* handle) {
  PavonaFrameInfo info;
  std::memset(&info, 0x5a, sizeof info);
  info.size = sizeof info;
  EXPECT_EQ(pavonaGetFrameInfo(handle, &info), 0);
  return info;
}

ProcessParamData request(int colorNum) {
  ProcessParamData param{};
  param.colorNum = colorNum;
  return param;
}

// A 256 x 192 NV21 frame whose 32 x 32 blocks are flat, so every working
// pixel of the 8 x 6 working frame takes its block's colour whatever the
// sampling position. `region` names each block's colour.
Frame blockFrame(const int (&region)[6][8]) {
  static const uint8_t kYVU[4][3] = {
      {60, 170, 90}, {200, 60, 150}, {120, 110, 40}, {230, 128, 128}};
  Frame frame = makeFrame8(IMAGE_FORMAT_NV21, 256, 192, 0);
  for (int y = 0; y < 192; ++y) {
    for (int x = 0; x < 256; ++x) {
      const uint8_t* c = kYVU[region[y / 32][x / 32]];
      frame.y[y * 256 + x] = c[0];
      if (y % 2 == 0 && x % 2 == 0) {
        frame.uv[(y / 2) * 256 + x] = c[1];
        frame.uv[(y / 2) * 256 + x + 1] = c[2];
      }
    }
  }
  return frame;
}

TEST(FrameInfo, MembersCountEachColoursWorkingPixels) {
  // The k = 4 seeds sit at working (1,4), (3,2), (3,6) and (3,4): one in
  // each region, so the clusters are the regions and their sizes are known.
  // Chroma is shared by 2 x 2 working pixels, so regions follow that grid.
  const int regions[6][8] = {
      {0, 0, 0, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 0, 0, 0, 0},
      {1, 1, 1, 1, 3, 3, 2, 2}, {1, 1, 1, 1, 3, 3, 2, 2},
      {1, 1, 1, 1, 1, 1, 1, 1}, {1, 1, 1, 1, 1, 1, 1, 1}};
  Handle handle(linkedTable(), initRecord(256, 192));
  Frame frame = blockFrame(regions);
  ProcessParamData param = request(4);
  handle.process(&frame.image, param);

  const PavonaFrameInfo info = frameInfo(handle.get());
  EXPECT_EQ(info.status, 0);
  EXPECT_EQ(info.workingWidth, 8);
  EXPECT_EQ(info.workingHeight, 6);
  ASSERT_EQ(info.rows, 4);
  EXPECT_GE(info.passes, 1);
  std::vector<int> members(info.members, info.members + info.rows);
  std::sort(members.begin(), members.end());
  EXPECT_EQ(members, (std::vector<int>{4, 4, 16, 24}));
  for (int row = info.rows; row < 20; ++row) EXPECT_EQ(info.members[row], 0);
}

// A failed frame, after a good one, writes no palette row, reports no
// rows and says on stderr where it failed; the facade then prints its
// success line, inverted. So does a handle too small for a working frame,
// where every frame fails in the resize.
TEST(FrameInfo, EveryFailureReportsItsStatusWithNoRows) {
  const char* const kResize = "Pavona_SDK resize_v00 process failed! \n";
  struct Case {
    const char* what;
    void (*spoil)(Image&);
    std::vector<std::string> err;
  };
  const Case cases[] = {
      {"format refused by point preparation",
       [](Image& i) { i.format = IMAGE_FORMAT_RESERVED10; },
       {"[preparePoints][", "Pavona_SDK preparePoints unsupported",
        "[processKImages][", "Pavona_SDK preparePoints process failed! \n"}},
      {"odd width refused by the resize",
       [](Image& i) { i.width = 3999; },
       {kResize}},
      {"missing luma plane", [](Image& i) { i.yPlane = nullptr; }, {kResize}},
      {"no image", nullptr, {}},
  };
  Handle handle(linkedTable(), initRecord(4000, 3000));
  EXPECT_EQ(frameInfo(handle.get()).status, -1) << "before any frame";
  Frame good = makeFrame8(IMAGE_FORMAT_NV21, 4000, 3000, 3);
  ProcessParamData param = request(8);
  for (const Case& c : cases) {
    handle.process(&good.image, param);
    ASSERT_EQ(frameInfo(handle.get()).rows, 8) << c.what;
    Frame bad = good;
    pavona::testing::bind(bad);
    if (c.spoil != nullptr) c.spoil(bad.image);
    ProcessParamData spoilt = request(8);
    std::memset(spoilt.palette, 0x5a, sizeof spoilt.palette);
    const ProcessParamData before = spoilt;
    const auto out =
        handle.process(c.spoil != nullptr ? &bad.image : nullptr, spoilt);
    EXPECT_EQ(std::memcmp(&spoilt, &before, sizeof before), 0) << c.what;
    for (const std::string& text : c.err) {
      EXPECT_THAT(out.err, HasSubstr(text)) << c.what;
    }
    // Refused before the engine, a missing image prints neither.
    if (!c.err.empty()) {
      EXPECT_THAT(out.out,
                  HasSubstr("pavonaProcess() pavona_process succeeded!\n \n"))
          << c.what;
    }
    const PavonaFrameInfo info = frameInfo(handle.get());
    EXPECT_EQ(info.status, STATUS_INVALID_ARGUMENT) << c.what;
    EXPECT_EQ(info.rows | info.passes | info.members[0], 0) << c.what;
  }
  Handle tiny(linkedTable(), initRecord(48, 40));
  tiny.process(&good.image, param);
  const PavonaFrameInfo info = frameInfo(tiny.get());
  EXPECT_EQ(info.status, STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(info.workingWidth | info.rows | info.passes, 0);
}

TEST(FrameInfo, RefusesBadArgumentsAndWritesNothing) {
  Handle handle(linkedTable(), initRecord(4000, 3000));
  PavonaFrameInfo info;
  std::memset(&info, 0x5a, sizeof info);
  info.size = sizeof info - 1;
  const PavonaFrameInfo before = info;
  EXPECT_EQ(pavonaGetFrameInfo(handle.get(), &info), STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(std::memcmp(&info, &before, sizeof info), 0);
  info.size = sizeof info;
  EXPECT_EQ(pavonaGetFrameInfo(nullptr, &info), STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(pavonaGetFrameInfo(handle.get(), nullptr), STATUS_INVALID_ARGUMENT);
}

}  // namespace
