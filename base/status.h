// Status codes for the layers below the host face, which do not see the
// host records. The values are the ones pavona_host.h gives hosts; the face
// checks that the two agree.
#ifndef PAVONA_BASE_STATUS_H_
#define PAVONA_BASE_STATUS_H_

#include <cstdint>

namespace pavona {

constexpr int32_t kStatusInvalidArgument = 0x301;  // 769

}  // namespace pavona

#endif  // PAVONA_BASE_STATUS_H_
