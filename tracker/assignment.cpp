#include "tracker/assignment.h"

#include <limits>

namespace pavona::tracker {
namespace {

// rows <= cols. Potentials u (rows) and v (cols), 1-based with column 0 as
// the free start of each augmenting path.
std::vector<int> hungarian(const std::vector<double>& cost, int rows,
                           int cols) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  std::vector<double> u(rows + 1), v(cols + 1);
  std::vector<int> rowOfCol(cols + 1), way(cols + 1);
  for (int row = 1; row <= rows; ++row) {
    rowOfCol[0] = row;
    int col0 = 0;
    std::vector<double> minSlack(cols + 1, kInfinity);
    std::vector<bool> used(cols + 1, false);
    do {
      used[col0] = true;
      const int row0 = rowOfCol[col0];
      double delta = kInfinity;
      int col1 = 0;
      for (int col = 1; col <= cols; ++col) {
        if (used[col]) continue;
        const double slack =
            cost[(row0 - 1) * cols + (col - 1)] - u[row0] - v[col];
        if (slack < minSlack[col]) {
          minSlack[col] = slack;
          way[col] = col0;
        }
        if (minSlack[col] < delta) {
          delta = minSlack[col];
          col1 = col;
        }
      }
      for (int col = 0; col <= cols; ++col) {
        if (used[col]) {
          u[rowOfCol[col]] += delta;
          v[col] -= delta;
        } else {
          minSlack[col] -= delta;
        }
      }
      col0 = col1;
    } while (rowOfCol[col0] != 0);
    do {
      const int col1 = way[col0];
      rowOfCol[col0] = rowOfCol[col1];
      col0 = col1;
    } while (col0 != 0);
  }
  std::vector<int> colOfRow(rows, -1);
  for (int col = 1; col <= cols; ++col) {
    if (rowOfCol[col] != 0) colOfRow[rowOfCol[col] - 1] = col - 1;
  }
  return colOfRow;
}

}  // namespace

std::vector<int> assignMinimumCost(const std::vector<double>& cost, int rows,
                                   int cols) {
  if (rows <= cols) return hungarian(cost, rows, cols);
  std::vector<double> transposed(cost.size());
  for (int row = 0; row < rows; ++row) {
    for (int col = 0; col < cols; ++col) {
      transposed[col * rows + row] = cost[row * cols + col];
    }
  }
  const std::vector<int> rowOfCol = hungarian(transposed, cols, rows);
  std::vector<int> colOfRow(rows, -1);
  for (int col = 0; col < cols; ++col) colOfRow[rowOfCol[col]] = col;
  return colOfRow;
}

}  // namespace pavona::tracker
