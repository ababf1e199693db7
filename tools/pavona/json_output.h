// The machine-readable result of a run: one JSON array, one object per
// input in the order given.
#ifndef PAVONA_TOOLS_PAVONA_JSON_OUTPUT_H_
#define PAVONA_TOOLS_PAVONA_JSON_OUTPUT_H_

#include <string>
#include <vector>

#include "tools/pavona/frame_report.h"

namespace pavona::tool {

// A failed input becomes {"file": ..., "error": ...}.
std::string formatJson(const std::vector<FrameReport>& reports);

}  // namespace pavona::tool

#endif  // PAVONA_TOOLS_PAVONA_JSON_OUTPUT_H_
