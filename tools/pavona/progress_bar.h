// A one-line progress bar on a terminal's stderr for long runs.
#ifndef PAVONA_TOOLS_PAVONA_PROGRESS_BAR_H_
#define PAVONA_TOOLS_PAVONA_PROGRESS_BAR_H_

#include <cstddef>
#include <string>

namespace pavona::tool {

class ProgressBar {
 public:
  // Draws nothing unless `enabled`.
  ProgressBar(size_t total, bool enabled);
  // Shows that item `index` (from 0), called `name`, is being worked on.
  void show(size_t index, const std::string& name);
  // Shows that `done` (0..1) of the work is done, then `label`.
  void showPart(double done, const std::string& label);
  // Erases the bar so that other output starts on a clean line.
  void clear();

 private:
  size_t total_;
  bool enabled_;
};

}  // namespace pavona::tool

#endif  // PAVONA_TOOLS_PAVONA_PROGRESS_BAR_H_
