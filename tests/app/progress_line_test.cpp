#include "app/progress_line.h"

#include <gtest/gtest.h>

#include "app/parameter_table.h"

namespace {

using std::chrono::duration;

TEST(ProgressText, TellsShareSpeedAndTimeLeftOnceSomePixelsAreDone) {
  EXPECT_EQ(ProgressText(0, 1000, duration<double>(3.0)), "  0 %");
  EXPECT_EQ(ProgressText(250'000'000, 1'000'000'000, duration<double>(1300.0)),
            " 25 %  0.2 Mpixel/s  1:05:00 left");
  EXPECT_EQ(ProgressText(999'999, 1'000'000, duration<double>(0.01)),
            " 99 %  100.0 Mpixel/s  0:00:01 left");
  EXPECT_EQ(ProgressText(1, 4'000'000'000'000, duration<double>(1.0)).substr(0, 5), "  0 %");
}

TEST(ParameterHint, IsEmptyForAParameterThatHasNone) {
  EXPECT_EQ(ParameterHint("PS_MODE"),
            "PS_MODE: 1 switches the Doppler rate term off\nvalue: 0, 1\n");
  EXPECT_EQ(ParameterHint("unknown"), "");
}

}  // namespace
