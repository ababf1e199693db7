#include "src/neon/KMeansAlgo_neon.h"

#include <cstdarg>

#include "api/log_sink.h"

namespace {

// The k-means unit's console sink: it does not follow the API's log switch
// and always prints 1 in its place.
void logPrint(int level, const char* format, ...) {
  va_list args;
  va_start(args, format);
  pavona::printLogLine(level, 1, format, args);
  va_end(args);
}

}  // namespace

KMeansAlgo::KMeansAlgo()
    : m_clusterCount(1),
      m_threshold(0.001f),
      m_clusters(nullptr),
      m_passCount(0) {}

KMeansAlgo::~KMeansAlgo() { delete[] m_clusters; }

int KMeansAlgo::init(int clusterCount, float threshold) {
  m_clusterCount = clusterCount;
  m_threshold = threshold;
  // Install the new array before dropping the old one.
  Cluster* previous = m_clusters;
  m_clusters = new Cluster[clusterCount]();
  delete[] previous;
  if (m_clusters == nullptr) {
    PAVONA_LOGE("Pavona_SDK m_clusters init failed!\n");
    return 1;
  }
  return 0;
}

void KMeansAlgo::uninit() {}
