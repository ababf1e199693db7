#include "src/KImages.h"

#include <cstdint>
#include <memory>
#include <new>

#include "base/android_log.h"
#include "src/size32.h"

namespace {

// A negative length (from negative init sizes) is refused the way array new
// refuses it; array new of bytes would instead read it as a huge size.
int32_t arrayLength(int64_t exact) {
  const int32_t length = pavona::exactInt32(exact);
  if (length < 0) {
    throw std::bad_array_new_length();
  }
  return length;
}

// ((3 * w * h) / 2) * bytesPerSample, each step in 32 bits. The working
// sizes are at most 2^26 in magnitude, so every step is exact in 64 bits.
int32_t downImageBytes(int32_t w, int32_t h, int32_t bytesPerSample) {
  const int32_t threeWH = pavona::exactInt32(int64_t{3} * w * h);
  return arrayLength(int64_t{threeWH / 2} * bytesPerSample);
}

}  // namespace

KImages::KImages()
    : m_colorNum(3),
      m_maxColorNum(20),
      m_bytesPerSample(1),
      m_downWidth(0),
      m_downHeight(0),
      m_downStride(0),
      m_downRows(0) {}

KImages::~KImages() = default;

int KImages::init(InitParamData* pInitParam) {
  m_bytesPerSample = pInitParam->format == IMAGE_FORMAT_YUV420SP_10BIT ? 2 : 1;
  int32_t w = pInitParam->width / 32;
  if (pInitParam->widthInBytes != 0) {
    w /= m_bytesPerSample;
  }
  w &= ~1;
  const int32_t h = (pInitParam->height / 32) & ~1;

  m_downStride = w * m_bytesPerSample;
  m_downRows = h;
  m_downWidth = w;
  m_downHeight = h;

  m_downImage =
      std::make_unique<uint8_t[]>(downImageBytes(w, h, m_bytesPerSample));
  if (!m_downImage) {
    PAVONA_ALOGE("m_downImage init failed!\n");
    return 1;
  }
  m_points = std::make_unique<_Point[]>(arrayLength(int64_t{w} * h));
  if (!m_points) {
    PAVONA_ALOGE("m_points init failed!\n");
    return 1;
  }
  m_clusters = std::make_unique<_Point[]>(m_maxColorNum);
  if (!m_clusters) {
    PAVONA_ALOGE("m_clusters init failed!\n");
    return 1;
  }
  m_KMeansEngine = std::make_unique<KMeansAlgo>();
  if (!m_KMeansEngine) {
    PAVONA_ALOGE("m_KMeansEngine init failed!\n");
    return 1;
  }
  return 0;
}

void KImages::setParameters(int colorNum) {
  if (colorNum > m_maxColorNum) {
    m_colorNum = m_maxColorNum;
  } else if (colorNum < 1) {
    m_colorNum = 3;
  } else {
    m_colorNum = colorNum;
  }
}

int KImages::uninit() { return 0; }
