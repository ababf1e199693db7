/*
 * Pavona extensions: what a host can learn about a handle's last frame
 * beyond the palette rows of its ProcessParamData.
 *
 * The entry-point table of pavona_host.h is unchanged by anything here;
 * these are plain exported C functions a host finds with dlsym or links
 * against. Calling them logs nothing and changes nothing the table's
 * entry points produce.
 */
#ifndef PAVONA_API_PAVONA_EXT_H_
#define PAVONA_API_PAVONA_EXT_H_

#include <stdint.h>

#include "pavona_host.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The outcome of the last frame that reached a handle. */
typedef struct PavonaFrameInfo {
  uint32_t size;  /* the caller sets sizeof(PavonaFrameInfo) */
  int32_t status; /* 0 when the last frame wrote rows; otherwise the status
                     the plug-in gave it inside (769, 1027, ...); -1 before
                     any frame */
  int32_t rows;   /* palette rows the last frame wrote; 0 when it failed */
  int32_t passes; /* k-means passes the last frame ran; 0 when it did not
                     cluster */
  int32_t workingWidth; /* the working frame the points came from */
  int32_t workingHeight;
  int32_t members[20]; /* for written row i, the working pixels in its
                          cluster at the last pass, without the centre that
                          pass started from; 0 past `rows` */
} PavonaFrameInfo;

/* Fills `info` for `handle` (from algoInitHandle) and returns 0. Returns
 * STATUS_INVALID_ARGUMENT (769) and writes nothing for a null handle, a null
 * record, or an `info->size` smaller than this record. Row i of the palette
 * covers members[i] / (workingWidth * workingHeight) of the frame. */
int32_t pavonaGetFrameInfo(void* handle, PavonaFrameInfo* info);

#ifdef __cplusplus
}
#endif

#endif /* PAVONA_API_PAVONA_EXT_H_ */
