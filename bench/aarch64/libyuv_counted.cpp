// libyuv on the photo frame: nearest scaling of both planes to the working
// size, and the working frame to RGB24 (full-range BT.601) then to floats.
#include <libyuv/convert_argb.h>
#include <libyuv/planar_functions.h>
#include <libyuv/scale.h>
#include <libyuv/scale_uv.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "bench/aarch64/counted_cases.h"
#include "bench/frame_cases.h"
#include "bench/resize_cases.h"

namespace bench {

void countLibyuv(const char* what, int) {
  const Nv21Frame frame = FrameSource(Cache::kWarm).next();
  ResizeOutput out({kWorkingWidth, kWorkingHeight});
  auto resize = [&] {
    libyuv::ScalePlane(frame.y, kFrameStride, kFrameWidth, kFrameHeight,
                       out.y.get(), kWorkingWidth, kWorkingWidth,
                       kWorkingHeight, libyuv::kFilterNone);
    libyuv::UVScale(frame.vu, kFrameStride, kFrameWidth / 2, kFrameHeight / 2,
                    out.vu.get(), kWorkingWidth, kWorkingWidth / 2,
                    kWorkingHeight / 2, libyuv::kFilterNone);
  };
  if (std::strcmp(what, "resize") == 0) {
    countRepeats(kCountedRepeats, resize);
  } else if (std::strcmp(what, "convert") == 0) {
    resize();
    const int values = kWorkingWidth * kWorkingHeight * 3;
    std::vector<uint8_t> rgb24(values);
    std::vector<float> rgb(values);
    countRepeats(kCountedRepeats, [&] {
      libyuv::NV21ToRGB24Matrix(out.y.get(), kWorkingWidth, out.vu.get(),
                                kWorkingWidth, rgb24.data(), 3 * kWorkingWidth,
                                &libyuv::kYuvJPEGConstants, kWorkingWidth,
                                kWorkingHeight);
      libyuv::ByteToFloat(rgb24.data(), rgb.data(), 1.0f, values);
    });
  } else {
    std::fprintf(stderr, "unknown case libyuv %s\n", what);
    std::exit(2);
  }
}

}  // namespace bench
