// The whole plug-in as a host drives it, from fuzzer bytes: the entry table,
// one init record, then one or more frames with their parameter records.
// Records and planes are allocated to exactly the size they describe. Init
// sizes stay below 2560 so the target stays fast; the hostile extremes of
// the init record are a test suite of their own.
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

#include "api/pavona_host.h"
#include "fuzz/fuzz_support.h"

namespace {

using pavona::fuzz::fail;
using pavona::fuzz::fillBytes;
using pavona::fuzz::Plane;
using pavona::fuzz::readEveryByte;

int32_t pickFormat(FuzzedDataProvider& in) {
  static const int32_t kFormats[] = {5, 6, 9, 10};
  if (in.ConsumeIntegralInRange(0, 7) == 0)
    return in.ConsumeIntegral<int32_t>();
  return kFormats[in.ConsumeIntegralInRange(0, 3)];
}

// Mostly the counts a host asks for (the clamp's edges and the values whose
// seeding draws on rand()), sometimes any int32.
int32_t pickColorNum(FuzzedDataProvider& in) {
  if (in.ConsumeIntegralInRange(0, 7) == 0)
    return in.ConsumeIntegral<int32_t>();
  return in.ConsumeIntegralInRange(-2, 22);
}

int32_t clampedColorNum(int32_t colorNum) {
  if (colorNum > 20) return 20;
  if (colorNum < 1) return 3;
  return colorNum;
}

// A stride in bytes for rows of `rowBytes`: packed (0), padded, bottom-up,
// or any short value; multiples of the sample size, as a host aligns them.
int32_t pickStride(FuzzedDataProvider& in, int32_t rowBytes, int sample) {
  const int32_t pad = sample * in.ConsumeIntegralInRange(0, 24);
  switch (in.ConsumeIntegralInRange(0, 3)) {
    case 0:
      return 0;
    case 1:
      return rowBytes + pad;
    case 2:
      return -(rowBytes + pad);
    default:
      return sample * in.ConsumeIntegralInRange(-64, 64);
  }
}

struct Frame {
  std::unique_ptr<Image> image{new Image()};
  std::unique_ptr<Plane> y;
  std::unique_ptr<Plane> uv;
};

// A frame record with planes of exactly the bytes it describes: `height`
// luma rows and `height` / 2 chroma rows of `width` samples, `stride` apart.
// Sizes the library rejects get empty planes, so any read of them is caught.
Frame makeFrame(FuzzedDataProvider& in) {
  Frame frame;
  Image& image = *frame.image;
  std::memset(&image, 0xEE, sizeof image);
  image.format = static_cast<IMAGE_FORMAT_TYPE>(pickFormat(in));
  image.width = in.ConsumeIntegralInRange(-4, 480);
  image.height = in.ConsumeIntegralInRange(-4, 360);
  const int sample = image.format == IMAGE_FORMAT_YUV420SP_10BIT ? 2 : 1;
  const int32_t rowBytes = image.width * sample;
  image.stride = pickStride(in, rowBytes, sample);
  const bool usable = image.width > 0 && image.height > 0 &&
                      image.width % 2 == 0 && image.height % 2 == 0;
  const int32_t pitch = image.stride == 0 ? rowBytes : image.stride;
  frame.y = std::make_unique<Plane>(usable ? image.height : 0, rowBytes, pitch);
  frame.uv =
      std::make_unique<Plane>(usable ? image.height / 2 : 0, rowBytes, pitch);
  fillBytes(in, frame.y->bytes(), frame.y->size());
  fillBytes(in, frame.uv->bytes(), frame.uv->size());
  image.yPlane =
      in.ConsumeIntegralInRange(0, 31) == 0 ? nullptr : frame.y->first();
  image.uvPlane =
      in.ConsumeIntegralInRange(0, 31) == 0 ? nullptr : frame.uv->first();
  return frame;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider in(data, size);
  PavonaApi api;
  std::memset(&api, 0, sizeof api);
  get_algo_api(&api);
  api.setLogStatus(in.ConsumeIntegralInRange(0, 3));

  std::unique_ptr<InitParamData> init(new InitParamData());
  std::memset(init.get(), 0xEE, sizeof *init);
  init->width = in.ConsumeIntegralInRange(-300, 2560);
  init->height = in.ConsumeIntegralInRange(-300, 2560);
  init->widthInBytes = in.ConsumeBool() ? 0 : in.ConsumeIntegral<int32_t>();
  init->format = static_cast<IMAGE_FORMAT_TYPE>(pickFormat(in));
  const bool nullInit = in.ConsumeIntegralInRange(0, 31) == 0;

  void* handle = nullptr;
  try {
    const int32_t status =
        api.algoInitHandle(&handle, nullInit ? nullptr : init.get());
    if (status != (nullInit ? STATUS_NO_INIT_PARAM : 0)) fail("init status");
  } catch (const std::bad_array_new_length&) {
    // A negative working-frame size (one negative init size) is refused
    // the way array new refuses it; nothing was handed out.
    if (handle != nullptr) fail("handle made by a failed init");
    return 0;
  }

  const int frames = in.ConsumeIntegralInRange(1, 3);
  for (int f = 0; f < frames; ++f) {
    Frame frame = makeFrame(in);
    std::unique_ptr<ProcessParamData> param(new ProcessParamData());
    fillBytes(in, reinterpret_cast<uint8_t*>(param.get()), sizeof *param);
    param->colorNum = pickColorNum(in);
    param->showPalette = in.ConsumeIntegral<uint8_t>();
    const bool nullImage = in.ConsumeIntegralInRange(0, 31) == 0;
    std::unique_ptr<ProcessParamData> again(new ProcessParamData(*param));

    if (api.singleProcessImage(handle, nullImage ? nullptr : frame.image.get(),
                               param.get(), nullptr) != 0) {
      fail("singleProcessImage reported a status");
    }
    readEveryByte(param->palette, sizeof param->palette);

    // Seeding for 4 and 8 colours is fixed, so the same frame gives the same
    // bits again on the same handle, whatever came before it.
    const int32_t k = clampedColorNum(param->colorNum);
    if (k == 4 || k == 8) {
      api.singleProcessImage(handle, nullImage ? nullptr : frame.image.get(),
                             again.get(), nullptr);
      if (std::memcmp(param.get(), again.get(), sizeof *param) != 0) {
        fail("same frame, different palette");
      }
    }
  }
  api.isSupportFormat(handle, pickFormat(in));
  api.releaseHandle(handle, nullptr);
  return 0;
}
