// One frame through the engine: points, clusters, optional preview, palette.
#include "api/android_log.h"
#include "src/KImages.h"

namespace {

constexpr float kKMeansThreshold = 0.001f;

}  // namespace

int KImages::processKImages(Image* image, ProcessParamData* param) {
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
  if (status != 0) {
    PAVONA_ALOGE("Pavona_SDK getPalette process failed! \n");
    return status;
  }

  if (param->showPalette != 0) {
    displayPalette(nullptr, image->format);
  }
  colorChosen(param->palette, image->format);

  if (m_observer != nullptr) {
    int memberCounts[PAVONA_MAX_COLORS];
    for (int row = 0; row < m_rowCount; ++row) {
      // Every list also holds the centre its last pass started from.
      const Cluster& cluster = m_KMeansEngine->m_clusters[m_rowCluster[row]];
      memberCounts[row] = static_cast<int>(cluster.points.size()) - 1;
    }
    m_observer->onPaletteRows(memberCounts, m_rowCount,
                              m_KMeansEngine->m_passCount);
  }
  return 0;
}

int KImages::getPalette() {
  const int status = m_KMeansEngine->init(m_colorNum, kKMeansThreshold);
  m_KMeansEngine->processKMeansAlgo(m_points.get(), m_clusters.get(),
                                    m_downWidth, m_downHeight);
  return status;
}
