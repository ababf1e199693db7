/* The marker a guest program sets around the code whose instructions the
 * counting plugin reports: a system call Linux does not have, so the guest
 * gets -ENOSYS and nothing else happens. Shared by the plugin (C, host) and
 * the guests (C or C++, AArch64). */
#ifndef PAVONA_BENCH_AARCH64_COUNT_MARKER_H_
#define PAVONA_BENCH_AARCH64_COUNT_MARKER_H_

/* Far above the last system call number of any Linux port. */
#define PAVONA_COUNT_SYSCALL 0x7A5A
#define PAVONA_COUNT_START 1
#define PAVONA_COUNT_STOP 0

#if defined(__aarch64__)
/* Inline, so that a region holds the same few marker instructions wherever
 * it is set: nothing of a libc wrapper. */
static inline void pavonaCountMark(long what) {
  register long x0 __asm__("x0") = what;
  register long x8 __asm__("x8") = PAVONA_COUNT_SYSCALL;
  __asm__ volatile("svc #0" : "+r"(x0) : "r"(x8) : "memory");
}
#endif

#endif /* PAVONA_BENCH_AARCH64_COUNT_MARKER_H_ */
