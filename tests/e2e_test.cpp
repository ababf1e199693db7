// The plug-in as a host sees it: the shared object loaded with dlopen, the
// table filled by get_algo_api, records laid out by the public header.
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <sstream>
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
  std::istringstream slots(
      "_Z10getVersionv _Z12setLogStatusi _Z14algoInitHandlePPvS_ "
      "_Z9debugModePvi _Z15isSupportFormatPvi _Z12startProcessPvS_ "
      "_Z11stopProcessPvS_ _Z21getProcessImageResultPvP5ImageS_ "
      "_Z13setParametersPvS_i _Z18singleProcessImagePvP5ImageS_S_ "
      "_Z12processImagePvP5ImageS1_S_S_ "
      "_Z17multiProcessImagePvP14MultInputImageP5ImageS_S_i "
      "_Z16fatalErrorStatusPvS_ _Z13releaseHandlePvS_ _Z9dumpImagePvPKci "
      "_Z13getMemoryInfoPvS_");
  void* library = dlopen(PAVONA_LIBRARY_PATH, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(library, nullptr);
  const void* const* slot = reinterpret_cast<const void* const*>(&table());
  for (std::string name; slots >> name; ++slot) {
    EXPECT_EQ(*slot, dlsym(library, name.c_str())) << name;
  }
  EXPECT_NE(dlsym(library, "_Z13setParametersPvP23ImageAlgoBaseParameters"),
            nullptr)
      << "the second overload is exported outside the table";
  auto get =
      reinterpret_cast<PavonaGetAlgoApiFn>(dlsym(library, "get_algo_api"));
  EXPECT_EQ(get(nullptr), 0);
  dlclose(library);
  // The version text outlives the call.
  const char* version = table().getVersion();
  table().getVersion();
  EXPECT_STREQ(version, "SDK_BASE_20200330_version_1.0");
}

