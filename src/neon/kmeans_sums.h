// The k-means update step's sums: every cluster's members added in sample
// order, one float chain a channel.
#ifndef PAVONA_SRC_NEON_KMEANS_SUMS_H_
#define PAVONA_SRC_NEON_KMEANS_SUMS_H_

#include "base/sample_types.h"

namespace pavona::internal {

// A list's channels summed in list order from 0, and its length.
struct ListSum {
  float r = 0.0f;
  float g = 0.0f;
  float b = 0.0f;
  // Lane 3 of the vector the NEON sum loads and stores: junk, never read.
  float junk = 0.0f;
  int count = 0;
};

// Adds samples [first, last) to sum, in order.
void addList(ListSum& sum, const _Point* first, const _Point* last);

// Adds sample j to sums[labels[j]], for j = 0 ... count-1 in order, and
// counts it there. The three channels of a sample are one vector: lane by
// lane its adds are the plain loop's, so sums are bit for bit the same.
void addMembers_NEON(const _Point* samples, const int* labels, int count,
                     ListSum* sums);

// Plain loop; the oracle for the NEON version.
void addMembers_C(const _Point* samples, const int* labels, int count,
                  ListSum* sums);

}  // namespace pavona::internal

#endif  // PAVONA_SRC_NEON_KMEANS_SUMS_H_
