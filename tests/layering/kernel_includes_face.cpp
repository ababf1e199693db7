// A kernel source reaching up into the host face: must not compile.
#include "api/pavona_host.h"
