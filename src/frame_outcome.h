// What one frame produced beyond the host's palette rows: which cluster
// each written row came from, how many working pixels that cluster held,
// and how many k-means passes ran. A failed frame leaves it all zero.
#ifndef PAVONA_SRC_FRAME_OUTCOME_H_
#define PAVONA_SRC_FRAME_OUTCOME_H_

#include <cstdint>

#include "api/pavona_host.h"

namespace pavona {

struct FrameOutcome {
  int32_t rows = 0;
  int32_t cluster[PAVONA_MAX_COLORS] = {};
  // Members at the last pass, without the centre that pass started from.
  int32_t members[PAVONA_MAX_COLORS] = {};
  int32_t passes = 0;
};

}  // namespace pavona

#endif  // PAVONA_SRC_FRAME_OUTCOME_H_
