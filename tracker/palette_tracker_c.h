/*
 * The palette tracker for C callers such as the GStreamer element: rows in
 * the plug-in's layout (R, G, B, lightness) with their shares.
 */
#ifndef PAVONA_TRACKER_PALETTE_TRACKER_C_H_
#define PAVONA_TRACKER_PALETTE_TRACKER_C_H_

#ifdef __cplusplus
extern "C" {
#endif

typedef struct PavonaTracker PavonaTracker;

/* A tracker that moves each colour by `weight` (0 < weight <= 1) towards
 * the row it matches; NULL for a weight out of range. */
PavonaTracker* pavona_tracker_new(double weight);
void pavona_tracker_free(PavonaTracker* tracker);

/* Replaces the `rows` rows and their shares by the tracked ones, in track
 * order: R, G, B smoothed in CIELAB (0..`scale`, 255 or 1023), lightness
 * recomputed as the plug-in does, each share that of the row that joined. */
void pavona_tracker_update(PavonaTracker* tracker, float (*rgbl)[4],
                           double* shares, int rows, double scale);

#ifdef __cplusplus
}
#endif

#endif /* PAVONA_TRACKER_PALETTE_TRACKER_C_H_ */
