#include "tools/pavona/text_output.h"

#include <cstdarg>
#include <cstdio>
#include <string>

#include "tools/pavona/yuv_frame.h"

namespace pavona::tool {
namespace {

std::string printed(const char* format, ...)
    __attribute__((format(printf, 1, 2)));

std::string printed(const char* format, ...) {
  char text[512];
  va_list args;
  va_start(args, format);
  std::vsnprintf(text, sizeof text, format, args);
  va_end(args);
  return text;
}

std::string swatch(const std::string& hex) {
  const unsigned value = std::stoul(hex.substr(1), nullptr, 16);
  return printed("\x1b[48;2;%u;%u;%um        \x1b[0m  ", value >> 16,
                 value >> 8 & 0xFF, value & 0xFF);
}

}  // namespace

std::string formatText(const FrameReport& report, bool swatches) {
  std::string text =
      printed("%s: %dx%d as %s %dx%d, working %dx%d, %zu of %d colours",
              report.file.c_str(), report.sourceWidth, report.sourceHeight,
              formatName(report.format), report.frameWidth, report.frameHeight,
              report.workingWidth, report.workingHeight, report.colours.size(),
              report.colorsRequested);
  if (report.passes >= 0) text += printed(", %d passes", report.passes);
  if (report.seed) text += printed(", seed %u", *report.seed);
  text += "\n";
  text += printed("  rank  colour   %s%9s %9s %9s %9s %7s\n",
                  swatches ? "          " : "", "R", "G", "B", "lightness",
                  "share");
  for (size_t i = 0; i < report.colours.size(); ++i) {
    const PaletteColour& colour = report.colours[i];
    const std::string hex = hexColour(colour, report.format);
    text += printed("  %4zu  %s  %s%9.3f %9.3f %9.3f %9.3f", i + 1, hex.c_str(),
                    swatches ? swatch(hex).c_str() : "", colour.r, colour.g,
                    colour.b, colour.lightness);
    const double share = sharePercent(colour, report);
    text += share >= 0 ? printed(" %6.2f%%\n", share) : "       -\n";
  }
  if (!report.preview.empty()) {
    text += "  preview: " + report.preview + "\n";
  }
  return text;
}

std::string formatVideoText(const VideoSummary& summary) {
  std::string text = printed(
      "%s: %ld of %ld frames as %s %dx%d, working %dx%d, %d colours asked",
      summary.file.c_str(), summary.analysed, summary.decoded,
      formatName(summary.format), summary.width, summary.height,
      summary.workingWidth, summary.workingHeight, summary.colorsRequested);
  if (summary.smooth > 0) text += printed(", smoothed %g", summary.smooth);
  text += "\n";
  const std::vector<double>& flicker = summary.flicker;
  text += printed("  flicker (dE00)    median %7.3f  p95 %7.3f  max %7.3f\n",
                  percentile(flicker, 50), percentile(flicker, 95),
                  percentile(flicker, 100));
  const std::vector<double>& time = summary.pluginMs;
  text += printed("  plug-in ms/frame  median %7.3f  p99 %7.3f  max %7.3f\n",
                  percentile(time, 50), percentile(time, 99),
                  percentile(time, 100));
  if (!summary.timeline.empty()) {
    text += "  timeline: " + summary.timeline + "\n";
  }
  return text;
}

}  // namespace pavona::tool
