/* Guest for the instruction counter's test: one marked region per argument,
 * each that many turns of a loop of exactly two instructions. */
#include <stdlib.h>

#include "bench/aarch64/count_marker.h"

int main(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    long turns = atol(argv[i]);
    pavonaCountMark(PAVONA_COUNT_START);
    __asm__ volatile("1: subs %0, %0, #1\n b.ne 1b" : "+r"(turns) : : "cc");
    pavonaCountMark(PAVONA_COUNT_STOP);
  }
  return 0;
}
