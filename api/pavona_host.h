/*
 * Pavona host records: the byte layouts shared between a camera host and
 * libPavona.so, the entry-point table that get_algo_api fills, and the
 * status codes that cross the boundary.
 *
 * This is the only header a host needs. It is plain C (C99 or later) and
 * C++; every named field sits at a fixed offset on a 64-bit little-endian
 * platform, pinned below with static assertions. Reserved ranges belong to
 * the host and are never read or written by the library.
 */
#ifndef PAVONA_API_PAVONA_HOST_H_
#define PAVONA_API_PAVONA_HOST_H_

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#define PAVONA_STATIC_ASSERT(cond, msg) static_assert(cond, msg)
#else
#define PAVONA_STATIC_ASSERT(cond, msg) _Static_assert(cond, msg)
#endif

/* Frame layouts. The library processes 5, 6 and 9; 10 passes the format
 * check but is rejected when a frame is processed. */
#ifdef __cplusplus
typedef enum IMAGE_FORMAT_TYPE : int32_t {
#else
typedef enum IMAGE_FORMAT_TYPE {
#endif
  IMAGE_FORMAT_NV21 = 5,           /* 8-bit 4:2:0 semi-planar, pairs V,U */
  IMAGE_FORMAT_NV12 = 6,           /* 8-bit 4:2:0 semi-planar, pairs U,V */
  IMAGE_FORMAT_YUV420SP_10BIT = 9, /* 16-bit words holding 0..1023, U,V */
  IMAGE_FORMAT_RESERVED10 = 10     /* accepted by the format check only */
} IMAGE_FORMAT_TYPE;

/* Status codes (int32). Only algoInitHandle reports one to the host; the
 * other entry points return 0 and leave failures to the log. */
enum {
  STATUS_SUCCESS = 0,
  STATUS_ENGINE_SETUP_FAILED = 1,
  STATUS_INVALID_ARGUMENT = 0x301, /* 769 */
  STATUS_NULL_INPUT = 0x403,       /* 1027 */
  STATUS_NO_INIT_PARAM = 0x2000,   /* 8192 */
  STATUS_FAILURE = -1
};

/* One frame, owned by the host and only read by the library. */
typedef struct Image {
  uint8_t reserved0[28];
  IMAGE_FORMAT_TYPE format; /* layout of the frame */
  int32_t width;            /* luma width in pixels, even, >= 2 */
  int32_t height;           /* luma height in rows, even, >= 2 */
  int32_t stride;           /* bytes per row for luma and chroma alike;
                               0 = packed, negative = bottom-up rows */
  uint8_t reserved1[12];
  void* yPlane; /* first byte of the luma plane */
  uint8_t reserved2[24];
  void* uvPlane; /* first byte of the interleaved chroma plane */
} Image;

/* Given once, when a handle is made: the frame size the engine is sized
 * for. Frames processed later may have other sizes. */
typedef struct InitParamData {
  uint8_t reserved0[8];
  int32_t width;            /* frame width (pixels, or bytes, see below) */
  int32_t height;           /* frame height in rows */
  int32_t widthInBytes;     /* non-zero: width counts bytes, not pixels */
  IMAGE_FORMAT_TYPE format; /* only "is it 9" matters: 2 bytes a sample */
} InitParamData;

enum { PAVONA_MAX_COLORS = 20 };

/* Per frame: read and written by the library. */
typedef struct ProcessParamData {
  int32_t colorNum;    /* wanted colours; >20 gives 20, <1 gives 3 */
  uint8_t showPalette; /* non-zero: also render the preview */
  uint8_t reserved0[11];
  /* Output rows: R, G, B in the frame's sample scale (0..255, or 0..1023
   * for 10-bit frames) and a lightness figure. Room for 20 rows. */
  float palette[PAVONA_MAX_COLORS][4];
} ProcessParamData;

/* Records of the host interface that this library never reads. */
typedef struct ImageAlgoBaseParameters ImageAlgoBaseParameters;
typedef struct MultInputImage MultInputImage;

/* The table that get_algo_api fills. Handles are untyped pointers. Every
 * slot not marked otherwise returns an int32 status; the unsupported ones
 * log "the function not support" and return 0. */
typedef struct PavonaApi {
  /* Slot 0: the interface base version text, valid for the process. */
  const char* (*getVersion)(void);
  /* Slot 1: 0 silences the console lines of the entry points. */
  void (*setLogStatus)(int32_t status);
  /* Slot 2: pHandle receives the handle; pInitParam is an InitParamData.
   * Returns STATUS_NO_INIT_PARAM for a null record, else 0. */
  int32_t (*algoInitHandle)(void** pHandle, void* pInitParam);
  /* Slot 3: unsupported. */
  int32_t (*debugMode)(void* handle, int32_t mode);
  /* Slot 4: logs an unsupported format; always returns 0. */
  int32_t (*isSupportFormat)(void* handle, int32_t format);
  /* Slots 5, 6: unsupported. */
  int32_t (*startProcess)(void* handle, void* param);
  int32_t (*stopProcess)(void* handle, void* param);
  /* Slot 7: unsupported. */
  int32_t (*getProcessImageResult)(void* handle, Image* image, void* param);
  /* Slot 8: unsupported. */
  int32_t (*setParameters)(void* handle, void* param, int32_t value);
  /* Slot 9: one frame; pParam is a ProcessParamData whose palette rows
   * are written; the last pointer is never read. Always returns 0. */
  int32_t (*singleProcessImage)(void* handle, Image* image, void* pParam,
                                void* reserved);
  /* Slots 10-12: unsupported. */
  int32_t (*processImage)(void* handle, Image* in, Image* out, void* param,
                          void* reserved);
  int32_t (*multiProcessImage)(void* handle, MultInputImage* in, Image* out,
                               void* param, void* reserved, int32_t count);
  int32_t (*fatalErrorStatus)(void* handle, void* param);
  /* Slot 13: destroys the handle; a non-null second pointer is free()d. */
  int32_t (*releaseHandle)(void* handle, void* ptr);
  /* Slots 14, 15: unsupported. */
  int32_t (*dumpImage)(void* handle, const char* path, int32_t value);
  int32_t (*getMemoryInfo)(void* handle, void* info);
} PavonaApi;

/* The one unmangled export. A null table returns 0 and writes nothing. */
int32_t get_algo_api(PavonaApi* api);
typedef int32_t (*PavonaGetAlgoApiFn)(PavonaApi* api);

PAVONA_STATIC_ASSERT(sizeof(IMAGE_FORMAT_TYPE) == 4, "format is int32");
PAVONA_STATIC_ASSERT(offsetof(Image, format) == 28, "Image.format");
PAVONA_STATIC_ASSERT(offsetof(Image, width) == 32, "Image.width");
PAVONA_STATIC_ASSERT(offsetof(Image, height) == 36, "Image.height");
PAVONA_STATIC_ASSERT(offsetof(Image, stride) == 40, "Image.stride");
PAVONA_STATIC_ASSERT(offsetof(Image, yPlane) == 56, "Image.yPlane");
PAVONA_STATIC_ASSERT(offsetof(Image, uvPlane) == 88, "Image.uvPlane");
PAVONA_STATIC_ASSERT(sizeof(Image) == 96, "Image size");
PAVONA_STATIC_ASSERT(offsetof(InitParamData, width) == 8, "Init.width");
PAVONA_STATIC_ASSERT(offsetof(InitParamData, height) == 12, "Init.height");
PAVONA_STATIC_ASSERT(offsetof(InitParamData, widthInBytes) == 16,
                     "Init.widthInBytes");
PAVONA_STATIC_ASSERT(offsetof(InitParamData, format) == 20, "Init.format");
PAVONA_STATIC_ASSERT(offsetof(ProcessParamData, showPalette) == 4,
                     "Process.showPalette");
PAVONA_STATIC_ASSERT(offsetof(ProcessParamData, palette) == 16,
                     "Process.palette");
PAVONA_STATIC_ASSERT(sizeof(ProcessParamData) == 336, "Process size");
PAVONA_STATIC_ASSERT(sizeof(PavonaApi) == 128, "16 slots of 8 bytes");
PAVONA_STATIC_ASSERT(offsetof(PavonaApi, singleProcessImage) == 72, "slot 9");
PAVONA_STATIC_ASSERT(offsetof(PavonaApi, getMemoryInfo) == 120, "slot 15");

#undef PAVONA_STATIC_ASSERT
#ifdef __cplusplus
}
#endif

#endif /* PAVONA_API_PAVONA_HOST_H_ */
