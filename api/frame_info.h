// The facade's side of the frame-information call.
#ifndef PAVONA_API_FRAME_INFO_H_
#define PAVONA_API_FRAME_INFO_H_

#include "api/pavona.h"

namespace pavona {

// A frame reached the handle but was refused before the engine ran it.
void recordRefusedFrame(Pavona& facade);

}  // namespace pavona

#endif  // PAVONA_API_FRAME_INFO_H_
