// Copies a rectangular block of elements between two strided images, or
// within one, in whichever direction survives an overlap.
#ifndef ZEL_CPP_MEMORY_COPYRECT_H_
#define ZEL_CPP_MEMORY_COPYRECT_H_

#include "base/export.h"

namespace zel::cpp::memory {

// Copies `height` rows of `width` elements from (srcCol, srcRow) of `src` to
// (dstCol, dstRow) of `dst`. Strides count elements; 0 means `width`, and a
// negative stride means the rows lie at decreasing addresses from the given
// pointer (so a block with a negative stride on one side only comes out
// upside down). Returns 0, or 769 when either pointer is null. Nothing else
// is checked: the block must lie inside both images.
template <typename T>
PAVONA_EXPORT int copyRect_v00(const T* src, T* dst, int width, int height,
                               int srcStride, int dstStride, int srcCol,
                               int srcRow, int dstCol, int dstRow);

extern template int copyRect_v00<unsigned char>(const unsigned char*,
                                                unsigned char*, int, int, int,
                                                int, int, int, int, int);

}  // namespace zel::cpp::memory

#endif  // ZEL_CPP_MEMORY_COPYRECT_H_
