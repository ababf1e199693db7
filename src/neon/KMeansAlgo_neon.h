// K-means clustering of one working frame's RGB points into k centres,
// most populous first. The assignment step runs four samples at a time on
// 128-bit NEON vectors.
#ifndef PAVONA_SRC_NEON_KMEANSALGO_NEON_H_
#define PAVONA_SRC_NEON_KMEANSALGO_NEON_H_

#include <vector>

#include "base/export.h"
#include "base/sample_types.h"

class PAVONA_EXPORT KMeansAlgo {
 public:
  KMeansAlgo();
  ~KMeansAlgo();
  KMeansAlgo(const KMeansAlgo&) = delete;
  KMeansAlgo& operator=(const KMeansAlgo&) = delete;

  // Stores k and the threshold and installs k fresh clusters. Returns 0,
  // or 1 if no cluster array is installed afterwards.
  int init(int clusterCount, float threshold);
  void uninit();
  // Seeds the k centres from the width x height grid.
  void initClusters(const _Point* points, int width, int height);
  // Component-wise mean of `points`; three NaNs (and a log record) if empty.
  _Point reCenter(std::vector<_Point>& points);
  // Clusters width x height samples and writes k centres to `out`.
  void processKMeansAlgo(const _Point* points, _Point* out, int width,
                         int height);

  int m_clusterCount;
  float m_threshold;
  Cluster* m_clusters;
  // Passes run by the last processKMeansAlgo; the engine reports them.
  int m_passCount;
};

#endif  // PAVONA_SRC_NEON_KMEANSALGO_NEON_H_
