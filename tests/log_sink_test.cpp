#include "base/log_sink.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdarg>
#include <string>

#include "api/pavonaAPI.h"
#include "tests/support/capture.h"

namespace {

using pavona::testing::captureOutput;
using ::testing::MatchesRegex;

// A sink like the facade's: it prints 1 where the switch would go.
void logPrint(int level, const char* format, ...) {
  va_list args;
  va_start(args, format);
  pavona::printLogLine(level, 1, format, args);
  va_end(args);
}

class LogSwitch : public ::testing::Test {
 protected:
  void TearDown() override {
    captureOutput([] { setLogStatus(1); });
  }
};

TEST(SourceBaseName, TakesTextAfterLastSlash) {
  EXPECT_STREQ(pavona::sourceBaseName("/a/b/pavonaAPI.cpp"), "pavonaAPI.cpp");
  EXPECT_STREQ(pavona::sourceBaseName("pavona.cpp"), "pavona.cpp");
  EXPECT_STREQ(pavona::sourceBaseName("dir/"), "");
  EXPECT_STREQ(pavona::sourceBaseName(""), "");
}

TEST(ConsoleSink, PrefixesFileLineAndFunction) {
  const int line = __LINE__ + 1;
  auto captured = captureOutput([] { PAVONA_LOGI("value %d", 42); });
  EXPECT_EQ(captured.out,
            "set log status 3 1 logText [INFO][ log_sink_test.cpp ] " +
                std::to_string(line) + "  operator()() value 42 \n");
  EXPECT_EQ(captured.err, "");
}

TEST(ConsoleSink, MessageOf1023CharactersFits) {
  const std::string text(1023, 'x');
  auto captured = captureOutput([&] { logPrint(1, "%s", text.c_str()); });
  EXPECT_EQ(captured.out, "set log status 1 1 logText " + text + " \n");
}

TEST(ConsoleSinkDeathTest, LongerMessageTerminates) {
  const std::string text(1024, 'x');
  EXPECT_DEATH(logPrint(1, "%s", text.c_str()), "buffer overflow detected");
}

TEST_F(LogSwitch, OffPrintsOnlyCloseAllLog) {
  auto captured = captureOutput([] {
    setLogStatus(0);
    debugMode(nullptr, 0);
    startProcess(nullptr, nullptr);
  });
  EXPECT_EQ(captured.out, "set log status 0 0 \nclose all logclose all log");
}

TEST_F(LogSwitch, StatusIsEchoedAndCarriedByLaterLines) {
  auto captured = captureOutput([] {
    setLogStatus(7);
    getMemoryInfo(nullptr, nullptr);
  });
  EXPECT_THAT(captured.out,
              MatchesRegex("set log status 7 7 \n"
                           "set log status 1 7 logText \\[ERROR\\]\\[ "
                           "pavonaAPI\\.cpp \\] [0-9]+  getMemoryInfo\\(\\) "
                           "the function not support \n"));
}

}  // namespace
