#include "logging/logging_level.h"

#include <gtest/gtest.h>

namespace {

using enum LOGGING_LEVEL_T;

struct LEVEL_CASE {
  LOGGING_LEVEL_T level;
  const char* name;
  const char* tag;
  const char* highlight;
  const char* reset;
};

constexpr LEVEL_CASE named_levels[] = {
    {TRACE, "TRACE", "TRACE", "", ""},
    {DEBUG, "DEBUG", "DEBUG", "", ""},
    {PARAMETER, "PARAMETER", "PARAM", "", ""},
    {INFO, "INFO", "INFO ", "", ""},
    {QA_WARNING, "QA_WARNING", "QA_WA", "", ""},
    {WARNING, "WARNING", "WARN ", "\033[4m", "\033[0m"},
    {EXCEPTION, "EXCEPTION", "EXCEP", "\033[1m", "\033[0m"},
    {ALARM, "ALARM", "ALARM", "\033[7m", "\033[0m"},
};

TEST(LOGGING_LEVEL, HasTagHighlightAndName) {
  int number = 1;
  for (const LEVEL_CASE& expected : named_levels) {
    EXPECT_EQ(static_cast<int>(expected.level), number++);
    EXPECT_STREQ(LevelTag(expected.level), expected.tag);
    EXPECT_STREQ(ScreenHighlight(expected.level), expected.highlight) << expected.name;
    EXPECT_STREQ(ScreenReset(expected.level), expected.reset) << expected.name;
    LOGGING_LEVEL_T found = NO_LEVEL;
    EXPECT_TRUE(LevelFromName(expected.name, found));
    EXPECT_EQ(found, expected.level);
  }
}

TEST(LOGGING_LEVEL, HasATagForEveryNumber) {
  EXPECT_STREQ(LevelTag(NO_LEVEL), "LEV_?");
  EXPECT_STREQ(LevelTag(NO_MESSAGE), "NOMSG");
  EXPECT_STREQ(LevelTag(static_cast<LOGGING_LEVEL_T>(10)), "LEV_?");
  EXPECT_STREQ(LevelTag(static_cast<LOGGING_LEVEL_T>(-1)), "LEV_?");
}

TEST(LOGGING_LEVEL, OnlyExactNamesAreFound) {
  for (const char* text : {"", "trace", "Info", "INFO ", " INFO", "WARN", "4", "NO_LEVEL", "LEV_?",
                           "NO_MESSAGE", "ALARMS"}) {
    LOGGING_LEVEL_T level = PARAMETER;
    EXPECT_FALSE(LevelFromName(text, level)) << text;
    EXPECT_EQ(level, PARAMETER) << text;
  }
}

}  // namespace
