#include "src/neon/cluster_sort.h"

namespace pavona::internal {

template void unstableSort<Cluster*, MoreMembersFirst>(Cluster*, Cluster*,
                                                       MoreMembersFirst);

}  // namespace pavona::internal
