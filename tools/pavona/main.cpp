// pavona: shows the palette the plug-in extracts from pictures, raw camera
// frames or videos, as an engineer evaluating it would want to see it.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "tools/pavona/file_bytes.h"
#include "tools/pavona/frame_report.h"
#include "tools/pavona/frame_source.h"
#include "tools/pavona/image_decode.h"
#include "tools/pavona/json_output.h"
#include "tools/pavona/options.h"
#include "tools/pavona/palette_preview.h"
#include "tools/pavona/palette_run.h"
#include "tools/pavona/png_write.h"
#include "tools/pavona/preview_path.h"
#include "tools/pavona/progress_bar.h"
#include "tools/pavona/text_output.h"
#include "tools/pavona/tool_error.h"
#include "tools/pavona/video_run.h"

namespace pavona::tool {
namespace {

// More files than this get a progress bar on a terminal.
constexpr size_t kQuietFileCount = 3;

bool colourWanted(const Options& options) {
  const char* noColor = std::getenv("NO_COLOR");
  return !options.json && !options.noColor &&
         (noColor == nullptr || *noColor == '\0') && isatty(STDOUT_FILENO);
}

FrameReport process(PaletteRunner& runner, const Options& options,
                    size_t index) {
  const std::string& path = options.inputs[index];
  LoadedFrame loaded = loadFrame(options, path);
  if (!loaded.note.empty()) {
    std::fprintf(stderr, "pavona: %s: %s\n", path.c_str(), loaded.note.c_str());
  }
  PaletteRun run = runner.run(loaded.frame, options.colors, options.seed);
  FrameReport report;
  report.file = path;
  report.sourceWidth = loaded.sourceWidth;
  report.sourceHeight = loaded.sourceHeight;
  report.format = loaded.frame.format;
  report.frameWidth = loaded.frame.width;
  report.frameHeight = loaded.frame.height;
  report.frameStride = loaded.frame.stride;
  report.workingWidth = run.workingWidth;
  report.workingHeight = run.workingHeight;
  report.colorsRequested = options.colors;
  report.passes = run.passes;
  report.seed = options.seed;
  report.colours = std::move(run.colours);
  if (!options.preview.empty()) {
    const std::string target =
        previewPath(options.preview, path, index, options.inputs.size());
    writePng(target, renderPreview(loaded.frame, report));
    report.preview = target;
  }
  return report;
}

bool isVideo(const Options& options, const std::string& path) {
  if (options.raw) return false;
  const std::vector<uint8_t> head = readFileBytes(path, 8);
  return !head.empty() && !isPicture(head.data(), head.size());
}

// An option that does not apply to this kind of input: said once a file,
// so that a missing picture is not a mystery.
void noteIgnored(const std::string& path, const std::string& option,
                 const char* why) {
  if (option.empty()) return;
  std::fprintf(stderr, "pavona: %s: %s\n", path.c_str(), why);
}

void makeDirectory(const std::string& option) {
  if (option.empty() || option.back() != '/') return;
  std::error_code error;
  std::filesystem::create_directories(option, error);
}

int runAll(const Options& options) {
  makeDirectory(options.preview);
  makeDirectory(options.timeline);
  PaletteRunner runner(options.initWidth, options.initHeight,
                       options.frameFormat(), options.verbose);
  const bool swatches = colourWanted(options);
  const size_t count = options.inputs.size();
  ProgressBar progress(count, count > kQuietFileCount && !options.verbose &&
                                  isatty(STDERR_FILENO));
  std::vector<FrameReport> reports;
  bool failed = false;
  for (size_t i = 0; i < count; ++i) {
    const std::string& path = options.inputs[i];
    progress.show(i, path);
    std::string text;
    FrameReport report;
    try {
      if (isVideo(options, path)) {
        noteIgnored(path, options.preview,
                    "--preview draws pictures; a video's is --timeline");
        const std::string timeline =
            options.timeline.empty()
                ? ""
                : previewPath(options.timeline, path, i, count);
        VideoRun video = runVideo(options, path, timeline);
        text = formatVideoText(video.summary);
        for (FrameReport& frame : video.frames) {
          reports.push_back(std::move(frame));
        }
      } else {
        noteIgnored(path, options.timeline,
                    "--timeline draws videos; left out for a picture");
        report = process(runner, options, i);
        text = formatText(report, swatches);
      }
    } catch (const ToolError& error) {
      report = FrameReport();
      report.file = path;
      report.error = error.what();
    }
    progress.clear();
    if (!report.error.empty()) {
      std::fprintf(stderr, "pavona: %s: %s\n", path.c_str(),
                   report.error.c_str());
      failed = true;
    } else if (!options.json) {
      std::fputs(text.c_str(), stdout);
      if (i + 1 < count) std::fputs("\n", stdout);
      std::fflush(stdout);
    }
    if (!report.file.empty()) reports.push_back(std::move(report));
  }
  if (options.json) std::fputs(formatJson(reports).c_str(), stdout);
  return failed ? 1 : 0;
}

int toolMain(const std::vector<std::string>& args) {
  const ParsedOptions parsed = parseOptions(args);
  if (!parsed.error.empty()) {
    std::fprintf(stderr, "pavona: %s\n", parsed.error.c_str());
    return 2;
  }
  const Options& options = parsed.options;
  if (options.help) {
    std::fputs(usageText().c_str(), stdout);
    return 0;
  }
  if (options.version) {
    std::printf("pavona %s\nplug-in %s\n", PAVONA_TOOL_VERSION,
                pluginVersion());
    return 0;
  }
  try {
    return runAll(options);
  } catch (const ToolError& error) {
    std::fprintf(stderr, "pavona: %s\n", error.what());
    return 1;
  }
}

}  // namespace
}  // namespace pavona::tool

int main(int argc, char** argv) {
  return pavona::tool::toolMain(
      std::vector<std::string>(argv + 1, argv + argc));
}
