#include "tools/pavona/progress_bar.h"

#include <algorithm>
#include <cstdio>

namespace pavona::tool {

ProgressBar::ProgressBar(size_t total, bool enabled)
    : total_(total), enabled_(enabled) {}

void ProgressBar::show(size_t index, const std::string& name) {
  showPart(
      total_ == 0 ? 0 : static_cast<double>(index) / total_,
      std::to_string(index + 1) + "/" + std::to_string(total_) + " " + name);
}

void ProgressBar::showPart(double done, const std::string& label) {
  if (!enabled_) return;
  constexpr size_t kWidth = 30;
  const size_t filled =
      static_cast<size_t>(kWidth * std::clamp(done, 0.0, 1.0));
  std::fprintf(stderr, "\r\x1b[K[%s%s] %.48s", std::string(filled, '#').c_str(),
               std::string(kWidth - filled, ' ').c_str(), label.c_str());
  std::fflush(stderr);
}

void ProgressBar::clear() {
  if (!enabled_) return;
  std::fputs("\r\x1b[K", stderr);
  std::fflush(stderr);
}

}  // namespace pavona::tool
