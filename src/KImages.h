// The palette engine behind one handle: owns the working frame, the points,
// the cluster centres and the k-means engine, all sized once in init.
#ifndef PAVONA_SRC_KIMAGES_H_
#define PAVONA_SRC_KIMAGES_H_

#include <cstdint>
#include <memory>

#include "api/pavona_host.h"
#include "base/export.h"
#include "src/frame_outcome.h"
#include "src/neon/KMeansAlgo_neon.h"

class PAVONA_EXPORT KImages {
 public:
  KImages();
  ~KImages();
  KImages(const KImages&) = delete;
  KImages& operator=(const KImages&) = delete;

  // Sizes the working frame from the record and allocates every buffer.
  // 0 on success, 1 when a buffer is missing afterwards.
  int init(InitParamData* pInitParam);
  // Sets k, clamped: above 20 gives 20, below 1 gives 3.
  void setParameters(int colorNum);
  int uninit();

  // Resamples and converts one frame into m_points.
  int preparePoints(Image* image);
  // Ranks the k centres and writes palette rows (R, G, B, lightness).
  void colorChosen(float (*palette)[4], IMAGE_FORMAT_TYPE format);
  // Renders the preview canvas in scratch memory and releases it.
  void displayPalette(const char* name, IMAGE_FORMAT_TYPE format);
  // The preview canvas, 8-bit RGB, for the current working size.
  struct CanvasSize {
    int32_t width;
    int32_t height;
    int32_t stride;  // bytes a row
  };
  PAVONA_HIDDEN CanvasSize paletteCanvasSize() const;
  // Draws the preview into `canvas` (laid out as paletteCanvasSize says),
  // with `working` (3 bytes a working pixel) as scratch.
  PAVONA_HIDDEN void drawPalette(IMAGE_FORMAT_TYPE format, uint8_t* working,
                                 uint8_t* canvas) const;
  // One frame, image in, palette rows out.
  int processKImages(Image* image, ProcessParamData* param);
  // Clusters the current points; returns KMeansAlgo::init's status.
  int getPalette();

  int32_t m_colorNum;
  int32_t m_maxColorNum;
  int32_t m_bytesPerSample;
  int32_t m_downWidth;
  int32_t m_downHeight;
  int32_t m_downStride;
  int32_t m_downRows;
  std::unique_ptr<uint8_t[]> m_downImage;
  std::unique_ptr<_Point[]> m_points;
  std::unique_ptr<_Point[]> m_clusters;
  // Declared after the buffers, so it is destroyed before them.
  std::unique_ptr<KMeansAlgo> m_KMeansEngine;

  // The last frame's outcome, for the frame-information call.
  pavona::FrameOutcome m_lastFrame;
};

#endif  // PAVONA_SRC_KIMAGES_H_
