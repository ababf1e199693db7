// One frame through the engine: points, clusters, optional preview, palette.
#include "base/android_log.h"
#include "src/KImages.h"

namespace {

constexpr float kKMeansThreshold = 0.001f;

}  // namespace

int KImages::processKImages(Image* image, ProcessParamData* param) {
  m_lastFrame = {};
  if (image == nullptr || param == nullptr) {
    return STATUS_NULL_INPUT;
  }
  setParameters(param->colorNum);

  int status = preparePoints(image);
  if (status != 0) {
    PAVONA_ALOGE("Pavona_SDK preparePoints process failed! \n");
    return status;
  }

  // Clustering runs even when its init failed; the status is judged after.
  status = m_KMeansEngine->init(m_colorNum, kKMeansThreshold);
  m_KMeansEngine->processKMeansAlgo(m_points.get(), m_clusters.get(),
                                    m_downWidth, m_downHeight);
  m_lastFrame.passes = m_KMeansEngine->m_passCount;
  if (status != 0) {
    PAVONA_ALOGE("Pavona_SDK getPalette process failed! \n");
    return status;
  }

  if (param->showPalette != 0) {
    displayPalette(nullptr, image->format);
  }
  colorChosen(param->palette, image->format);

  for (int row = 0; row < m_lastFrame.rows; ++row) {
    // Every list also holds the centre its last pass started from.
    const Cluster& cluster =
        m_KMeansEngine->m_clusters[m_lastFrame.cluster[row]];
    m_lastFrame.members[row] = static_cast<int32_t>(cluster.points.size()) - 1;
  }
  return 0;
}

int KImages::getPalette() {
  const int status = m_KMeansEngine->init(m_colorNum, kKMeansThreshold);
  m_KMeansEngine->processKMeansAlgo(m_points.get(), m_clusters.get(),
                                    m_downWidth, m_downHeight);
  return status;
}
