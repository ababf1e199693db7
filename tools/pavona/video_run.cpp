#include "tools/pavona/video_run.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>

#include "tools/pavona/frame_thumbnail.h"
#include "tools/pavona/palette_run.h"
#include "tools/pavona/png_write.h"
#include "tools/pavona/progress_bar.h"
#include "tools/pavona/timeline.h"
#include "tools/pavona/tool_error.h"
#include "tools/pavona/video_source.h"
#include "tracker/palette_tracker.h"
#include "tracker/sample_scale.h"

namespace pavona::tool {
namespace {

double shareOf(const PaletteColour& colour, const FrameReport& report) {
  const double share = sharePercent(colour, report);
  return share > 0 ? share / 100 : 0;
}

std::vector<tracker::Swatch> swatchesOf(const FrameReport& report) {
  const double scale = pavona_sample_max(report.format);
  std::vector<tracker::Swatch> swatches;
  for (const PaletteColour& colour : report.colours) {
    swatches.push_back(
        {tracker::labFromRgb({colour.r, colour.g, colour.b}, scale),
         shareOf(colour, report)});
  }
  return swatches;
}

// The report's rows become the tracker's, in track order, each with the
// members of the row that joined it.
void smoothColours(FrameReport& report, tracker::PaletteTracker& tracker) {
  std::vector<tracker::PaletteRow> rows;
  for (const PaletteColour& colour : report.colours) {
    rows.push_back({colour.r, colour.g, colour.b, colour.lightness,
                    shareOf(colour, report)});
  }
  std::vector<PaletteColour> smoothed;
  for (const tracker::SmoothedRow& entry :
       tracker::smoothRows(tracker, rows, pavona_sample_max(report.format))) {
    PaletteColour colour = report.colours[entry.source];
    colour.r = entry.row.r;
    colour.g = entry.row.g;
    colour.b = entry.row.b;
    colour.lightness = entry.row.lightness;
    smoothed.push_back(colour);
  }
  report.colours = std::move(smoothed);
}

// A timeline column: the colours in the order of a tracker that only
// keeps identities, so a colour keeps its height from column to column,
// and the size of the frame's thumbnail.
TimelineColumn columnOf(const FrameReport& report,
                        const std::vector<tracker::Swatch>& swatches,
                        const YuvFrame& frame, tracker::PaletteTracker& order) {
  TimelineColumn column;
  column.seconds = report.seconds.value_or(0);
  column.thumbnail = thumbnailShape(frame, kTimelineThumbnailWidth);
  for (const tracker::TrackedSwatch& entry : order.update(swatches)) {
    const std::array<uint8_t, 3> rgb =
        colourBytes(report.colours[entry.row], report.format);
    column.bands.push_back({rgb[0], rgb[1], rgb[2], entry.swatch.share});
  }
  return column;
}

}  // namespace

VideoRun runVideo(const Options& options, const std::string& path,
                  const std::string& timeline) {
  VideoSource source(path,
                     options.formatGiven
                         ? std::optional<IMAGE_FORMAT_TYPE>(options.format)
                         : std::nullopt);
  std::unique_ptr<PaletteRunner> runner;
  tracker::PaletteTracker smoother(options.smooth > 0 ? options.smooth : 1);
  tracker::PaletteTracker order(1);
  TimelineColumns columns;
  ProgressBar progress(0, !options.verbose && isatty(STDERR_FILENO));
  std::optional<double> duration;  // asked once the stream has started

  VideoRun result;
  VideoSummary& summary = result.summary;
  summary.file = path;
  summary.colorsRequested = options.colors;
  summary.smooth = options.smooth;
  std::vector<tracker::Swatch> previous;
  VideoFrame decoded;
  auto next = [&](VideoFrame* frame) {
    try {
      return source.next(frame);
    } catch (const ToolError& error) {
      progress.clear();
      if (summary.decoded > 0) {
        throw ToolError("after frame " + std::to_string(summary.decoded - 1) +
                        ": " + error.what());
      }
      throw ToolError(std::string("not a PNG or JPEG file, and GStreamer "
                                  "cannot decode it: ") +
                      error.what() + " (use --raw for camera frames)");
    }
  };
  while (options.maxFrames == 0 || summary.analysed < options.maxFrames) {
    const bool picked = summary.decoded % options.every == 0;
    if (!next(picked ? &decoded : nullptr)) break;
    const long index = summary.decoded++;
    if (!picked) continue;
    YuvFrame& frame = decoded.frame;
    if (!runner || frame.format != summary.format) {
      runner = std::make_unique<PaletteRunner>(
          options.initWidth, options.initHeight, frame.format, options.verbose);
    }
    if (!duration) duration = source.durationSeconds();
    char label[64];
    std::snprintf(label, sizeof label, "frame %ld, %.1f s", index,
                  decoded.seconds);
    progress.showPart(*duration > 0 ? decoded.seconds / *duration : 0, label);
    PaletteRun run;
    try {
      run = runner->run(frame, options.colors, options.seed);
    } catch (const ToolError& error) {
      progress.clear();
      throw ToolError(std::string(label) + ": " + error.what());
    }
    FrameReport report;
    report.file = path;
    report.sourceWidth = report.frameWidth = summary.width = frame.width;
    report.sourceHeight = report.frameHeight = summary.height = frame.height;
    report.frameStride = frame.stride;
    report.format = summary.format = frame.format;
    report.workingWidth = summary.workingWidth = run.workingWidth;
    report.workingHeight = summary.workingHeight = run.workingHeight;
    report.colorsRequested = options.colors;
    report.passes = run.passes;
    report.seed = options.seed;
    report.colours = std::move(run.colours);
    report.seconds = decoded.seconds;
    report.frameIndex = index;
    report.pluginMs = run.pluginSeconds * 1000;
    report.smooth = options.smooth;
    if (options.smooth > 0) smoothColours(report, smoother);
    std::vector<tracker::Swatch> now = swatchesOf(report);
    if (summary.analysed > 0) {
      report.flicker = tracker::paletteFlicker(previous, now);
      summary.flicker.push_back(*report.flicker);
    }
    summary.pluginMs.push_back(report.pluginMs);
    ++summary.analysed;
    if (!timeline.empty()) {
      columns.add(columnOf(report, now, frame, order), [&frame] {
        return frameThumbnail(frame, kTimelineThumbnailWidth);
      });
    }
    previous = std::move(now);
    result.frames.push_back(std::move(report));
  }
  progress.clear();
  if (summary.analysed == 0) throw ToolError("no video frames to analyse");
  if (!timeline.empty()) {
    writePng(timeline, renderTimeline(columns.columns()));
    summary.timeline = timeline;
  }
  return result;
}

}  // namespace pavona::tool
