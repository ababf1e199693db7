// Enumerations shared by the zel image library's templates.
#ifndef ZEL_TYPES_H_
#define ZEL_TYPES_H_

namespace zel {

// Semi-planar 4:2:0 layouts: a luma plane, then a half-height plane of
// interleaved chroma pairs.
enum YUV420SemiPlanarFormat {
  YUV420SP_8BIT = 0,   // one byte a sample (NV21, NV12)
  YUV420SP_10BIT = 1,  // one 16-bit word a sample, values 0..1023
};

enum InterpMode {
  INTERP_NEAREST = 0,
};

enum BorderType {
  BORDER_CONSTANT = 0,  // every border element of channel i is value[i]
};

}  // namespace zel

#endif  // ZEL_TYPES_H_
