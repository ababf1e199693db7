// Host frame -> working frame -> one float RGB point per working pixel.
#include <cstddef>
#include <cstdint>

#include "base/android_log.h"
#include "colorconv/nv21_to_rgb.h"
#include "src/KImages.h"
#include "zel/neon/imgproc/resize.h"
#include "zel/types.h"

namespace {

// The same two stages for every format, differing only in sample type,
// chroma order, bit depth and the resize's shift.
template <typename T, bool uFirst, int bits, zel::YUV420SemiPlanarFormat layout,
          int shift>
int resampleAndConvert(KImages& engine, const Image& image) {
  T* const downY = reinterpret_cast<T*>(engine.m_downImage.get());
  T* const downUV = reinterpret_cast<T*>(
      engine.m_downImage.get() +
      static_cast<std::ptrdiff_t>(engine.m_downRows) * engine.m_downStride);

  int status = zel::neon::imgproc::resize_v00<T, T, layout, zel::INTERP_NEAREST,
                                              float, shift>(
      static_cast<const T*>(image.yPlane), static_cast<const T*>(image.uvPlane),
      downY, downUV, image.width, image.height, engine.m_downWidth,
      engine.m_downHeight, image.stride, image.stride, engine.m_downStride,
      engine.m_downStride);
  if (status != 0) {
    PAVONA_ALOG_AS("preparePoints", "Pavona_SDK resize_v00 process failed! \n");
    return status;
  }

  status = pavona::nv21_to_rgb<T, uFirst, bits, 0>(
      downY, downUV, reinterpret_cast<float*>(engine.m_points.get()),
      engine.m_downWidth, engine.m_downHeight, engine.m_downStride,
      engine.m_downStride, 12 * engine.m_downWidth);
  if (status != 0) {
    PAVONA_ALOG_AS("preparePoints", "Pavona_SDK nv21_to_rgb process failed!\n");
    return status;
  }
  return 0;
}

}  // namespace

int KImages::preparePoints(Image* image) {
  if (image == nullptr) {
    PAVONA_ALOGE("Pavona_SDK [preparePoints] Input is nullptr!");
    return STATUS_INVALID_ARGUMENT;
  }
  switch (image->format) {
    case IMAGE_FORMAT_NV12:
      return resampleAndConvert<uint8_t, true, 8, zel::YUV420SP_8BIT, 0>(
          *this, *image);
    case IMAGE_FORMAT_NV21:
      return resampleAndConvert<uint8_t, false, 8, zel::YUV420SP_8BIT, 0>(
          *this, *image);
    case IMAGE_FORMAT_YUV420SP_10BIT:
      // 16-bit samples would fill twice the working frame of an engine
      // sized for bytes.
      if (m_bytesPerSample != 2) break;
      return resampleAndConvert<uint16_t, true, 10, zel::YUV420SP_10BIT, 6>(
          *this, *image);
    default:
      break;
  }
  PAVONA_ALOGE("Pavona_SDK preparePoints unsupported");
  return STATUS_INVALID_ARGUMENT;
}
