// A kernel source reaching up into the engine: must not compile.
#include "src/KImages.h"
