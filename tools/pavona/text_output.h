// The human-readable result block of one input.
#ifndef PAVONA_TOOLS_PAVONA_TEXT_OUTPUT_H_
#define PAVONA_TOOLS_PAVONA_TEXT_OUTPUT_H_

#include <string>

#include "tools/pavona/frame_report.h"
#include "tools/pavona/video_summary.h"

namespace pavona::tool {

// A heading line and one line per colour. With `swatches`, each line
// carries a 24-bit colour swatch (terminal escape codes).
std::string formatText(const FrameReport& report, bool swatches);

// A video's heading line, its flicker and the plug-in's time per frame.
std::string formatVideoText(const VideoSummary& summary);

}  // namespace pavona::tool

#endif  // PAVONA_TOOLS_PAVONA_TEXT_OUTPUT_H_
