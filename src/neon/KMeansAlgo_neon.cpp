#include "src/neon/KMeansAlgo_neon.h"

#include <cfloat>
#include <cmath>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>

#include "api/android_log.h"
#include "api/log_sink.h"
#include "src/neon/cluster_sort.h"
#include "src/neon/kmeans_assign.h"

namespace {

// The k-means unit's console sink: it does not follow the API's log switch
// and always prints 1 in its place.
void logPrint(int level, const char* format, ...) {
  va_list args;
  va_start(args, format);
  pavona::printLogLine(level, 1, format, args);
  va_end(args);
}

// Every byte 100: the float 0x64646464 (about 1.685e22) that starts each
// pass as "farther than any centre".
constexpr int kFarByte = 100;

// A pass counter above this ends the loop, so at most 502 passes run.
constexpr int kMaxPassCounter = 500;

// Distance the stop test uses: weighted 2:4:3, with the red square doubled
// by adding it to itself.
float centreShift(const _Point& from, const _Point& to) {
  const float dr = to.r - from.r;
  const float dg = to.g - from.g;
  const float db = to.b - from.b;
  const float dr2 = dr * dr;
  const float dg2 = dg * dg;
  const float db2 = db * db;
  return std::sqrt((dr2 + dr2 + 4.0f * dg2) + 3.0f * db2);
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

void KMeansAlgo::initClusters(const _Point* points, int width, int height) {
  const int h4 = height / 4;
  const int h2 = height / 2;
  const int w4 = width / 4;
  const int w2 = width / 2;
  auto at = [&](int row, int col) { return points[row * width + col]; };
  if (m_clusterCount == 4) {
    // A diamond around the middle of the frame.
    m_clusters[0].center = at(h4, w2);
    m_clusters[1].center = at(h2, w4);
    m_clusters[2].center = at(h2, 3 * w4);
    m_clusters[3].center = at(3 * h4, w2);
  } else if (m_clusterCount == 8) {
    // A 3 x 3 lattice without its bottom-centre cell.
    m_clusters[0].center = at(h4, w4);
    m_clusters[1].center = at(h4, w2);
    m_clusters[2].center = at(h4, 3 * w4);
    m_clusters[3].center = at(h2, w4);
    m_clusters[4].center = at(h2, w2);
    m_clusters[5].center = at(h2, 3 * w4);
    m_clusters[6].center = at(3 * h4, w4);
    m_clusters[7].center = at(3 * h4, 3 * w4);
  } else {
    const int count = width * height;
    for (int i = 0; i < m_clusterCount; ++i) {
      m_clusters[i].center = points[std::rand() % count];
    }
  }
}

_Point KMeansAlgo::reCenter(std::vector<_Point>& points) {
  const int count = static_cast<int>(points.size());
  if (count == 0) {
    PAVONA_ALOG_AS("reCenter", "Pavona_SDK reCenter failed, len == 0. ");
    const float nan = std::numeric_limits<float>::quiet_NaN();
    return {nan, nan, nan};
  }
  float r = 0.0f;
  float g = 0.0f;
  float b = 0.0f;
  for (const _Point& point : points) {
    r += point.r;
    g += point.g;
    b += point.b;
  }
  const float n = static_cast<float>(count);
  return {r / n, g / n, b / n};
}

void KMeansAlgo::processKMeansAlgo(const _Point* points, _Point* out, int width,
                                   int height) {
  const int k = m_clusterCount;
  const int count = width * height;
  initClusters(points, width, height);

  const std::unique_ptr<int[]> labels(new int[count]);
  const std::unique_ptr<float[]> nearest(new float[count]);
  std::vector<_Point> centres(k > 0 ? k : 0);

  int pass = 0;
  while (true) {
    for (int i = 0; i < k; ++i) {
      // The pass's starting centre counts as one member: the mean is damped.
      m_clusters[i].points.push_back(m_clusters[i].center);
      centres[i] = m_clusters[i].center;
    }
    std::memset(nearest.get(), kFarByte, sizeof(float) * count);
    std::memset(labels.get(), 0, sizeof(int) * count);
    pavona::internal::assignNearest_NEON(points, count, centres.data(), k,
                                         nearest.get(), labels.get());

    // Append in sample order, a run of equal labels at a time: neighbouring
    // samples mostly share a cluster. Without clusters no list takes them.
    const int members = k > 0 ? count : 0;
    for (int j = 0; j < members;) {
      const int label = labels[j];
      int end = j + 1;
      while (end < members && labels[end] == label) ++end;
      std::vector<_Point>& list = m_clusters[label].points;
      list.insert(list.end(), points + j, points + end);
      j = end;
    }

    float largestShift = FLT_MIN;
    for (int i = 0; i < k; ++i) {
      const _Point moved = reCenter(m_clusters[i].points);
      const float shift = centreShift(m_clusters[i].center, moved);
      m_clusters[i].center = moved;
      if (shift > largestShift) largestShift = shift;
    }

    if (pass > kMaxPassCounter || largestShift < m_threshold) break;
    for (int i = 0; i < k; ++i) m_clusters[i].points.clear();
    ++pass;
  }
  m_passCount = pass + 1;

  if (k > 0) {
    pavona::internal::unstableSort(m_clusters, m_clusters + k,
                                   pavona::internal::MoreMembersFirst());
  }
  for (int i = 0; i < k; ++i) out[i] = m_clusters[i].center;
}
