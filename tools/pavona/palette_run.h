// Runs frames through the plug-in exactly as a camera host does: through
// the entry-point table only, one handle for the whole run. The
// frame-information call adds what the host's record does not carry:
// cluster populations, the pass count and the working size.
#ifndef PAVONA_TOOLS_PAVONA_PALETTE_RUN_H_
#define PAVONA_TOOLS_PAVONA_PALETTE_RUN_H_

#include <optional>
#include <vector>

#include "api/pavona_host.h"
#include "tools/pavona/frame_report.h"
#include "tools/pavona/yuv_frame.h"

namespace pavona::tool {

// The plug-in's version text (getVersion), without making a handle.
const char* pluginVersion();

struct PaletteRun {
  std::vector<PaletteColour> colours;  // the rows the plug-in wrote
  int passes = -1;
  int workingWidth = 0;
  int workingHeight = 0;
  double pluginSeconds = 0;  // wall time inside singleProcessImage
};

class PaletteRunner {
 public:
  // Makes a handle for frames of `format`, sized for initWidth x
  // initHeight. The plug-in's console and Android log lines are kept off
  // the tool's output, or sent to stderr with `verbose`.
  PaletteRunner(int initWidth, int initHeight, IMAGE_FORMAT_TYPE format,
                bool verbose);
  ~PaletteRunner();
  PaletteRunner(const PaletteRunner&) = delete;
  PaletteRunner& operator=(const PaletteRunner&) = delete;

  // One frame with `colors` passed on unclamped. `seed` reseeds rand()
  // first. Throws ToolError when the plug-in writes no palette row, naming
  // the status it gave the frame.
  PaletteRun run(YuvFrame& frame, int colors, std::optional<unsigned> seed);

 private:
  PavonaApi api_{};
  void* handle_ = nullptr;
  int initWidth_;
  int initHeight_;
  bool verbose_;
};

}  // namespace pavona::tool

#endif  // PAVONA_TOOLS_PAVONA_PALETTE_RUN_H_
