// The machine-readable result of a run: one JSON array, one object per
// picture or analysed video frame, in the order given.
#ifndef PAVONA_TOOLS_PAVONA_JSON_OUTPUT_H_
#define PAVONA_TOOLS_PAVONA_JSON_OUTPUT_H_

#include <string>
#include <vector>

#include "tools/pavona/frame_report.h"

namespace pavona::tool {

// A failed input becomes {"file": ..., "error": ...}. A video gives an
// object per analysed frame, with its index in decoding order, timestamp
// (seconds), time in the plug-in (pluginMs), flicker from the previous
// analysed frame (null for the first) and the smoothing weight (0: none).
std::string formatJson(const std::vector<FrameReport>& reports);

}  // namespace pavona::tool

#endif  // PAVONA_TOOLS_PAVONA_JSON_OUTPUT_H_
