// The one home of every instance of the resize templates: callers see the
// extern template declarations in the headers and link to these.
#include "zel/neon/imgproc/resize.h"

namespace zel::neon::imgproc {

template int32_t resize_v00<uint8_t, uint8_t, YUV420SP_8BIT, INTERP_NEAREST,
                            float, 0>(const uint8_t*, const uint8_t*, uint8_t*,
                                      uint8_t*, int32_t, int32_t, int32_t,
                                      int32_t, int32_t, int32_t, int32_t,
                                      int32_t);
template int32_t resize_v00<uint16_t, uint16_t, YUV420SP_10BIT, INTERP_NEAREST,
                            float, 6>(const uint16_t*, const uint16_t*,
                                      uint16_t*, uint16_t*, int32_t, int32_t,
                                      int32_t, int32_t, int32_t, int32_t,
                                      int32_t, int32_t);

namespace internal_resize_v00 {

template struct Resize_v00<uint8_t, 1, 1, INTERP_NEAREST, float, 0, false>;
template struct Resize_v00<uint8_t, 2, 1, INTERP_NEAREST, float, 0, true>;
template struct Resize_v00<uint16_t, 1, 1, INTERP_NEAREST, float, 6, false>;
template struct Resize_v00<uint16_t, 2, 1, INTERP_NEAREST, float, 6, true>;

template struct ResizeNearestUpscale<uint8_t, 1, 1, 4>;
template struct ResizeNearestUpscale<uint8_t, 2, 1, 3>;
template struct ResizeNearestUpscale<uint8_t, 2, 1, 4>;
template struct ResizeNearestUpscale<uint16_t, 1, 1, 4>;
template struct ResizeNearestUpscale<uint16_t, 2, 1, 3>;
template struct ResizeNearestUpscale<uint16_t, 2, 1, 4>;

template struct ResizeNearestFlex<uint8_t, 1, 1, 1>;
template struct ResizeNearestFlex<uint8_t, 1, 1, 2>;
template struct ResizeNearestFlex<uint8_t, 1, 1, 3>;
template struct ResizeNearestFlex<uint8_t, 1, 1, 4>;
template struct ResizeNearestFlex<uint8_t, 1, 1, 5>;
template struct ResizeNearestFlex<uint8_t, 1, 1, 6>;
template struct ResizeNearestFlex<uint8_t, 1, 1, 7>;
template struct ResizeNearestFlex<uint8_t, 1, 1, 8>;
template struct ResizeNearestFlex<uint8_t, 1, 1, 9>;
template struct ResizeNearestFlex<uint8_t, 1, 1, 10>;
template struct ResizeNearestFlex<uint8_t, 1, 1, 11>;
template struct ResizeNearestFlex<uint8_t, 1, 1, 12>;
template struct ResizeNearestFlex<uint8_t, 1, 1, 13>;
template struct ResizeNearestFlex<uint8_t, 1, 1, 14>;
template struct ResizeNearestFlex<uint8_t, 1, 1, 15>;
template struct ResizeNearestFlex<uint8_t, 1, 1, 16>;
template struct ResizeNearestFlex<uint8_t, 2, 1, 2>;
template struct ResizeNearestFlex<uint8_t, 2, 1, 4>;
template struct ResizeNearestFlex<uint8_t, 2, 1, 6>;
template struct ResizeNearestFlex<uint8_t, 2, 1, 8>;
template struct ResizeNearestFlex<uint8_t, 2, 1, 10>;
template struct ResizeNearestFlex<uint8_t, 2, 1, 12>;
template struct ResizeNearestFlex<uint8_t, 2, 1, 14>;
template struct ResizeNearestFlex<uint8_t, 2, 1, 16>;
template struct ResizeNearestFlex<uint16_t, 1, 1, 2>;
template struct ResizeNearestFlex<uint16_t, 1, 1, 4>;
template struct ResizeNearestFlex<uint16_t, 1, 1, 6>;
template struct ResizeNearestFlex<uint16_t, 1, 1, 8>;
template struct ResizeNearestFlex<uint16_t, 1, 1, 10>;
template struct ResizeNearestFlex<uint16_t, 1, 1, 12>;
template struct ResizeNearestFlex<uint16_t, 1, 1, 14>;
template struct ResizeNearestFlex<uint16_t, 1, 1, 16>;
template struct ResizeNearestFlex<uint16_t, 2, 1, 4>;
template struct ResizeNearestFlex<uint16_t, 2, 1, 8>;
template struct ResizeNearestFlex<uint16_t, 2, 1, 12>;
template struct ResizeNearestFlex<uint16_t, 2, 1, 16>;

template struct ResizeNearestExact<uint8_t, 2>;
template struct ResizeNearestExact<uint8_t, 3>;
template struct ResizeNearestExact<uint8_t, 4>;
template struct ResizeNearestExact<uint16_t, 2>;
template struct ResizeNearestExact<uint16_t, 3>;
template struct ResizeNearestExact<uint16_t, 4>;
template struct ResizeNearestExact<uint32_t, 2>;
template struct ResizeNearestExact<uint32_t, 3>;
template struct ResizeNearestExact<uint32_t, 4>;

}  // namespace internal_resize_v00
}  // namespace zel::neon::imgproc