// What each call prints and returns, byte for byte where the line is fixed
// (the source line numbers vary).
TEST_F(EndToEnd, CallsPrintTheirLinesAndReturnTheirStatus) {
  const struct {
    const char* name;
    std::function<int32_t(void* handle)> call;
    int32_t status;
    std::string out;
  } cases[] = {
      {"init without record keeps the handle variable",
       [](void*) {
         void* handle = reinterpret_cast<void*>(0x1234);
         const int32_t status = table().algoInitHandle(&handle, nullptr);
         EXPECT_EQ(handle, reinterpret_cast<void*>(0x1234));
         return status;
       },
       STATUS_NO_INIT_PARAM,
       "set log status 1 1 logText \\[ERROR\\]\\[ pavonaAPI\\.cpp \\] [0-9]+  "
       "algoInitHandle\\(\\) out of memory \n"},
      {"init prints the banner, release its line",
       [](void*) {
         InitParamData init = initRecord(4000, 3000, IMAGE_FORMAT_NV21);
         void* handle = nullptr;
         const int32_t status = table().algoInitHandle(&handle, &init);
         table().releaseHandle(handle, nullptr);
         return status;
       },
       0,
       "set log status 3 1 logText \\[INFO\\]\\[ pavona\\.cpp \\] [0-9]+  "
       "pavonaPrintVersion\\(\\) Pavona version : vc0\\.0\\.0 \n"
       ".*pavonaDestory\\(\\) pavona_destory succeeded!\n \n"},
      {"null image",
       [](void* handle) {
         ProcessParamData param = processRecord(3);
         const int32_t status =
             table().singleProcessImage(handle, nullptr, &param, nullptr);
         EXPECT_EQ(writtenRows(param), 0);
         return status;
       },
       0,
       ".*singleProcessImage\\(\\) the pavona 0x.*singleProcessImage\\(\\) "
       "pavona 0x[0-9a-f]+ pImage1 \\(nil\\) pParam %P \n"},
      {"formats: no handle, supported, unsupported",
       [](void* handle) {
         return table().isSupportFormat(nullptr, 5) +
                table().isSupportFormat(handle, 5) +
                table().isSupportFormat(handle, 7);
       },
       0,
       ".*isSupportFormat\\(\\) pHandle is null \n"
       "set log status 3 1 logText \\[INFO\\]\\[ pavonaAPI\\.cpp \\] [0-9]+  "
       "isSupportFormat\\(\\) the pavona 0x[0-9a-f]+ \n"
       ".*isSupportFormat\\(\\) don't support format \n"},
      {"switch off silences only the entry points",
       [](void* handle) {
         table().setLogStatus(0);
         table().isSupportFormat(nullptr, 5);
         return table().isSupportFormat(handle, 7);
       },
       0,
       "set log status 0 0 \nclose all logclose all logclose all logset log "
       "status 3 1 logText \\[INFO\\]\\[ pavona\\.cpp \\] [0-9]+  "
       "isSupportFormat\\(\\) don't support format \n"},
      {"unsupported entry points; release frees its second pointer silently",
       [](void*) {
         Image image{};
         return table().startProcess(nullptr, nullptr) +
                table().processImage(nullptr, &image, &image, nullptr,
                                     nullptr) +
                table().dumpImage(nullptr, "x", 1) +
                table().releaseHandle(nullptr, std::malloc(64));
       },
       0,
       ".*startProcess\\(\\) the function not support \n.*processImage\\(\\) "
       "the function not support \n.*dumpImage\\(\\) the function not "
       "support \n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Handle handle(table(), initRecord(4000, 3000, IMAGE_FORMAT_NV21));
    int32_t status = -5;
    auto out = captureOutput([&] { status = c.call(handle.get()); });
    captureOutput([] { table().setLogStatus(1); });
    EXPECT_EQ(status, c.status);
    EXPECT_THAT(out.out, MatchesRegex(c.out));
  }
}

// Frames that give the same palette: a smaller frame and its 2x upscale
// meet the same working frame; NV12 is NV21 with its chroma pairs swapped;
// an 8-bit frame on a 10-bit engine is processed.
TEST_F(EndToEnd, SameWorkingFrameGivesTheSamePalette) {
  Handle handle(table(), initRecord(4000, 3000));
  auto palette = [&](Frame& frame, int k) {
    ProcessParamData param = processRecord(k);
    handle.process(&frame.image, param);
    return param;
  };
  Frame small = makeFrame8(IMAGE_FORMAT_NV21, 2000, 1500, 4);
  Frame big = pavona::testing::upscale2x(small);
  const ProcessParamData fromSmall = palette(small, 8);
  EXPECT_GE(writtenRows(fromSmall), 1);
  EXPECT_TRUE(sameBits(fromSmall, palette(big, 8)));

  Frame nv21 = makeFrame8(IMAGE_FORMAT_NV21, 4000, 3000, 5);
  Frame nv12 = nv21;
  pavona::testing::bind(nv12);
  nv12.image.format = IMAGE_FORMAT_NV12;
  const ProcessParamData asNv21 = palette(nv21, 4);
  EXPECT_FALSE(sameBits(asNv21, palette(nv12, 4)));
  for (size_t i = 0; i + 1 < nv12.uv.size(); i += 2) {
    std::swap(nv12.uv[i], nv12.uv[i + 1]);
  }
  EXPECT_TRUE(sameBits(asNv21, palette(nv12, 4)));

  Handle tenBit(table(), initRecord(4000, 3000, IMAGE_FORMAT_YUV420SP_10BIT));
  ProcessParamData param = processRecord(4);
  EXPECT_EQ(tenBit.process(&nv21.image, param).err, "");
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
     {{0x36800000, 0x429667f0, 0x437888c4, 0x4242edc6},
      {0x437cee0c, 0x36000000, 0x414bf844, 0x4246605a},
      {0xb6c00000, 0x43755012, 0x418b02b2, 0x424066f5},
      {0x4378062a, 0x437f0000, 0x40fbeadc, 0x424e2ca8}}},
    {IMAGE_FORMAT_NV21,
     12,
     8,
     {{0x437f0001, 0x42eebb34, 0x40e910fd, 0x424db661},
      {0x41d78a22, 0x437f0000, 0x4122c6b2, 0x424ffab0},
      {0x415f0e40, 0x43617902, 0xb6f00000, 0x4230d761},
      {0x418bb7ad, 0xb6280000, 0x4364798a, 0x42333226},
      {0x4214e84a, 0x4172feea, 0x437effff, 0x4253e95c},
      {0x4236dd54, 0x4334b754, 0x436ce208, 0x425da576},
      {0x41dd1ddd, 0x4322a3bb, 0x435c23bb, 0x4242562b},
      {0x414eb504, 0x43136d7f, 0x434ced7f, 0x422adc3d}}},
    {IMAGE_FORMAT_NV12,
     13,
     8,
     {{0x4373b36d, 0x42fd07a7, 0xb6900000, 0x423f2350},
      {0x41c1cbb8, 0x437f0000, 0x408d4997, 0x424b7684},
      {0x40642724, 0x37600000, 0x435a60ba, 0x422b46d8},
      {0x40e1cc48, 0x4364c0ce, 0x00000000, 0x42336a0b},
      {0x414f9e66, 0x4103ae06, 0x437effff, 0x424e7473},
      {0x420d5932, 0x434095e4, 0x435d1cd2, 0x42492313},
      {0x418c5b4e, 0x432f0b6a, 0x434bcb6a, 0x422d996e},
      {0x40476ef8, 0x431fd4d2, 0x433c94d2, 0x421659d8}}},
    {IMAGE_FORMAT_YUV420SP_10BIT,
     14,
     4,
     {{0x38900000, 0x439bc111, 0x44794860, 0x4343840f},
      {0x44704cb9, 0x37a00000, 0x41af4f6a, 0x433c7869},
      {0x38300000, 0x44771632, 0x423c9555, 0x4341cb22},
      {0x44776607, 0x44800000, 0x41a3d804, 0x434cccd3}}},
};

// Every time the same, with or without the preview, on a fresh handle or
// one that has seen the frame before, and without an error line.
TEST_F(EndToEnd, GoldenPalettesAreBitExact) {
  for (const Golden& golden : kGoldens) {
    SCOPED_TRACE(::testing::Message() << "format " << golden.format << " seed "
                                      << golden.seed << " k " << golden.k);
    Handle handle(table(), initRecord(4000, 3000, golden.format));
    Frame frame = golden.format == IMAGE_FORMAT_YUV420SP_10BIT
                      ? makeFrame10(4000, 3000, golden.seed)
                      : makeFrame8(golden.format, 4000, 3000, golden.seed);
    for (bool preview : {false, true, false}) {
      ProcessParamData param = processRecord(golden.k, preview);
      auto out = handle.process(&frame.image, param);
      EXPECT_THAT(out.out, Not(HasSubstr("succeeded")));
      EXPECT_EQ(out.err, "");
      EXPECT_EQ(writtenRows(param), golden.k);
      std::vector<uint32_t> bits(golden.k * 4);
      std::memcpy(bits.data(), param.palette, bits.size() * sizeof bits[0]);
      EXPECT_EQ(bits, std::vector<uint32_t>(golden.rows[0],
                                            golden.rows[0] + bits.size()))
          << "preview " << preview;
    }
  }
}

}  // namespace
