// Follows a palette's colours from frame to frame, so that a colour keeps
// its place and moves smoothly, without changing what the plug-in wrote.
#ifndef PAVONA_TRACKER_PALETTE_TRACKER_H_
#define PAVONA_TRACKER_PALETTE_TRACKER_H_

#include <vector>

#include "tracker/palette_flicker.h"

namespace pavona::tracker {

struct TrackedSwatch {
  int track = 0;  // identity: numbered from 0 in the order tracks start
  int row = 0;    // the frame's row that joined or started it
  Swatch swatch;  // the track's smoothed colour and the row's share
};

class PaletteTracker {
 public:
  // A new frame's row joins the track it is matched with when their ΔE00
  // is at most this; otherwise it starts a track of its own.
  static constexpr double kJoinDeltaE = 20;
  // A track outlives this many frames in a row without a row joining it,
  // and ends at the next such frame.
  static constexpr int kPatience = 3;

  // `weight` in (0, 1]: how far a track moves towards the colour that joins
  // it, each frame (1 follows the rows as they are).
  explicit PaletteTracker(double weight);

  // Matches the rows to the live tracks (least total ΔE00), moves each
  // matched track by `weight` towards its row in CIELAB, starts tracks for
  // the other rows and ends tracks that stayed unmatched too long. Returns
  // one entry per row, in track order.
  std::vector<TrackedSwatch> update(const std::vector<Swatch>& rows);

 private:
  struct Track {
    int id;
    Lab lab;
    int misses;
  };

  double weight_;
  int nextId_ = 0;
  std::vector<Track> tracks_;  // in id order
};

// A palette row in the plug-in's layout: R, G, B in the frame's sample
// scale, the lightness beside them, and the part of the frame (0..1) its
// cluster covers.
struct PaletteRow {
  float r = 0;
  float g = 0;
  float b = 0;
  float lightness = 0;
  double share = 0;
};

struct SmoothedRow {
  PaletteRow row;  // the track's colour, with the joining row's share
  int source = 0;  // the frame's row that joined or started the track
};

// One frame's rows through `tracker`, in and out of CIELAB: one entry per
// row, in track order, R, G, B smoothed (0..scale, 255 or 1023) and the
// lightness recomputed as the plug-in does. The rows' lightness is unused.
std::vector<SmoothedRow> smoothRows(PaletteTracker& tracker,
                                    const std::vector<PaletteRow>& rows,
                                    double scale);

}  // namespace pavona::tracker

#endif  // PAVONA_TRACKER_PALETTE_TRACKER_H_
