// Optimal assignment: pairs rows with columns at the least total cost.
#ifndef PAVONA_TRACKER_ASSIGNMENT_H_
#define PAVONA_TRACKER_ASSIGNMENT_H_

#include <vector>

namespace pavona::tracker {

// `cost` is rows x cols, row-major. Returns, for each row, its column, or
// -1 for the rows left over when there are more rows than columns. Every
// possible pair counts, so min(rows, cols) pairs are made, with the least
// sum of their costs (the Hungarian method, O(n^3); palettes have at most
// 20 rows, so this is microseconds).
std::vector<int> assignMinimumCost(const std::vector<double>& cost, int rows,
                                   int cols);

}  // namespace pavona::tracker

#endif  // PAVONA_TRACKER_ASSIGNMENT_H_
