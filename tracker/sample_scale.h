/*
 * The value of full intensity in a frame's palette rows, which are in the
 * frame's own sample scale. For the C and C++ callers of the tracker.
 */
#ifndef PAVONA_TRACKER_SAMPLE_SCALE_H_
#define PAVONA_TRACKER_SAMPLE_SCALE_H_

#include "api/pavona_host.h"

/* 1023 for the 10-bit layout, 255 for the 8-bit ones. */
static inline int pavona_sample_max(IMAGE_FORMAT_TYPE format) {
  return format == IMAGE_FORMAT_YUV420SP_10BIT ? 1023 : 255;
}

#endif /* PAVONA_TRACKER_SAMPLE_SCALE_H_ */
