#include "logging/execution_time.h"

#include <gtest/gtest.h>

namespace {

TEST(EXECUTION_TIME, NamesEveryPartThatIsNotZero) {
  const struct {
    std::time_t seconds;
    const char* text;
  } cases[] = {{-1, " less than 1 second"},
               {0, " less than 1 second"},
               {1, " 1 second(s)"},
               {59, " 59 second(s)"},
               {60, " 1 minute(s)"},
               {3600, " 1 hour(s)"},
               {3602, " 1 hour(s) 2 second(s)"},
               {3661, " 1 hour(s) 1 minute(s) 1 second(s)"},
               {86399, " 23 hour(s) 59 minute(s) 59 second(s)"},
               {86400, " 1 day(s)"},
               {40 * 86400 + 61, " 40 day(s) 1 minute(s) 1 second(s)"}};
  for (const auto& [seconds, text] : cases) {
    EXPECT_EQ(ExecutionTime(seconds), text) << seconds;
  }
}

}  // namespace
