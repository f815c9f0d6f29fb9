#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include "logging/logging.h"
#include "support/temporary_directory.h"

namespace {

using enum LOGGING_LEVEL_T;

/// The path behind the log's open file.
std::string OpenFile(const LOGGING& log) {
  return std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(log.FileDescriptor()));
}

/// The way from the temporary log file to the real one.
class LOG_FILE : public testing::Test {
 protected:
  std::string Path(std::string_view name) const { return directory_.File(name); }

  TEMPORARY_DIRECTORY directory_;
};

TEST_F(LOG_FILE, TemporaryLogMovesIntoTheRealOne) {
  WriteFile(Path("log"), std::string(100000, 'o'));
  LOGGING log("", "resample", NO_MESSAGE, DEBUG);
  const std::string temporary = OpenFile(log);
  EXPECT_TRUE(temporary.starts_with("/tmp/log.") && temporary.size() == 15) << temporary;
  EXPECT_EQ(log.FileName(), "");
  log << INFO << std::string(50000, 'x');
  const std::string early = ReadFile(temporary);
  log.Open(Path("log"));
  EXPECT_FALSE(std::filesystem::exists(temporary));
  EXPECT_EQ(log.FileName(), Path("log"));
  log.Message(INFO, "late");
  EXPECT_EQ(ReadFile(Path("log")), early + "INFO  : resample : late\n");
}

TEST_F(LOG_FILE, UnopenableLogIsReportedAndTheTemporaryOneGoesOn) {
  LOGGING log("", "resample", NO_MESSAGE, DEBUG);
  std::string expected;
  for (const std::string& name : {Path("no such directory/log"), directory_.Path().string()}) {
    log.Open(name);
    expected += "ALARM : resample :  can not open logging file: " + name + "\n";
  }
  EXPECT_EQ(ReadFile(OpenFile(log)), expected);
  EXPECT_EQ(log.FileName(), "");
  log.Open(Path("log"));
  EXPECT_EQ(ReadFile(Path("log")), expected);
}

TEST_F(LOG_FILE, LostTemporaryLogIsReportedInTheRealOne) {
  LOGGING log("", "resample", NO_MESSAGE, DEBUG);
  const std::string temporary = OpenFile(log);
  ASSERT_EQ(::unlink(temporary.c_str()), 0);
  log.Open(Path("log"));
  log.Message(INFO, "going on");
  EXPECT_EQ(ReadFile(Path("log")),
            "ALARM : resample :  can not reopen tmp logging file: " + temporary +
                "\nALARM : resample : can not remove tmp file: " + temporary +
                "\nALARM : resample : reason: No such file or directory\n"
                "INFO  : resample : going on\n");
}

TEST_F(LOG_FILE, LogWithoutAnyFileGoesOnUntilOneOpens) {
  rlimit limit{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &limit), 0);
  const rlimit no_more_files = {0, limit.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &no_more_files), 0);
  LOGGING log("", "resample", NO_MESSAGE, DEBUG);
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &limit), 0);
  EXPECT_EQ(log.FileDescriptor(), -1);
  log.Message(INFO, "lost");
  log.Open(Path("log"));
  log.Message(INFO, "kept");
  EXPECT_EQ(ReadFile(Path("log")), "INFO  : resample : kept\n");
}

}  // namespace
