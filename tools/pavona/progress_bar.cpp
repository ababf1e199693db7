#include "tools/pavona/progress_bar.h"

#include <cstdio>

namespace pavona::tool {

ProgressBar::ProgressBar(size_t total, bool enabled)
    : total_(total), enabled_(enabled) {}

void ProgressBar::show(size_t index, const std::string& name) {
  if (!enabled_) return;
  constexpr size_t kWidth = 30;
  const size_t filled = total_ == 0 ? 0 : kWidth * index / total_;
  std::fprintf(stderr, "\r\x1b[K[%s%s] %zu/%zu %.40s",
               std::string(filled, '#').c_str(),
               std::string(kWidth - filled, ' ').c_str(), index + 1, total_,
               name.c_str());
  std::fflush(stderr);
}

void ProgressBar::clear() {
  if (!enabled_) return;
  std::fputs("\r\x1b[K", stderr);
  std::fflush(stderr);
}

}  // namespace pavona::tool
