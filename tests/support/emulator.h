// Death tests fork a child that dies by a signal; under user-mode qemu such
// a child deadlocks inside the emulator, so those tests run natively only.
#ifndef PAVONA_TESTS_SUPPORT_EMULATOR_H_
#define PAVONA_TESTS_SUPPORT_EMULATOR_H_

#include <gtest/gtest.h>

#include <cstdlib>

#define PAVONA_SKIP_DEATH_TEST_UNDER_EMULATOR()                            \
  do {                                                                     \
    if (std::getenv("PAVONA_UNDER_EMULATOR") != nullptr) {                 \
      GTEST_SKIP() << "a forked child killed by a signal hangs qemu-user"; \
    }                                                                      \
  } while (0)

#endif  // PAVONA_TESTS_SUPPORT_EMULATOR_H_
