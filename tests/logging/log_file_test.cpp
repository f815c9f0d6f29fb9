#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <thread>
#include <vector>

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
  EXPECT_EQ(log.FileDescriptor(), -1) << "a process that logs nothing has no file to leave behind";
  log << INFO << std::string(50000, 'x');
  const std::string temporary = OpenFile(log);
  EXPECT_TRUE(temporary.starts_with("/tmp/log.") && temporary.size() == 15) << temporary;
  EXPECT_EQ(log.FileName(), "");
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
  for (const auto& [name, reason] :
       {std::pair(Path("no such directory/log"), "No such file or directory"),
        std::pair(directory_.Path().string(), "Is a directory")}) {
    log.Open(name);
    expected += "ALARM : resample :  can not open logging file: " + name +
                "\nALARM : resample : reason: " + reason + "\n";
  }
  EXPECT_EQ(ReadFile(OpenFile(log)), expected);
  EXPECT_EQ(log.FileName(), "");
  log.Open(Path("log"));
  EXPECT_EQ(ReadFile(Path("log")), expected);
}

TEST_F(LOG_FILE, LostTemporaryLogIsReportedInTheRealOne) {
  LOGGING log("", "resample", NO_MESSAGE, DEBUG);
  log.Message(INFO, "lost");
  const std::string temporary = OpenFile(log);
  ASSERT_EQ(::unlink(temporary.c_str()), 0);
  log.Open(Path("log"));
  log.Message(INFO, "going on");
  EXPECT_EQ(ReadFile(Path("log")),
            "ALARM : resample :  can not reopen tmp logging file: " + temporary +
                "\nALARM : resample : reason: No such file or directory\n"
                "INFO  : resample : going on\n");
}

/// A log whose ALARM lines are caught.
struct WATCHED_LOG {
  WATCHED_LOG() {
    log.SetReceiver([this](LOGGING_LEVEL_T level, std::string_view text) {
      alarms += level == ALARM ? std::string(text) + "\n" : "";
    });
  }
  LOGGING log{"", "resample", NO_MESSAGE, DEBUG};
  std::string alarms;
};

TEST_F(LOG_FILE, TemporaryLogIsKeptAndGoesOnWhenItCanNotBeCopied) {
  std::string temporary;
  {
    WATCHED_LOG watched;
    watched.log.Message(INFO, "early");
    temporary = OpenFile(watched.log);
    watched.log.Open("/dev/full");
    EXPECT_EQ(watched.alarms,
              "can not write logging file: /dev/full\nreason: No space left on device\n"
              "the log is kept in: " +
                  temporary + "\n");
    EXPECT_EQ(watched.log.FileName(), temporary);
    watched.log.Message(INFO, "late");
  }
  LOGGING("", "", NO_MESSAGE, DEBUG) << INFO << "another log leaves it alone";
  const std::string kept = ReadFile(temporary);
  EXPECT_TRUE(kept.starts_with("INFO  : resample : early\nALARM") && kept.ends_with(": late\n"));
  std::filesystem::remove(temporary);
}

TEST_F(LOG_FILE, TemporaryLogOfAKilledProcessGoesWithTheNextOne) {
  LOGGING living("", "", NO_MESSAGE, DEBUG);
  living << INFO << "early";
  std::array<int, 2> ends{};
  ASSERT_EQ(::pipe(ends.data()), 0);
  const pid_t child = ::fork();
  if (child == 0) {
    LOGGING log("", "", NO_MESSAGE, DEBUG);
    log << INFO << "early";
    const std::string name = OpenFile(log);
    [[maybe_unused]] const ssize_t written = ::write(ends[1], name.data(), name.size());
    ::raise(SIGKILL);
  }
  ::waitpid(child, nullptr, 0);
  std::string left_over(100, '\0');
  left_over.resize(static_cast<std::size_t>(::read(ends[0], left_over.data(), 100)));
  ASSERT_TRUE(std::filesystem::exists(left_over)) << left_over;
  LOGGING("", "", NO_MESSAGE, DEBUG) << INFO << "next";
  EXPECT_FALSE(std::filesystem::exists(left_over));
  EXPECT_TRUE(std::filesystem::exists(OpenFile(living)));
}

TEST_F(LOG_FILE, TemporaryLogsOfRunsAtOneTimeAreLeftAlone) {
  std::vector<std::thread> threads;
  for (const char* name : {"a", "b", "c", "d"}) {
    threads.emplace_back([path = Path(name)] {
      for (int run = 0; run < 300; ++run) {
        LOGGING log("", "", NO_MESSAGE, DEBUG);
        log << INFO << "early";
        log.Open(path);
        log << INFO << "late";
        EXPECT_EQ(ReadFile(path), "INFO  : early\nINFO  : late\n");
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
}

TEST_F(LOG_FILE, LogThatCanNotBeWrittenEndsWithAWholeLineAndOneReport) {
  const rlimit no_limit = {RLIM_INFINITY, RLIM_INFINITY};
  rlimit limit{};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &limit), 0);
  ::signal(SIGXFSZ, SIG_IGN);
  WATCHED_LOG watched;
  watched.log.Open(Path("log"));
  limit.rlim_cur = 1000;
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
  for (int i = 0; i < 100; ++i) {
    watched.log.Message(INFO, "line %d", i);
  }
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &no_limit), 0);
  EXPECT_EQ(watched.alarms, "can not write logging file: " + Path("log") +
                                "\nreason: File too large\nlogging goes on without it\n");
  const std::string log = ReadFile(Path("log"));
  EXPECT_TRUE(log.ends_with("\n") && log.size() > 950) << log;
}

TEST_F(LOG_FILE, FifoWhoseReaderGoesOrSleepsIsGivenUp) {
  ASSERT_EQ(::mkfifo(Path("fifo").c_str(), 0600), 0);
  for (const bool reader_goes : {true, false}) {
    const int reader = ::open(Path("fifo").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    WATCHED_LOG watched;
    watched.log.Open(Path("fifo"));
    if (reader_goes) {
      ::close(reader);
    }
    for (int i = 0; i < 100; ++i) {
      watched.log << INFO << std::string(1000, 'x');
    }
    EXPECT_EQ(watched.alarms, "can not write logging file: " + Path("fifo") + "\nreason: " +
                                  (reader_goes ? "Broken pipe" : "Connection timed out") +
                                  "\nlogging goes on without it\n");
    if (!reader_goes) {
      ::close(reader);
    }
  }
}

TEST_F(LOG_FILE, LogWithoutAnyFileGoesOnUntilOneOpens) {
  rlimit limit{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &limit), 0);
  const rlimit no_more_files = {0, limit.rlim_max};
  LOGGING log("", "resample", NO_MESSAGE, DEBUG);
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &no_more_files), 0);
  log.Message(INFO, "lost");
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &limit), 0);
  EXPECT_EQ(log.FileDescriptor(), -1);
  log.Open(Path("log"));
  log.Message(INFO, "kept");
  EXPECT_EQ(ReadFile(Path("log")), "INFO  : resample : kept\n");
}

}  // namespace
