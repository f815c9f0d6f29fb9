#include "control/processors.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>

#include "support/log_capture.h"

namespace {

TEST(PROCESSORS, AreTheOnlineOnesUnlessParallelIsAPositiveNumber) {
  const int online = static_cast<int>(::sysconf(_SC_NPROCESSORS_ONLN));
  ::unsetenv("PARALLEL");
  EXPECT_EQ(NumberOfProcessors(), online);
  const LOG_CAPTURE log;
  ::setenv("PARALLEL", "99999999999999999999", 1);
  EXPECT_EQ(NumberOfProcessors(), 2147483647);
  EXPECT_EQ(log.Text(), "");
  for (const std::string parallel : {"", "0", "-3", "many"}) {
    ::setenv("PARALLEL", parallel.c_str(), 1);
    EXPECT_EQ(NumberOfProcessors(), online) << parallel;
    EXPECT_TRUE(log.Has("WARN  : PARALLEL is not a number of at least 1: \"" + parallel +
                        "\", using the " + std::to_string(online) + " online processors"))
        << log.Text();
  }
  ::unsetenv("PARALLEL");
}

}  // namespace
