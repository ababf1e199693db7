/*
 * A camera host in miniature, in plain C: load libPavona.so, fill the entry
 * table through get_algo_api, make a handle for 4000 x 3000 NV21 frames,
 * process a few synthesised frames, print their palettes and what
 * pavonaGetFrameInfo tells of each, and release.
 *
 * Builds with nothing but the installed headers:
 *   gcc host-example.c $(pkg-config --cflags --libs pavona) -ldl
 * The plug-in is the first argument, else PAVONA_LIBRARY_PATH, else
 * libPavona.so found by the loader's search (LD_LIBRARY_PATH and the like).
 */
#include <dlfcn.h>
#include <math.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "pavona_ext.h"
#include "pavona_host.h"

#ifndef PAVONA_LIBRARY_PATH
#define PAVONA_LIBRARY_PATH "libPavona.so"
#endif

typedef int32_t (*GetFrameInfoFn)(void* handle, PavonaFrameInfo* info);

enum { kWidth = 4000, kHeight = 3000, kFrames = 3 };

/* A frame of four coloured quadrants whose colours drift with `frame`. */
static void synthesise_nv21(uint8_t* y_plane, uint8_t* vu_plane, int frame) {
  static const uint8_t quadrant_yuv[4][3] = {
      {81, 90, 240}, {145, 54, 34}, {41, 240, 110}, {210, 16, 146}};
  for (int row = 0; row < kHeight; ++row) {
    for (int col = 0; col < kWidth; ++col) {
      int q = (row >= kHeight / 2) * 2 + (col >= kWidth / 2);
      y_plane[(size_t)row * kWidth + col] =
          (uint8_t)(quadrant_yuv[q][0] + frame * 8);
    }
  }
  for (int row = 0; row < kHeight / 2; ++row) {
    for (int pair = 0; pair < kWidth / 2; ++pair) {
      int q = (row >= kHeight / 4) * 2 + (pair >= kWidth / 4);
      uint8_t* vu = vu_plane + (size_t)row * kWidth + 2 * pair;
      vu[0] = quadrant_yuv[q][2]; /* V first: NV21 */
      vu[1] = quadrant_yuv[q][1];
    }
  }
}

/* The rows, passes and each row's share of the working frame, from the
 * frame-information call. */
static void print_frame_info(GetFrameInfoFn get_frame_info, void* handle) {
  if (get_frame_info == NULL) return;
  PavonaFrameInfo info;
  memset(&info, 0, sizeof info);
  info.size = sizeof info;
  if (get_frame_info(handle, &info) != 0) {
    printf("  pavonaGetFrameInfo refused the handle\n");
    return;
  }
  printf("  %d rows, %d passes, shares", info.rows, info.passes);
  const double pixels = (double)info.workingWidth * info.workingHeight;
  for (int row = 0; row < info.rows; ++row) {
    printf(" %.1f%%", pixels > 0 ? 100.0 * info.members[row] / pixels : 0.0);
  }
  printf(" of the %d x %d working frame\n", info.workingWidth,
         info.workingHeight);
}

int main(int argc, char** argv) {
  const char* path = argc > 1 ? argv[1] : PAVONA_LIBRARY_PATH;
  void* library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
  if (library == NULL) {
    fprintf(stderr, "host-example: cannot load %s: %s\n", path, dlerror());
    return 1;
  }
  PavonaGetAlgoApiFn get_api =
      (PavonaGetAlgoApiFn)dlsym(library, "get_algo_api");
  if (get_api == NULL) {
    fprintf(stderr, "host-example: no get_algo_api in %s\n", path);
    dlclose(library);
    return 1;
  }
  /* Newer than the table: an older library may not have it. */
  GetFrameInfoFn get_frame_info =
      (GetFrameInfoFn)dlsym(library, "pavonaGetFrameInfo");

  PavonaApi api;
  memset(&api, 0, sizeof api);
  get_api(&api);
  printf("Pavona %s\n", api.getVersion());
  if (get_frame_info == NULL) {
    printf("(this libPavona.so has no pavonaGetFrameInfo)\n");
  }
  api.setLogStatus(0);

  InitParamData init;
  memset(&init, 0, sizeof init);
  init.width = kWidth;
  init.height = kHeight;
  init.format = IMAGE_FORMAT_NV21;
  void* handle = NULL;
  if (api.algoInitHandle(&handle, &init) != 0 || handle == NULL) {
    fprintf(stderr, "host-example: algoInitHandle failed\n");
    dlclose(library);
    return 1;
  }

  uint8_t* y_plane = malloc((size_t)kWidth * kHeight);
  uint8_t* vu_plane = malloc((size_t)kWidth * kHeight / 2);
  if (y_plane == NULL || vu_plane == NULL) {
    fprintf(stderr, "host-example: out of memory\n");
    return 1;
  }

  int status = 0;
  for (int frame = 0; frame < kFrames; ++frame) {
    synthesise_nv21(y_plane, vu_plane, frame);
    Image image;
    memset(&image, 0, sizeof image);
    image.format = IMAGE_FORMAT_NV21;
    image.width = kWidth;
    image.height = kHeight;
    image.stride = kWidth;
    image.yPlane = y_plane;
    image.uvPlane = vu_plane;

    ProcessParamData param;
    memset(&param, 0, sizeof param);
    param.colorNum = 4;
    for (int row = 0; row < PAVONA_MAX_COLORS; ++row) {
      param.palette[row][0] = NAN; /* marks rows the plug-in left alone */
    }
    api.singleProcessImage(handle, &image, &param, NULL);
    /* With logs closed the call still prints "close all log", and no
     * newline: end that line so that ours starts on its own. */
    printf("\n");

    printf("frame %d:", frame);
    int written = 0;
    for (int row = 0; row < param.colorNum; ++row) {
      const float* c = param.palette[row];
      if (isnan(c[0])) continue;
      printf(" (%.1f, %.1f, %.1f; L %.1f)", c[0], c[1], c[2], c[3]);
      ++written;
    }
    printf("\n");
    print_frame_info(get_frame_info, handle);
    if (written == 0) status = 1;
  }
  fflush(stdout);

  api.releaseHandle(handle, NULL);
  free(y_plane);
  free(vu_plane);
  dlclose(library);
  return status;
}
