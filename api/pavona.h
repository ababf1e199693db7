// The object behind a host handle: owns one palette engine and adapts the
// host's untyped calls to it.
#ifndef PAVONA_API_PAVONA_H_
#define PAVONA_API_PAVONA_H_

#include <cstdint>

#include "api/pavona_host.h"
#include "base/export.h"

class KImages;

class PAVONA_EXPORT Pavona {
 public:
  Pavona() = default;
  // Does not release the engine; pavonaDestory does.
  virtual ~Pavona();

  // Creates and initialises the engine; null on failure.
  KImages* pavonaInit(void* pInitParam);
  int32_t pavonaProcess(Image* pImageData, void* pProcessData);
  // Destroys the engine; -1 when there is none.
  int32_t pavonaDestory();
  void pavonaPrintVersion();
  // 1 for formats 5, 6, 9 and 10, else 0.
  int32_t isSupportFormat(int32_t format);

  KImages* mPVHandle = nullptr;
  // Status of the last frame handed to this handle, for the
  // frame-information call; -1 before any.
  int32_t mLastStatus = -1;
};

#endif  // PAVONA_API_PAVONA_H_
