#include "control/processors.h"

#include <unistd.h>

#include <cstdlib>

#include "child_process.h"
#include "logging/logging.h"

namespace {

class PROCESSORS : public CHILD_PROCESS_TEST {
 protected:
  std::string CountWith(const std::string& parallel) {
    Run([&] {
      ::setenv("PARALLEL", parallel.c_str(), 1);
      Log().Open("log");
      WriteFile("count", std::to_string(NumberOfProcessors()));
    });
    return Content("count");
  }
  const std::string online_ = std::to_string(::sysconf(_SC_NPROCESSORS_ONLN));
};

TEST_F(PROCESSORS, ParallelSetsTheNumber) {
  EXPECT_EQ(CountWith("1"), "1");
  EXPECT_EQ(CountWith("17"), "17");
  EXPECT_EQ(CountWith("99999999999999999999"), "2147483647");
  EXPECT_EQ(Content("log"), "");
}

TEST_F(PROCESSORS, WithoutParallelTheOnlineProcessorsAreUsed) {
  Run([] {
    ::unsetenv("PARALLEL");
    WriteFile("count", std::to_string(NumberOfProcessors()));
  });
  EXPECT_EQ(Content("count"), online_);
}

TEST_F(PROCESSORS, ParallelThatIsNoPositiveNumberIsReported) {
  for (const char* parallel : {"", "0", "-3", "many"}) {
    EXPECT_EQ(CountWith(parallel), online_) << parallel;
    EXPECT_EQ(Content("log"),
              std::string("WARN  : resample : PARALLEL is not a number of at least 1: \"") +
                  parallel + "\", using the " + online_ + " online processors\n");
  }
}

}  // namespace
