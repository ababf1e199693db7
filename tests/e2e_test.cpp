// The plug-in as a host sees it: the shared object loaded with dlopen, the
// table filled by get_algo_api, records laid out by the public header.
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "api/pavona_host.h"
#include "tests/support/capture.h"
#include "tests/support/frames.h"
#include "tests/support/host_records.h"

namespace {

using pavona::testing::captureOutput;
using pavona::testing::Frame;
using pavona::testing::Handle;
using pavona::testing::initRecord;
using pavona::testing::makeFrame10;
using pavona::testing::makeFrame8;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using ::testing::Not;

const PavonaApi& table() {
  static const PavonaApi api = [] {
    void* library = dlopen(PAVONA_LIBRARY_PATH, RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
      ADD_FAILURE() << dlerror();
      std::abort();
    }
    auto get =
        reinterpret_cast<PavonaGetAlgoApiFn>(dlsym(library, "get_algo_api"));
    PavonaApi filled{};
    get(&filled);
    return filled;
  }();
  return api;
}

ProcessParamData processRecord(int colorNum, bool showPalette = false) {
  ProcessParamData param{};
  param.colorNum = colorNum;
  param.showPalette = showPalette ? 1 : 0;
  for (auto& row : param.palette) {
    for (float& v : row) v = NAN;
  }
  return param;
}

int writtenRows(const ProcessParamData& param) {
  int rows = 0;
  for (const auto& row : param.palette) rows += !std::isnan(row[0]);
  return rows;
}

bool sameBits(const ProcessParamData& a, const ProcessParamData& b) {
  return std::memcmp(a.palette, b.palette, sizeof a.palette) == 0;
}

class EndToEnd : public ::testing::Test {
 protected:
  void TearDown() override {
    captureOutput([] { table().setLogStatus(1); });
  }
};

TEST_F(EndToEnd, TableIsFilledInSlotOrder) {
  // The entry points are C++ functions; their Itanium names pin each slot.
  static const char* const kSlots[16] = {
      "_Z10getVersionv",
      "_Z12setLogStatusi",
      "_Z14algoInitHandlePPvS_",
      "_Z9debugModePvi",
      "_Z15isSupportFormatPvi",
      "_Z12startProcessPvS_",
      "_Z11stopProcessPvS_",
      "_Z21getProcessImageResultPvP5ImageS_",
      "_Z13setParametersPvS_i",
      "_Z18singleProcessImagePvP5ImageS_S_",
      "_Z12processImagePvP5ImageS1_S_S_",
      "_Z17multiProcessImagePvP14MultInputImageP5ImageS_S_i",
      "_Z16fatalErrorStatusPvS_",
      "_Z13releaseHandlePvS_",
      "_Z9dumpImagePvPKci",
      "_Z13getMemoryInfoPvS_"};
  void* library = dlopen(PAVONA_LIBRARY_PATH, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(library, nullptr);
  const void* const* slots = reinterpret_cast<const void* const*>(&table());
  for (int slot = 0; slot < 16; ++slot) {
    EXPECT_EQ(slots[slot], dlsym(library, kSlots[slot])) << kSlots[slot];
  }
  EXPECT_NE(dlsym(library, "_Z13setParametersPvP23ImageAlgoBaseParameters"),
            nullptr)
      << "the second overload is exported outside the table";
  auto get =
      reinterpret_cast<PavonaGetAlgoApiFn>(dlsym(library, "get_algo_api"));
  EXPECT_EQ(get(nullptr), 0);
  dlclose(library);
}

TEST_F(EndToEnd, VersionTextOutlivesTheCall) {
  const char* version = table().getVersion();
  EXPECT_STREQ(version, "SDK_BASE_20200330_version_1.0");
  table().getVersion();
  EXPECT_STREQ(version, "SDK_BASE_20200330_version_1.0");
}

TEST_F(EndToEnd, InitWithoutRecordKeepsTheHandleVariable) {
  void* handle = reinterpret_cast<void*>(0x1234);
  int32_t status = 0;
  auto out =
      captureOutput([&] { status = table().algoInitHandle(&handle, nullptr); });
  EXPECT_EQ(status, STATUS_NO_INIT_PARAM);
  EXPECT_EQ(handle, reinterpret_cast<void*>(0x1234));
  EXPECT_THAT(out.out, MatchesRegex("set log status 1 1 logText \\[ERROR\\]\\["
                                    " pavonaAPI\\.cpp \\] [0-9]+  "
                                    "algoInitHandle\\(\\) out of memory \n"));
}

TEST_F(EndToEnd, InitPrintsTheBanner) {
  InitParamData init = initRecord(4000, 3000, IMAGE_FORMAT_NV21);
  void* handle = nullptr;
  auto out = captureOutput(
      [&] { EXPECT_EQ(table().algoInitHandle(&handle, &init), 0); });
  EXPECT_THAT(out.out, MatchesRegex("set log status 3 1 logText \\[INFO\\]\\[ "
                                    "pavona\\.cpp \\] [0-9]+  "
                                    "pavonaPrintVersion\\(\\) Pavona version "
                                    ": vc0\\.0\\.0 \n"));
  auto released =
      captureOutput([&] { table().releaseHandle(handle, nullptr); });
  EXPECT_THAT(released.out,
              HasSubstr("pavonaDestory() pavona_destory succeeded!\n \n"));
}

TEST_F(EndToEnd, NullArgumentsAreLoggedAndReportZero) {
  Handle handle(table(), initRecord(4000, 3000, IMAGE_FORMAT_NV21));
  ProcessParamData param = processRecord(3);
  int32_t status = -5;
  auto out = captureOutput([&] {
    status = table().singleProcessImage(handle.get(), nullptr, &param, nullptr);
  });
  EXPECT_EQ(status, 0);
  EXPECT_THAT(out.out, HasSubstr("singleProcessImage() the pavona 0x"));
  EXPECT_THAT(out.out,
              MatchesRegex(".*singleProcessImage\\(\\) pavona 0x[0-9a-f]+ "
                           "pImage1 \\(nil\\) pParam %P \n"));
  EXPECT_EQ(writtenRows(param), 0);

  out = captureOutput([&] { status = table().isSupportFormat(nullptr, 5); });
  EXPECT_EQ(status, 0);
  EXPECT_THAT(out.out, HasSubstr("isSupportFormat() pHandle is null \n"));
}

TEST_F(EndToEnd, FormatQuestionAlwaysAnswersZero) {
  Handle handle(table(), initRecord(4000, 3000, IMAGE_FORMAT_NV21));
  int32_t supported = -1, unsupported = -1;
  auto five = captureOutput(
      [&] { supported = table().isSupportFormat(handle.get(), 5); });
  auto seven = captureOutput(
      [&] { unsupported = table().isSupportFormat(handle.get(), 7); });
  EXPECT_EQ(supported, 0);
  EXPECT_EQ(unsupported, 0);
  EXPECT_THAT(five.out, Not(HasSubstr("don't support format")));
  EXPECT_THAT(seven.out,
              HasSubstr("isSupportFormat() don't support format \n"));
}

TEST_F(EndToEnd, SwitchSilencesOnlyTheEntryPoints) {
  Handle handle(table(), initRecord(4000, 3000, IMAGE_FORMAT_NV21));
  auto out = captureOutput([&] {
    table().setLogStatus(0);
    table().isSupportFormat(nullptr, 5);
    table().isSupportFormat(handle.get(), 7);
  });
  EXPECT_THAT(out.out,
              MatchesRegex("set log status 0 0 \nclose all logclose all log"
                           "close all logset log status 3 1 logText "
                           "\\[INFO\\]\\[ pavona\\.cpp \\] [0-9]+  "
                           "isSupportFormat\\(\\) don't support format \n"));
}

TEST_F(EndToEnd, ReleaseFreesTheSecondPointerEvenWithoutHandle) {
  void* block = std::malloc(64);
  int32_t status = -1;
  auto out =
      captureOutput([&] { status = table().releaseHandle(nullptr, block); });
  EXPECT_EQ(status, 0);
  EXPECT_EQ(out.out, "");
  EXPECT_EQ(table().releaseHandle(nullptr, nullptr), 0);
}

TEST_F(EndToEnd, UnsupportedEntryPointsSayso) {
  Image image{};
  auto out = captureOutput([&] {
    EXPECT_EQ(table().startProcess(nullptr, nullptr), 0);
    EXPECT_EQ(table().processImage(nullptr, &image, &image, nullptr, nullptr),
              0);
    EXPECT_EQ(table().dumpImage(nullptr, "x", 1), 0);
  });
  EXPECT_THAT(out.out, HasSubstr("startProcess() the function not support \n"));
  EXPECT_THAT(out.out, HasSubstr("processImage() the function not support \n"));
  EXPECT_THAT(out.out, HasSubstr("dumpImage() the function not support \n"));
}

TEST_F(EndToEnd, CameraFrameGivesAPaletteEveryTimeTheSame) {
  Handle handle(table(), initRecord(4000, 3000, IMAGE_FORMAT_NV21));
  Frame frame = makeFrame8(IMAGE_FORMAT_NV21, 4000, 3000, 1);
  ProcessParamData first = processRecord(4), second = processRecord(4);
  auto out = handle.process(&frame.image, first);
  handle.process(&frame.image, second);
  EXPECT_EQ(writtenRows(first), 4);
  EXPECT_TRUE(sameBits(first, second));
  EXPECT_THAT(out.out, Not(HasSubstr("succeeded")));
  EXPECT_EQ(out.err, "");
  for (int row = 0; row < 4; ++row) {
    for (int c = 0; c < 3; ++c) {
      EXPECT_GE(first.palette[row][c], -64.0f);
      EXPECT_LE(first.palette[row][c], 320.0f);
    }
  }
}

TEST_F(EndToEnd, ColourCountIsClamped) {
  Handle handle(table(), initRecord(4000, 3000, IMAGE_FORMAT_NV21));
  Frame frame = makeFrame8(IMAGE_FORMAT_NV21, 4000, 3000, 2);
  ProcessParamData none = processRecord(0), many = processRecord(25);
  handle.process(&frame.image, none);
  handle.process(&frame.image, many);
  EXPECT_LE(writtenRows(none), 3);
  EXPECT_TRUE(std::isnan(none.palette[3][0]));
  EXPECT_LE(writtenRows(many), 20);
  EXPECT_GE(writtenRows(many), 4);
}

TEST_F(EndToEnd, FailedFrameLeavesThePaletteAndPrintsTheInvertedLine) {
  Handle handle(table(), initRecord(4000, 3000, IMAGE_FORMAT_NV21));
  Frame frame = makeFrame8(IMAGE_FORMAT_NV21, 4000, 3000, 3);
  frame.image.format = IMAGE_FORMAT_RESERVED10;
  ProcessParamData param = processRecord(3);
  auto out = handle.process(&frame.image, param);
  EXPECT_EQ(writtenRows(param), 0);
  EXPECT_THAT(out.out,
              HasSubstr("pavonaProcess() pavona_process succeeded!\n \n"));
  EXPECT_THAT(out.err, HasSubstr("[preparePoints]["));
  EXPECT_THAT(out.err, HasSubstr("Pavona_SDK preparePoints unsupported"));
  EXPECT_THAT(out.err, HasSubstr("[processKImages]["));
  EXPECT_THAT(out.err, HasSubstr("Pavona_SDK preparePoints process failed!"));
}

TEST_F(EndToEnd, OddWidthFailsInTheResize) {
  Handle handle(table(), initRecord(4000, 3000, IMAGE_FORMAT_NV21));
  Frame frame = makeFrame8(IMAGE_FORMAT_NV21, 4000, 3000, 3);
  frame.image.width = 3999;
  ProcessParamData param = processRecord(3);
  auto out = handle.process(&frame.image, param);
  EXPECT_EQ(writtenRows(param), 0);
  EXPECT_THAT(out.err, HasSubstr("Pavona_SDK resize_v00 process failed!"));
}

TEST_F(EndToEnd, TinyInitGivesZeroWorkingSizeAndFailingFrames) {
  Handle handle(table(), initRecord(48, 40, IMAGE_FORMAT_NV21));
  Frame frame = makeFrame8(IMAGE_FORMAT_NV21, 64, 64, 0);
  ProcessParamData param = processRecord(3);
  auto out = handle.process(&frame.image, param);
  EXPECT_EQ(writtenRows(param), 0);
  EXPECT_THAT(out.err, HasSubstr("Pavona_SDK resize_v00 process failed!"));
}

TEST_F(EndToEnd, SmallerFrameIsResampledToTheSameWorkingSize) {
  Handle handle(table(), initRecord(4000, 3000, IMAGE_FORMAT_NV21));
  Frame small = makeFrame8(IMAGE_FORMAT_NV21, 2000, 1500, 4);
  Frame big = pavona::testing::upscale2x(small);
  ProcessParamData fromSmall = processRecord(8), fromBig = processRecord(8);
  handle.process(&small.image, fromSmall);
  handle.process(&big.image, fromBig);
  EXPECT_EQ(writtenRows(fromSmall), writtenRows(fromBig));
  EXPECT_GE(writtenRows(fromSmall), 1);
  EXPECT_TRUE(sameBits(fromSmall, fromBig));
}

TEST_F(EndToEnd, Nv12IsNv21WithChromaPairsSwapped) {
  Handle handle(table(), initRecord(4000, 3000, IMAGE_FORMAT_NV21));
  Frame nv21 = makeFrame8(IMAGE_FORMAT_NV21, 4000, 3000, 5);
  Frame nv12 = nv21;
  pavona::testing::bind(nv12);
  nv12.image.format = IMAGE_FORMAT_NV12;
  ProcessParamData asNv21 = processRecord(4),
                   sameBytesAsNv12 = processRecord(4);
  handle.process(&nv21.image, asNv21);
  handle.process(&nv12.image, sameBytesAsNv12);
  EXPECT_FALSE(sameBits(asNv21, sameBytesAsNv12));

  for (size_t i = 0; i + 1 < nv12.uv.size(); i += 2) {
    std::swap(nv12.uv[i], nv12.uv[i + 1]);
  }
  ProcessParamData swapped = processRecord(4);
  handle.process(&nv12.image, swapped);
  EXPECT_TRUE(sameBits(asNv21, swapped));
}

TEST_F(EndToEnd, PreviewChangesNothingTheHostReads) {
  Handle handle(table(), initRecord(4000, 3000, IMAGE_FORMAT_NV21));
  Frame frame = makeFrame8(IMAGE_FORMAT_NV21, 4000, 3000, 6);
  ProcessParamData plain = processRecord(8), shown = processRecord(8, true);
  handle.process(&frame.image, plain);
  handle.process(&frame.image, shown);
  EXPECT_TRUE(sameBits(plain, shown));
}

TEST_F(EndToEnd, TenBitFramesNeedATenBitEngine) {
  Frame frame = makeFrame10(4000, 3000, 7);
  {
    Handle handle(table(), initRecord(4000, 3000, IMAGE_FORMAT_YUV420SP_10BIT));
    ProcessParamData param = processRecord(4);
    auto out = handle.process(&frame.image, param);
    EXPECT_EQ(writtenRows(param), 4);
    EXPECT_EQ(out.err, "");
    float brightest = 0;
    for (int row = 0; row < 4; ++row) {
      for (int c = 0; c < 3; ++c)
        brightest = std::max(brightest, param.palette[row][c]);
    }
    EXPECT_GT(brightest, 300.0f) << "values stay in the 10-bit scale";
  }
  {
    Handle handle(table(), initRecord(4000, 3000, IMAGE_FORMAT_NV21));
    ProcessParamData param = processRecord(4);
    auto out = handle.process(&frame.image, param);
    EXPECT_EQ(writtenRows(param), 0);
    EXPECT_THAT(out.err, HasSubstr("Pavona_SDK preparePoints unsupported"));
  }
}

TEST_F(EndToEnd, EightBitFrameOnTenBitEngineIsProcessed) {
  Handle handle(table(), initRecord(4000, 3000, IMAGE_FORMAT_YUV420SP_10BIT));
  Frame frame = makeFrame8(IMAGE_FORMAT_NV21, 4000, 3000, 8);
  ProcessParamData param = processRecord(4);
  auto out = handle.process(&frame.image, param);
  EXPECT_EQ(out.err, "");
  EXPECT_EQ(writtenRows(param), 4);
}

// Pinned palettes, bit for bit, for k = 4 and 8 (seeded without rand()).
// They were recorded once and agree between x86-64 and AArch64; a change
// here means the palette a host gets has changed.
struct Golden {
  IMAGE_FORMAT_TYPE format;
  int seed;
  int k;
  uint32_t rows[8][4];
};

const Golden kGoldens[] = {
    {IMAGE_FORMAT_NV21,
     11,
     4,
     {
         {0x36800000, 0x429667f0, 0x437888c4, 0x4242edc6},
         {0x437cee0c, 0x36000000, 0x414bf844, 0x4246605a},
         {0xb6c00000, 0x43755012, 0x418b02b2, 0x424066f5},
         {0x4378062a, 0x437f0000, 0x40fbeadc, 0x424e2ca8},
     }},
    {IMAGE_FORMAT_NV21,
     12,
     8,
     {
         {0x437f0001, 0x42eebb34, 0x40e910fd, 0x424db661},
         {0x41d78a22, 0x437f0000, 0x4122c6b2, 0x424ffab0},
         {0x415f0e40, 0x43617902, 0xb6f00000, 0x4230d761},
         {0x418bb7ad, 0xb6280000, 0x4364798a, 0x42333226},
         {0x4214e84a, 0x4172feea, 0x437effff, 0x4253e95c},
         {0x4236dd54, 0x4334b754, 0x436ce208, 0x425da576},
         {0x41dd1ddd, 0x4322a3bb, 0x435c23bb, 0x4242562b},
         {0x414eb504, 0x43136d7f, 0x434ced7f, 0x422adc3d},
     }},
    {IMAGE_FORMAT_NV12,
     13,
     8,
     {
         {0x4373b36d, 0x42fd07a7, 0xb6900000, 0x423f2350},
         {0x41c1cbb8, 0x437f0000, 0x408d4997, 0x424b7684},
         {0x40642724, 0x37600000, 0x435a60ba, 0x422b46d8},
         {0x40e1cc48, 0x4364c0ce, 0x00000000, 0x42336a0b},
         {0x414f9e66, 0x4103ae06, 0x437effff, 0x424e7473},
         {0x420d5932, 0x434095e4, 0x435d1cd2, 0x42492313},
         {0x418c5b4e, 0x432f0b6a, 0x434bcb6a, 0x422d996e},
         {0x40476ef8, 0x431fd4d2, 0x433c94d2, 0x421659d8},
     }},
    {IMAGE_FORMAT_YUV420SP_10BIT,
     14,
     4,
     {
         {0x38900000, 0x439bc111, 0x44794860, 0x4343840f},
         {0x44704cb9, 0x37a00000, 0x41af4f6a, 0x433c7869},
         {0x38300000, 0x44771632, 0x423c9555, 0x4341cb22},
         {0x44776607, 0x44800000, 0x41a3d804, 0x434cccd3},
     }},
};

TEST_F(EndToEnd, GoldenPalettesAreBitExact) {
  for (const Golden& golden : kGoldens) {
    SCOPED_TRACE(::testing::Message() << "format " << golden.format << " seed "
                                      << golden.seed << " k " << golden.k);
    Handle handle(table(), initRecord(4000, 3000, golden.format));
    Frame frame = golden.format == IMAGE_FORMAT_YUV420SP_10BIT
                      ? makeFrame10(4000, 3000, golden.seed)
                      : makeFrame8(golden.format, 4000, 3000, golden.seed);
    ProcessParamData param = processRecord(golden.k);
    handle.process(&frame.image, param);
    for (int row = 0; row < golden.k; ++row) {
      for (int c = 0; c < 4; ++c) {
        uint32_t bits;
        std::memcpy(&bits, &param.palette[row][c], sizeof bits);
        EXPECT_EQ(bits, golden.rows[row][c]) << "row " << row << " value " << c;
      }
    }
  }
}

}  // namespace
