// A kernel source reaching up into the engine: must not compile.
// What it may use comes first: a view without it fails on another header.
#include "base/sample_types.h"

#include "src/KImages.h"
