// The palette engine behind one handle: owns the working frame, the points,
// the cluster centres and the k-means engine, all sized once in init.
#ifndef PAVONA_SRC_KIMAGES_H_
#define PAVONA_SRC_KIMAGES_H_

#include <cstdint>
#include <memory>

#include "base/export.h"
#include "api/pavona_host.h"
#include "src/frame_outcome.h"
#include "src/neon/KMeansAlgo_neon.h"

// Lets our own tools see what a frame produced beyond the host's record.
// Off unless installed with KImages::setObserver; the host's outputs are the
// same with or without it.
class KImagesObserver {
 public:
  virtual ~KImagesObserver() = default;
  // The finished preview: 8-bit RGB, `stride` bytes a row. Called before the
  // canvas is released; the pointer is valid only during the call.
  virtual void onPaletteCanvas(const uint8_t* rgb, int width, int height,
                               int stride) = 0;
  // After colour selection: for each written palette row, the member count
  // of the cluster it came from (without the list's starting centre), and
  // the number of k-means passes the frame ran.
  virtual void onPaletteRows(const int* memberCounts, int rows, int passes) = 0;
};

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
  // One frame, image in, palette rows out.
  int processKImages(Image* image, ProcessParamData* param);
  // Clusters the current points; returns KMeansAlgo::init's status.
  int getPalette();

  // Installs (or, with null, removes) an observer; not owned.
  void setObserver(KImagesObserver* observer);

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
  // Declared last so that it is destroyed first.
  std::unique_ptr<KMeansAlgo> m_KMeansEngine;

  KImagesObserver* m_observer;
  // The last frame's outcome, for the frame-information call.
  pavona::FrameOutcome m_lastFrame;
};

#endif  // PAVONA_SRC_KIMAGES_H_
