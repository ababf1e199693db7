#include "base/android_log.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/support/capture.h"

namespace {

using pavona::testing::captureOutput;
using ::testing::HasSubstr;

TEST(AndroidLog, RecordCarriesTagFunctionAndLine) {
  int line = 0;
  auto captured = captureOutput([&] {
    line = __LINE__ + 1;
    PAVONA_ALOG_AS("init", "m_points init failed!\n");
  });
  EXPECT_EQ(captured.out, "");
  EXPECT_THAT(captured.err, HasSubstr("pavona"));
  EXPECT_THAT(captured.err, HasSubstr("[init][" + std::to_string(line) +
                                      "]: m_points init failed!"));
}

}  // namespace
