#include "tools/pavona/palette_run.h"

#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>

#include "api/pavona_ext.h"
#include "tools/pavona/tool_error.h"

namespace pavona::tool {
namespace {

// The plug-in prints its console log on stdout and its Android log on
// stderr. While a library call runs, both go to /dev/null, or with
// `verbose` both to stderr, so the tool's stdout holds only its results.
class LibraryOutput {
 public:
  explicit LibraryOutput(bool verbose) {
    std::fflush(stdout);
    std::fflush(stderr);
    savedOut_ = dup(STDOUT_FILENO);
    savedErr_ = dup(STDERR_FILENO);
    const int sink =
        verbose ? dup(STDERR_FILENO) : open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (sink >= 0) {
      dup2(sink, STDOUT_FILENO);
      if (!verbose) dup2(sink, STDERR_FILENO);
      close(sink);
    }
  }
  ~LibraryOutput() {
    std::fflush(stdout);
    std::fflush(stderr);
    restore(savedOut_, STDOUT_FILENO);
    restore(savedErr_, STDERR_FILENO);
  }
  LibraryOutput(const LibraryOutput&) = delete;
  LibraryOutput& operator=(const LibraryOutput&) = delete;

 private:
  static void restore(int saved, int fd) {
    if (saved < 0) return;
    dup2(saved, fd);
    close(saved);
  }

  int savedOut_;
  int savedErr_;
};

PavonaApi fillTable() {
  PavonaApi api;
  std::memset(&api, 0, sizeof api);
  get_algo_api(&api);
  return api;
}

bool written(const float (&row)[4]) {
  for (const float value : row) {
    if (std::isnan(value)) return false;
  }
  return true;
}

}  // namespace

const char* pluginVersion() {
  const PavonaApi api = fillTable();
  return api.getVersion != nullptr ? api.getVersion() : "unknown";
}

PaletteRunner::PaletteRunner(int initWidth, int initHeight,
                             IMAGE_FORMAT_TYPE format, bool verbose)
    : api_(fillTable()),
      initWidth_(initWidth),
      initHeight_(initHeight),
      verbose_(verbose) {
  // A host checks the slots it calls rather than jump through a null one.
  if (api_.setLogStatus == nullptr || api_.algoInitHandle == nullptr ||
      api_.singleProcessImage == nullptr || api_.releaseHandle == nullptr) {
    throw ToolError("libPavona.so leaves entry points of its table empty");
  }
  InitParamData init;
  std::memset(&init, 0, sizeof init);
  init.width = initWidth;
  init.height = initHeight;
  init.widthInBytes = 0;
  init.format = format;
  LibraryOutput output(verbose_);
  // Verbose runs keep the entry points' own log lines as well.
  if (!verbose_) api_.setLogStatus(0);
  api_.algoInitHandle(&handle_, &init);
}

PaletteRunner::~PaletteRunner() {
  LibraryOutput output(verbose_);
  api_.releaseHandle(handle_, nullptr);
}

PaletteRun PaletteRunner::run(YuvFrame& frame, int colors,
                              std::optional<unsigned> seed) {
  ProcessParamData param;
  std::memset(&param, 0, sizeof param);
  param.colorNum = colors;
  // Rows the plug-in does not write stay NaN, which tells them apart.
  for (auto& row : param.palette) {
    for (float& value : row) value = std::numeric_limits<float>::quiet_NaN();
  }
  Image image;
  std::memset(&image, 0, sizeof image);
  image.format = frame.format;
  image.width = frame.width;
  image.height = frame.height;
  image.stride = frame.stride;
  image.yPlane = frame.yPlane();
  image.uvPlane = frame.uvPlane();

  double pluginSeconds = 0;
  if (seed) std::srand(*seed);
  {
    LibraryOutput output(verbose_);
    const auto start = std::chrono::steady_clock::now();
    api_.singleProcessImage(handle_, &image, &param, nullptr);
    pluginSeconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start)
            .count();
  }
  PavonaFrameInfo info;
  std::memset(&info, 0, sizeof info);
  info.size = sizeof info;
  if (pavonaGetFrameInfo(handle_, &info) != 0 || info.status != 0) {
    if (info.status == STATUS_ENGINE_SETUP_FAILED) {
      throw ToolError("the plug-in could not set up its engine for " +
                      std::to_string(initWidth_) + "x" +
                      std::to_string(initHeight_));
    }
    throw ToolError("the plug-in wrote no palette (status " +
                    std::to_string(info.status) +
                    "; run with --verbose to see its log)");
  }

  PaletteRun result;
  for (int row = 0; row < PAVONA_MAX_COLORS && written(param.palette[row]);
       ++row) {
    const float* values = param.palette[row];
    PaletteColour colour;
    colour.r = values[0];
    colour.g = values[1];
    colour.b = values[2];
    colour.lightness = values[3];
    if (row < info.rows) colour.members = info.members[row];
    result.colours.push_back(colour);
  }
  result.pluginSeconds = pluginSeconds;
  result.passes = info.passes;
  result.workingWidth = info.workingWidth;
  result.workingHeight = info.workingHeight;
  return result;
}

}  // namespace pavona::tool
