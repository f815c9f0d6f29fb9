#include "logging/version_record.h"

#include <gtest/gtest.h>

namespace {

TEST(VERSION_RECORD, DateIsTakenFromTheRevisionKeyword) {
  const struct {
    const char* keyword;
    const char* date;
  } cases[] = {{"$Date: 2020/02/06 13:09:23 $", "2020-02-06T13:09:23"},
               {"$Date: 1999/12/31 23:59:59$", "1999-12-31T23:59:59"},
               {"$Date: 2020/02/06 $", "$Date: 2020/02/06 $"},
               {"$Date$", "$Date$"},
               {"2020/02/06 13:09:23", "2020/02/06 13:09:23"},
               {"", ""}};
  for (const auto& [keyword, date] : cases) {
    EXPECT_EQ(DateFromKeyword(keyword), date);
  }
}

TEST(VERSION_RECORD, VersionLineHasTheDayOnly) {
  VERSION_RECORD record;
  record.display_name = "Resample";
  record.version = "0.0.5";
  record.compiled_by = "gcc";
  record.compile_date = "2020-02-06T13:09:23";
  EXPECT_EQ(VersionLine(record), "Resample 0.0.5  2020-02-06 compiled by gcc");
  record.compile_date = "today";
  EXPECT_EQ(VersionLine(record), "Resample 0.0.5  today compiled by gcc");
}

}  // namespace
