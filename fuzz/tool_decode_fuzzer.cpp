// The pavona tool's input stages: PNG and JPEG pictures decoded from memory
// and converted to a semi-planar frame, and raw camera frames wrapped with
// a layout the command line accepts. Input bytes are held in blocks of
// exactly their size; every byte a stage returns is read.
#include <cstdint>
#include <string>
#include <vector>

#include "api/pavona_host.h"
#include "fuzz/fuzz_support.h"
#include "tools/pavona/image_decode.h"
#include "tools/pavona/raw_frame.h"
#include "tools/pavona/tool_error.h"
#include "tools/pavona/yuv_convert.h"

namespace {

using pavona::fuzz::fail;
using pavona::fuzz::readEveryByte;
using pavona::tool::RawLayout;
using pavona::tool::ToolError;
using pavona::tool::YuvFrame;

IMAGE_FORMAT_TYPE pickFormat(FuzzedDataProvider& in) {
  static const IMAGE_FORMAT_TYPE kFormats[] = {
      IMAGE_FORMAT_NV21, IMAGE_FORMAT_NV12, IMAGE_FORMAT_YUV420SP_10BIT};
  return kFormats[in.ConsumeIntegralInRange(0, 2)];
}

void checkFrame(const YuvFrame& frame) {
  const size_t expected =
      static_cast<size_t>(frame.stride) * frame.height * 3 / 2;
  if (frame.width < 2 || frame.height < 2 || frame.width % 2 != 0 ||
      frame.height % 2 != 0 || frame.bytes.size() != expected ||
      frame.stride < frame.width * pavona::tool::bytesPerSample(frame.format)) {
    fail("frame does not match its own layout");
  }
  readEveryByte(frame.bytes.data(), frame.bytes.size());
}

// The picture comes first in the input, so seeds are plain PNG and JPEG
// files; the choices are taken from the input's end.
void fuzzPicture(FuzzedDataProvider& in) {
  const IMAGE_FORMAT_TYPE format = pickFormat(in);
  const std::vector<uint8_t> picture = in.ConsumeRemainingBytes<uint8_t>();
  try {
    const pavona::tool::RgbImage image =
        pavona::tool::decodeImage(picture.data(), picture.size());
    if (image.pixels.size() !=
        static_cast<size_t>(image.width) * image.height * 3) {
      fail("decoded picture has the wrong number of bytes");
    }
    readEveryByte(image.pixels.data(), image.pixels.size());
    const YuvFrame frame = pavona::tool::rgbToSemiPlanar(image, format);
    if (frame.width != (image.width & ~1) ||
        frame.height != (image.height & ~1)) {
      fail("converted frame is not the picture cropped to even");
    }
    checkFrame(frame);
  } catch (const ToolError&) {
    // Refused with a message: what the tool does with a bad file.
  }
}

void fuzzRaw(FuzzedDataProvider& in) {
  RawLayout layout;
  layout.format = pickFormat(in);
  layout.width = 2 * in.ConsumeIntegralInRange(1, 64);
  layout.height = 2 * in.ConsumeIntegralInRange(1, 64);
  const int rowBytes =
      layout.width * pavona::tool::bytesPerSample(layout.format);
  layout.stride =
      in.ConsumeBool() ? 0 : rowBytes + in.ConsumeIntegralInRange(0, 40);
  const int64_t needed = pavona::tool::rawFrameBytes(layout);
  const size_t size = in.ConsumeIntegralInRange<size_t>(
      0, static_cast<size_t>(needed + layout.stride + 64));
  std::vector<uint8_t> bytes = in.ConsumeBytes<uint8_t>(size);
  bytes.resize(size);
  std::string note;
  try {
    const YuvFrame frame =
        pavona::tool::rawFrameFromBytes(std::move(bytes), layout, &note);
    if (static_cast<int64_t>(size) < needed) fail("short frame accepted");
    checkFrame(frame);
  } catch (const ToolError&) {
    if (static_cast<int64_t>(size) >= needed) fail("whole frame refused");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider in(data, size);
  if (in.ConsumeIntegralInRange(0, 3) == 0) {
    fuzzRaw(in);
  } else {
    fuzzPicture(in);
  }
  return 0;
}
