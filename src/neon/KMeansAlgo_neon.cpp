#include "src/neon/KMeansAlgo_neon.h"

#include <cfloat>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <memory>

#include "base/android_log.h"
#include "base/log_sink.h"
#include "src/neon/cluster_sort.h"
#include "src/neon/kmeans_assign.h"
#include "src/neon/kmeans_sums.h"

namespace {

// The k-means unit's console sink: it does not follow the API's log switch
// and always prints 1 in its place.
constexpr auto logPrint = pavona::logPrintIgnoringSwitch;

using pavona::internal::addList;
using pavona::internal::ListSum;

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

// The component-wise mean of a list; three NaNs and a record when empty.
_Point meanOf(const ListSum& sum) {
  if (sum.count == 0) {
    PAVONA_ALOG_AS("reCenter", "Pavona_SDK reCenter failed, len == 0. ");
    const float nan = std::numeric_limits<float>::quiet_NaN();
    return {nan, nan, nan};
  }
  const float n = static_cast<float>(sum.count);
  return {sum.r / n, sum.g / n, sum.b / n};
}

// Calls visit(label, first, last) for each run [first, last) of equal
// labels, in sample order: neighbouring samples mostly share a cluster.
template <class Visit>
void forEachRun(const int* labels, int count, Visit visit) {
  for (int first = 0; first < count;) {
    const int label = labels[first];
    int last = first + 1;
    while (last < count && labels[last] == label) ++last;
    visit(label, first, last);
    first = last;
  }
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
  ListSum sum;
  addList(sum, points.data(), points.data() + points.size());
  return meanOf(sum);
}

void KMeansAlgo::processKMeansAlgo(const _Point* points, _Point* out, int width,
                                   int height) {
  const int k = m_clusterCount;
  const int count = width * height;
  initClusters(points, width, height);

  const std::unique_ptr<int[]> labels(new int[count]);
  // One float block: the sample planes the assignment reads, split once
  // for every pass, then the nearest distances.
  const std::unique_ptr<float[]> floats(
      new float[4 * static_cast<std::size_t>(count)]);
  const pavona::internal::SamplePlanes planes =
      pavona::internal::splitSamples_NEON(points, count, floats.get());
  // The assignment keeps its per-sample gaps where the nearest distances
  // were, so bounding costs no memory.
  pavona::internal::BoundedAssignment assignment(
      planes, count, floats.get() + 3 * static_cast<std::size_t>(count),
      labels.get());
  std::vector<_Point> centres(k > 0 ? k : 0);
  std::vector<ListSum> sums(k > 0 ? k : 0);
  // Without clusters no list takes the samples.
  const int members = k > 0 ? count : 0;

  // A pass's list of cluster i is its starting centre, then its members in
  // sample order (on the first pass after whatever a previous call left
  // there). Only the last pass's lists outlive the call, so earlier passes
  // keep just their sums, added in exactly that order.
  int pass = 0;
  while (true) {
    for (int i = 0; i < k; ++i) {
      centres[i] = m_clusters[i].center;
      sums[i] = ListSum();
      if (pass == 0) {
        const std::vector<_Point>& left = m_clusters[i].points;
        addList(sums[i], left.data(), left.data() + left.size());
      }
      // The starting centre counts as one member: the mean is damped.
      addList(sums[i], &centres[i], &centres[i] + 1);
    }
    assignment.assign(centres.data(), k);
    pavona::internal::addMembers_NEON(points, labels.get(), members,
                                      sums.data());

    float largestShift = FLT_MIN;
    for (int i = 0; i < k; ++i) {
      const _Point moved = meanOf(sums[i]);
      const float shift = centreShift(m_clusters[i].center, moved);
      m_clusters[i].center = moved;
      if (shift > largestShift) largestShift = shift;
    }

    if (pass > kMaxPassCounter || largestShift < m_threshold) break;
    ++pass;
  }
  m_passCount = pass + 1;

  for (int i = 0; i < k; ++i) {
    std::vector<_Point>& list = m_clusters[i].points;
    if (pass > 0) list.clear();
    list.reserve(static_cast<std::size_t>(sums[i].count));
    list.push_back(centres[i]);
  }
  forEachRun(labels.get(), members, [&](int label, int first, int last) {
    std::vector<_Point>& list = m_clusters[label].points;
    list.insert(list.end(), points + first, points + last);
  });

  if (k > 0) {
    pavona::internal::unstableSort(m_clusters, m_clusters + k,
                                   pavona::internal::MoreMembersFirst());
  }
  for (int i = 0; i < k; ++i) out[i] = m_clusters[i].center;
}
