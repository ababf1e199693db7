// Runs a video through the plug-in frame by frame and measures how its
// palette holds over time.
#ifndef PAVONA_TOOLS_PAVONA_VIDEO_RUN_H_
#define PAVONA_TOOLS_PAVONA_VIDEO_RUN_H_

#include <string>
#include <vector>

#include "tools/pavona/frame_report.h"
#include "tools/pavona/options.h"
#include "tools/pavona/video_summary.h"

namespace pavona::tool {

struct VideoRun {
  std::vector<FrameReport> frames;  // one per analysed frame
  VideoSummary summary;
};

// Decodes `path`, hands the frames the options pick to the plug-in (one
// handle for the file, srand before each frame with --seed), smooths them
// with --smooth, and draws the timeline into `timeline` unless it is
// empty. Throws ToolError when the file cannot be decoded or a frame gets
// no palette.
VideoRun runVideo(const Options& options, const std::string& path,
                  const std::string& timeline);

}  // namespace pavona::tool

#endif  // PAVONA_TOOLS_PAVONA_VIDEO_RUN_H_
