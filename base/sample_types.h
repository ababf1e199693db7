// The unit of work between point preparation, k-means, colour selection
// and palette rendering, and the cluster the k-means engine builds of them.
#ifndef PAVONA_BASE_SAMPLE_TYPES_H_
#define PAVONA_BASE_SAMPLE_TYPES_H_

#include <vector>

// One colour sample or centre, in the frame's sample scale.
struct _Point {
  float r;
  float g;
  float b;
};

struct Cluster {
  _Point center;
  // Members of the current pass; element 0 is the centre the pass began
  // from, so a list is never empty and the mean is damped.
  std::vector<_Point> points;
};

#endif  // PAVONA_BASE_SAMPLE_TYPES_H_
