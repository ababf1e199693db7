// A kernel source using what it may: base headers and other kernels.
#include "base/sample_types.h"
#include "base/status.h"
#include "src/neon/kmeans_assign.h"
#include "zel/types.h"
