#include "tracker/palette_tracker.h"

#include <algorithm>

#include "tracker/delta_e.h"

namespace pavona::tracker {

PaletteTracker::PaletteTracker(double weight) : weight_(weight) {}

std::vector<TrackedSwatch> PaletteTracker::update(
    const std::vector<Swatch>& rows) {
  std::vector<Swatch> current;
  for (const Track& track : tracks_) current.push_back({track.lab, 0});
  const std::vector<int> match = matchRows(current, rows);

  std::vector<TrackedSwatch> result;
  std::vector<bool> joined(rows.size(), false);
  for (std::size_t i = 0; i < tracks_.size(); ++i) {
    Track& track = tracks_[i];
    const int row = match[i];
    if (row < 0 || deltaE00(track.lab, rows[row].lab) > kJoinDeltaE) {
      ++track.misses;
      continue;
    }
    const Lab& target = rows[row].lab;
    track.lab = {track.lab.l + weight_ * (target.l - track.lab.l),
                 track.lab.a + weight_ * (target.a - track.lab.a),
                 track.lab.b + weight_ * (target.b - track.lab.b)};
    track.misses = 0;
    joined[row] = true;
    result.push_back({track.id, row, {track.lab, rows[row].share}});
  }
  tracks_.erase(std::remove_if(tracks_.begin(), tracks_.end(),
                               [](const Track& track) {
                                 return track.misses > kPatience;
                               }),
                tracks_.end());
  for (std::size_t row = 0; row < rows.size(); ++row) {
    if (joined[row]) continue;
    tracks_.push_back({nextId_, rows[row].lab, 0});
    result.push_back({nextId_++, static_cast<int>(row), rows[row]});
  }
  return result;
}

std::vector<SmoothedRow> smoothRows(PaletteTracker& tracker,
                                    const std::vector<PaletteRow>& rows,
                                    double scale) {
  std::vector<Swatch> swatches;
  for (const PaletteRow& row : rows) {
    swatches.push_back({labFromRgb({row.r, row.g, row.b}, scale), row.share});
  }
  std::vector<SmoothedRow> smoothed;
  for (const TrackedSwatch& entry : tracker.update(swatches)) {
    const Rgb rgb = rgbFromLab(entry.swatch.lab, scale);
    PaletteRow row;
    row.r = static_cast<float>(rgb.r);
    row.g = static_cast<float>(rgb.g);
    row.b = static_cast<float>(rgb.b);
    row.lightness = rowLightness(row.r, row.g, row.b);
    row.share = entry.swatch.share;
    smoothed.push_back({row, entry.row});
  }
  return smoothed;
}

}  // namespace pavona::tracker
