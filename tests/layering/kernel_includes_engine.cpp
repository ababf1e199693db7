// A kernel source reaching up into the engine: must not compile.
// What it may use is found first: a view without it fails on that header.
#include "base/sample_types.h"
using Allowed = _Point;
#include "src/KImages.h"
