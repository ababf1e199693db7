#include "api/frame_info.h"

#include <cstring>

#include "api/pavona_ext.h"
#include "base/export.h"
#include "src/KImages.h"

void pavona::recordRefusedFrame(Pavona& facade) {
  facade.mLastStatus = STATUS_INVALID_ARGUMENT;
  if (facade.mPVHandle != nullptr) {
    facade.mPVHandle->m_lastFrame = {};
  }
}

extern "C" PAVONA_EXPORT int32_t pavonaGetFrameInfo(void* handle,
                                                    PavonaFrameInfo* info) {
  if (handle == nullptr || info == nullptr || info->size < sizeof *info) {
    return STATUS_INVALID_ARGUMENT;
  }
  const Pavona& facade = *static_cast<Pavona*>(handle);
  PavonaFrameInfo filled;
  std::memset(&filled, 0, sizeof filled);
  filled.size = sizeof filled;
  filled.status = facade.mLastStatus;
  if (const KImages* engine = facade.mPVHandle) {
    const pavona::FrameOutcome& last = engine->m_lastFrame;
    filled.rows = last.rows;
    filled.passes = last.passes;
    std::memcpy(filled.members, last.members, sizeof filled.members);
    filled.workingWidth = engine->m_downWidth;
    filled.workingHeight = engine->m_downHeight;
  }
  // Only our own record's bytes: a newer caller's larger record keeps the
  // rest of its fields.
  std::memcpy(info, &filled, sizeof filled);
  return 0;
}
