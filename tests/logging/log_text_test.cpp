#include <gtest/gtest.h>

#include "logging/execution_time.h"
#include "logging/logging_level.h"
#include "logging/printable_text.h"
#include "logging/version_record.h"

namespace {

using enum LOGGING_LEVEL_T;

TEST(LOGGING_LEVEL, HasItsExactNameAlone) {
  LOGGING_LEVEL_T level = NO_LEVEL;
  for (int number = 1; const char* name : {"TRACE", "DEBUG", "PARAMETER", "INFO", "QA_WARNING",
                                           "WARNING", "EXCEPTION", "ALARM"}) {
    EXPECT_TRUE(LevelFromName(name, level)) << name;
    EXPECT_EQ(static_cast<int>(level), number++);
  }
  for (const char* text : {"", "Info", "INFO ", "WARN", "4", "NO_LEVEL", "NO_MESSAGE", "ALARMS"}) {
    EXPECT_FALSE(LevelFromName(text, level)) << text;
  }
  EXPECT_EQ(level, ALARM);
}

TEST(EXECUTION_TIME, NamesEveryPartThatIsNotZero) {
  EXPECT_EQ(ExecutionTime(-1), " less than 1 second");
  EXPECT_EQ(ExecutionTime(0), " less than 1 second");
  EXPECT_EQ(ExecutionTime(3602), " 1 hour(s) 2 second(s)");
  EXPECT_EQ(ExecutionTime(86399), " 23 hour(s) 59 minute(s) 59 second(s)");
  EXPECT_EQ(ExecutionTime(40 * 86400 + 60), " 40 day(s) 1 minute(s)");
}

TEST(PRINTABLE_TEXT, SpellsOutControlCharactersAndNothingElse) {
  const struct {
    std::string_view text;
    std::string_view printable;
  } cases[] = {{"", ""},
               {"a\tb ~\\ \xc3\x9b \xe2\x82\xac \xf0\x9f\x98\x80\xf1\x80\x80\x9b",
                "a\tb ~\\ \xc3\x9b \xe2\x82\xac \xf0\x9f\x98\x80\xf1\x80\x80\x9b"},
               {{"\0\033[2J\n\x7f", 7}, "\\x00\\x1b[2J\\x0a\\x7f"},
               {"\xc2\x9b\xc2\xa0", "\\xc2\\x9b\xc2\xa0"},  // U+009B is a control character
               {"\xe4\x9b", "\xe4\\x9b"},                   // no complete UTF-8: 8-bit characters
               {"\xe0\x82\x9b", "\xe0\\x82\\x9b"},          // overlong forms of U+009B
               {"\xf0\x80\x82\x9b", "\xf0\\x80\\x82\\x9b"},
               {"\xc0\x9b\xff", "\xc0\\x9b\xff"}};
  for (const auto& [text, printable] : cases) {
    EXPECT_EQ(PrintableText(text), printable);
  }
}

TEST(VERSION_RECORD, DateIsTakenFromTheRevisionKeywordAndTheVersionLineHasTheDayOnly) {
  EXPECT_EQ(DateFromKeyword("$Date: 2020/02/06 13:09:23 $"), "2020-02-06T13:09:23");
  for (const char* other : {"$Date: 2020/02/06 $", "$Date$", "2020/02/06 13:09:23", ""}) {
    EXPECT_EQ(DateFromKeyword(other), other);
  }
  VERSION_RECORD record;
  record.display_name = "Resample";
  record.compile_date = "2020-02-06T13:09:23";
  EXPECT_EQ(VersionLine(record), "Resample   2020-02-06 compiled by ");
}

}  // namespace
