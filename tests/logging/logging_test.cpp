#include "logging/logging.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <limits>
#include <sstream>
#include <thread>
#include <vector>

#include "logging/execution_time.h"
#include "support/temporary_directory.h"

namespace {

using enum LOGGING_LEVEL_T;

constexpr LOGGING_LEVEL_T message_levels[] = {TRACE,      DEBUG,   PARAMETER, INFO,
                                              QA_WARNING, WARNING, EXCEPTION, ALARM};

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    lines.push_back(line);
  }
  return lines;
}

/// What `body` writes to standard output.
template <class BODY>
std::string Screen(BODY body) {
  testing::internal::CaptureStdout();
  body();
  return testing::internal::GetCapturedStdout();
}

/// The path behind the log's open file.
std::string OpenFile(const LOGGING& log) {
  return std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(log.FileDescriptor()));
}

/// Sets an environment variable, or removes it when `value` is null, and puts it back at the end.
class ENVIRONMENT_VARIABLE {
 public:
  ENVIRONMENT_VARIABLE(const char* name, const char* value) : name_(name) {
    const char* old = std::getenv(name);
    was_set_ = old != nullptr;
    old_ = was_set_ ? old : "";
    Set(value);
  }
  ~ENVIRONMENT_VARIABLE() { Set(was_set_ ? old_.c_str() : nullptr); }
  ENVIRONMENT_VARIABLE(const ENVIRONMENT_VARIABLE&) = delete;
  ENVIRONMENT_VARIABLE& operator=(const ENVIRONMENT_VARIABLE&) = delete;

 private:
  void Set(const char* value) {
    value == nullptr ? ::unsetenv(name_.c_str()) : ::setenv(name_.c_str(), value, 1);
  }

  std::string name_;
  std::string old_;
  bool was_set_ = false;
};

/// A log of its own as the program makes it, with a silent screen and an open file.
class LOG : public testing::Test {
 protected:
  LOG() { log_.Open(Path("log")); }

  std::string Path(std::string_view name) const { return directory_.File(name); }
  std::vector<std::string> Lines() const { return LinesOf(ReadFile(Path("log"))); }

  TEMPORARY_DIRECTORY directory_;
  LOGGING log_{"", "resample", NO_MESSAGE, TRACE};
};

TEST_F(LOG, BothStylesWriteTagPrefixAndText) {
  log_.Message(INFO, "lines %d to %s", 7, "the end");
  log_ << WARNING << "text " << std::string("string ") << 'c' << ' ' << -3 << ' ' << 4U << ' '
       << short{-5};
  log_ << DEBUG << std::numeric_limits<long long>::min() << ' '
       << std::numeric_limits<unsigned long>::max();
  log_ << TRACE << 1.5F << ' ' << 0.1 << ' ' << -1e9 << ' ' << 1e-7L << ' ' << 2.5e30L;
  log_ << NO_LEVEL << "below every threshold";
  log_.SetFileLevel(NO_LEVEL);
  log_ << NO_LEVEL << "unset level";
  EXPECT_EQ(Lines(),
            (std::vector<std::string>{
                "INFO  : resample : lines 7 to the end", "WARN  : resample : text string c -3 4 -5",
                "DEBUG : resample : -9223372036854775808 18446744073709551615",
                "TRACE : resample : 1.500000 0.100000 -1000000000.000000 1E-07 2.5E+30",
                "LEV_? : resample : unset level"}));
}

TEST_F(LOG, OneMessageIsOneLine) {
  log_.Message(INFO, "no line feed");
  log_.Message(INFO, "a line feed\n");
  log_ << INFO << "a line "
       << "feed\n";
  log_ << INFO;
  log_.Message(INFO, "%s", "\n");
  const std::string long_text(100000, 'x');
  log_.Message(INFO, "%s", long_text.c_str());
  const std::string prefix = "INFO  : resample : ";
  EXPECT_EQ(ReadFile(Path("log")), prefix + "no line feed\n" + prefix + "a line feed\n" + prefix +
                                       "a line feed\n" + prefix + "\n" + prefix + "\n" + prefix +
                                       long_text + "\n");
}

TEST_F(LOG, LogWithoutProgramNameHasTheTagOnly) {
  LOGGING log("", "", NO_MESSAGE, TRACE);
  log.Open(Path("other"));
  log.Message(PARAMETER, "text");
  EXPECT_EQ(ReadFile(Path("other")), "PARAM : text\n");
}

TEST_F(LOG, EachThresholdLetsItsLevelAndAbovePass) {
  for (int screen = 1; screen <= 9; ++screen) {
    const int file = 10 - screen;  // other than the screen's, but for one
    log_.Open(Path("log"));
    log_.SetScreenLevel(static_cast<LOGGING_LEVEL_T>(screen));
    log_.SetFileLevel(static_cast<LOGGING_LEVEL_T>(file));
    const std::string shown = Screen([&] {
      for (const LOGGING_LEVEL_T level : message_levels) {
        log_.Message(level, "%d", static_cast<int>(level));
        log_ << level << static_cast<int>(level);
      }
    });
    std::string expected_screen;
    std::string expected_file;
    for (const LOGGING_LEVEL_T level : message_levels) {
      const int number = static_cast<int>(level);
      const std::string line =
          std::string(LevelTag(level)) + " : resample : " + std::to_string(number);
      for (int style = 0; style < 2; ++style) {
        if (number >= screen) {
          expected_screen += ScreenHighlight(level) + line + ScreenReset(level) + "\n";
        }
        if (number >= file) {
          expected_file += line + "\n";
        }
      }
    }
    EXPECT_EQ(shown, expected_screen) << "screen level " << screen;
    EXPECT_EQ(ReadFile(Path("log")), expected_file) << "file level " << file;
  }
}

TEST_F(LOG, HighlightingIsOnTheScreenOnlyAndEndsBeforeTheLineFeed) {
  log_.SetScreenLevel(TRACE);
  const std::string shown = Screen([&] {
    log_.Message(QA_WARNING, "five\n");
    log_.Message(WARNING, "six");
    log_ << EXCEPTION << "seven" << '\n';
    log_ << ALARM << "eight\n";
  });
  EXPECT_EQ(shown,
            "QA_WA : resample : five\n"
            "\033[4mWARN  : resample : six\033[0m\n"
            "\033[1mEXCEP : resample : seven\033[0m\n"
            "\033[7mALARM : resample : eight\033[0m\n");
  EXPECT_EQ(Lines(),
            (std::vector<std::string>{"QA_WA : resample : five", "WARN  : resample : six",
                                      "EXCEP : resample : seven", "ALARM : resample : eight"}));
}

TEST_F(LOG, LevelsAreSetByNameAndKeptForOtherTexts) {
  const struct {
    const char* name;
    bool known_to_screen;
    bool known_to_file;
    LOGGING_LEVEL_T screen;
    LOGGING_LEVEL_T file;
  } steps[] = {{"ALARM", true, true, ALARM, ALARM},
               {"info", false, false, ALARM, ALARM},
               {"NO_MESSAGE", true, false, NO_MESSAGE, ALARM},
               {"", false, false, NO_MESSAGE, ALARM},
               {"PARAMETER", true, true, PARAMETER, PARAMETER},
               {"NO_LEVEL", false, false, PARAMETER, PARAMETER}};
  for (const auto& step : steps) {
    EXPECT_EQ(log_.SetScreenLevel(step.name), step.known_to_screen) << step.name;
    EXPECT_EQ(log_.SetFileLevel(step.name), step.known_to_file) << step.name;
    EXPECT_EQ(log_.ScreenLevel(), step.screen) << step.name;
    EXPECT_EQ(log_.FileLevel(), step.file) << step.name;
  }
}

TEST_F(LOG, NothingCanBeLoggedAtNoMessage) {
  const std::string reason =
      "logging not allowed in level NO_MESSAGE. This level is only provided to totally turn off "
      "screen logging.";
  for (const LOGGING_LEVEL_T level : {NO_MESSAGE, static_cast<LOGGING_LEVEL_T>(10)}) {
    try {
      log_ << level << "text";
      ADD_FAILURE();
    } catch (const char* text) {
      EXPECT_EQ(text, "LOGGING::operator << (LOGGING_LEVEL_T): " + reason);
    }
    try {
      log_.Message(level, "text");
      ADD_FAILURE();
    } catch (const char* text) {
      EXPECT_EQ(text, "LOGGING::Message: " + reason);
    }
  }
  EXPECT_EQ(ReadFile(Path("log")), "");
  log_.Message(INFO, "the log is not locked");
  EXPECT_EQ(Lines().size(), 1U);
}

TEST_F(LOG, QaWarningIsRememberedEvenWhenNothingShowsIt) {
  log_.SetFileLevel(ALARM);
  for (const LOGGING_LEVEL_T level : message_levels) {
    if (level != QA_WARNING) {
      log_.Message(level, "other");
    }
  }
  EXPECT_FALSE(log_.QaWarningLogged());
  log_ << QA_WARNING << "streamed";
  EXPECT_TRUE(log_.QaWarningLogged());

  LOGGING other("", "other", NO_MESSAGE, ALARM);
  other.Message(QA_WARNING, "formatted");
  EXPECT_TRUE(other.QaWarningLogged());
}

TEST_F(LOG, KeepsTheLastMessageThatReachedTheScreen) {
  log_.SetScreenLevel(WARNING);
  Screen([&] { log_.Message(ALARM, "before"); });
  EXPECT_EQ(log_.KeptMessage(), "");
  log_.KeepMessages(true);
  Screen([&] {
    log_.Message(WARNING, "kept %d\n", 1);
    log_.Message(INFO, "below the screen level");
  });
  EXPECT_EQ(log_.KeptMessage(), "kept 1\n");
  log_.KeepMessages(false);
  Screen([&] { log_.Message(ALARM, "after"); });
  EXPECT_EQ(log_.KeptMessage(), "kept 1\n");
}

TEST_F(LOG, LinesOfThreadsNeverMix) {
  constexpr std::size_t thread_count = 6;
  constexpr int message_count = 150;
  log_.SetScreenLevel(WARNING);
  const std::string shown = Screen([&] {
    std::array<std::thread, thread_count> threads;
    for (std::size_t thread = 0; thread < thread_count; ++thread) {
      threads[thread] = std::thread([&, thread] {
        for (int i = 0; i < message_count; ++i) {
          log_ << WARNING << "stream " << thread << " says " << i << ": " << 0.5 << " done\n";
          log_.Message(WARNING, "format %zu says %d: %f done", thread, i, 0.5);
        }
      });
    }
    for (std::thread& thread : threads) {
      thread.join();
    }
  });
  std::vector<std::string> expected;
  for (std::size_t thread = 0; thread < thread_count; ++thread) {
    for (int i = 0; i < message_count; ++i) {
      for (const char* style : {"stream ", "format "}) {
        expected.push_back("WARN  : resample : " + (style + std::to_string(thread)) + " says " +
                           std::to_string(i) + ": 0.500000 done");
      }
    }
  }
  std::vector<std::string> in_file = Lines();
  std::vector<std::string> on_screen = LinesOf(shown);
  std::vector<std::string> undressed = in_file;
  std::transform(in_file.begin(), in_file.end(), undressed.begin(),
                 [](const std::string& line) { return "\033[4m" + line + "\033[0m"; });
  EXPECT_EQ(on_screen, undressed) << "screen and file differ";
  std::sort(in_file.begin(), in_file.end());
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(in_file, expected);
}

/// The way from the temporary log file to the real one.
class LOG_FILE : public testing::Test {
 protected:
  std::string Path(std::string_view name) const { return directory_.File(name); }

  TEMPORARY_DIRECTORY directory_;
};

TEST_F(LOG_FILE, TemporaryLogMovesIntoTheRealOne) {
  WriteFile(Path("log"), "an older and longer log than the new one\n");
  LOGGING log("", "resample", NO_MESSAGE, DEBUG);
  const std::string temporary = OpenFile(log);
  EXPECT_TRUE(temporary.starts_with("/tmp/log.") && temporary.size() == 15) << temporary;
  EXPECT_EQ(log.FileName(), "");
  log.Message(INFO, "early");
  log.Message(TRACE, "below the file level");
  EXPECT_EQ(ReadFile(temporary), "INFO  : resample : early\n");

  log.Open(Path("log"));
  EXPECT_FALSE(std::filesystem::exists(temporary));
  EXPECT_EQ(log.FileName(), Path("log"));
  log.Message(INFO, "late");
  EXPECT_EQ(ReadFile(Path("log")), "INFO  : resample : early\nINFO  : resample : late\n");
}

TEST_F(LOG_FILE, LongTemporaryLogIsCarriedOverWhole) {
  LOGGING log("", "resample", NO_MESSAGE, DEBUG);
  const std::string text(5000, 'x');
  for (int i = 0; i < 10; ++i) {
    log << INFO << text;
  }
  const std::string written = ReadFile(OpenFile(log));
  log.Open(Path("log"));
  EXPECT_EQ(ReadFile(Path("log")), written);
}

TEST_F(LOG_FILE, TemporaryLogIsRemovedWithoutARealOne) {
  std::string temporary;
  {
    const LOGGING log("", "resample", NO_MESSAGE, DEBUG);
    temporary = OpenFile(log);
    EXPECT_TRUE(std::filesystem::exists(temporary));
  }
  EXPECT_FALSE(std::filesystem::exists(temporary));
}

TEST_F(LOG_FILE, UnopenableLogIsReportedAndTheTemporaryOneGoesOn) {
  LOGGING log("", "resample", ALARM, DEBUG);
  const std::string missing = Path("no such directory/log");
  const std::string directory = directory_.Path().string();
  std::string expected_screen;
  std::string expected_file = "INFO  : resample : early\n";
  for (const std::string& name : {missing, directory}) {
    const std::string line = "ALARM : resample :  can not open logging file: " + name;
    expected_screen += "\033[7m" + line + "\033[0m\n";
    expected_file += line + "\n";
  }
  EXPECT_EQ(Screen([&] {
              log.Message(INFO, "early");
              log.Open(missing);
              log.Open(directory);
            }),
            expected_screen);
  EXPECT_EQ(ReadFile(OpenFile(log)), expected_file);
  EXPECT_EQ(log.FileName(), "");

  log.Open(Path("log"));
  EXPECT_EQ(ReadFile(Path("log")), expected_file);
}

TEST_F(LOG_FILE, LostTemporaryLogIsReportedInTheRealOne) {
  LOGGING log("", "resample", NO_MESSAGE, DEBUG);
  const std::string temporary = OpenFile(log);
  ASSERT_EQ(::unlink(temporary.c_str()), 0);
  log.Open(Path("log"));
  log.Message(INFO, "going on");
  EXPECT_EQ(
      LinesOf(ReadFile(Path("log"))),
      (std::vector<std::string>{"ALARM : resample :  can not reopen tmp logging file: " + temporary,
                                "ALARM : resample : can not remove tmp file: " + temporary,
                                "ALARM : resample : reason: No such file or directory",
                                "INFO  : resample : going on"}));
}

TEST_F(LOG_FILE, LogWithoutAnyFileWritesToTheScreenUntilOneOpens) {
  rlimit limit{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &limit), 0);
  const rlimit no_more_files = {0, limit.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &no_more_files), 0);
  LOGGING log("", "resample", INFO, DEBUG);
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &limit), 0);
  EXPECT_EQ(log.FileDescriptor(), -1);
  EXPECT_EQ(Screen([&] {
              log.Message(INFO, "screen only");
              log.Open(Path("log"));
              log.Message(INFO, "both");
            }),
            "INFO  : resample : screen only\nINFO  : resample : both\n");
  EXPECT_EQ(ReadFile(Path("log")), "INFO  : resample : both\n");
}

std::unique_ptr<VERSION_RECORD> Record(const char* full_version) {
  return std::make_unique<VERSION_RECORD>(VERSION_RECORD{.display_name = "Resample",
                                                         .version = "0.0.5",
                                                         .compiled_by = "gcc4.5.0_64b",
                                                         .compile_date = "2020-02-06T13:09:23",
                                                         .configuration_file = "pcf.resample",
                                                         .full_version = full_version});
}

const std::string star_line = "INFO  : resample : " + std::string(59, '*');

/// The text of a time as header and trailer show it.
std::string TimeText(std::time_t time) {
  std::string text = std::ctime(&time);
  text.pop_back();
  return text;
}

std::string HostName() {
  char name[256] = {};
  EXPECT_EQ(::gethostname(name, sizeof name - 1), 0);
  return name;
}

TEST_F(LOG, HeaderTellsProgramStartAndConfiguration) {
  const ENVIRONMENT_VARIABLE no_supervisor("PROC_NAME", nullptr);
  log_.WriteHeader(Record("resample.v0.0.5.default"));
  EXPECT_EQ(Lines(),
            (std::vector<std::string>{
                "INFO  : resample : ", star_line, "INFO  : resample : Resample 0.0.5", star_line,
                "INFO  : resample : compile date: 2020-02-06T13:09:23  compiled by: gcc4.5.0_64b",
                "INFO  : resample : start time: " + TimeText(log_.StartTime()) +
                    "  hostname: " + HostName(),
                "INFO  : resample : using configuration file pcf.resample",
                "DEBUG : resample : full version: resample.v0.0.5.default"}));
  EXPECT_FALSE(log_.SupervisorVersionKnown());
}

TEST_F(LOG, HeaderNamesTheSupervisorAndLeavesOutAnEmptyFullVersion) {
  const ENVIRONMENT_VARIABLE supervisor("PROC_NAME", "chain");
  for (const char* version : {static_cast<const char*>(nullptr), ""}) {
    const ENVIRONMENT_VARIABLE supervisor_version("chain_VERSION", version);
    log_.Open(Path("log"));
    log_.WriteHeader(Record(""));
    const std::vector<std::string> lines = Lines();
    ASSERT_EQ(lines.size(), 8U);
    EXPECT_EQ(lines[6], "INFO  : resample : started by: chain");
    EXPECT_EQ(lines[7], "INFO  : resample : using configuration file pcf.resample");
    EXPECT_EQ(log_.SupervisorVersionKnown(), version != nullptr);
  }
}

TEST_F(LOG, TrailerTellsEndAndDuration) {
  const std::time_t before = std::time(nullptr);
  log_.WriteTrailer();
  const std::time_t after = std::time(nullptr);
  // The second in which the trailer was written is one of a few.
  std::vector<std::vector<std::string>> possible;
  for (std::time_t time = before; time <= after; ++time) {
    possible.push_back(
        {star_line, "INFO  : resample : end time: " + TimeText(time),
         "INFO  : resample : execution time:" + ExecutionTime(time - log_.StartTime())});
  }
  EXPECT_NE(std::find(possible.begin(), possible.end(), Lines()), possible.end())
      << ReadFile(Path("log"));
}

TEST(LOGGING_USER, FirstUserCreatesTheLogAndTheLastOneEndsIt) {
  ASSERT_EQ(ExistingLog(), nullptr);
  {
    const LOGGING_USER first("", "first", NO_MESSAGE, WARNING);
    const LOGGING* const log = ExistingLog();
    {
      const LOGGING_USER second("", "second", ALARM, TRACE);
      EXPECT_EQ(&Log(), log);
    }
    EXPECT_EQ(ExistingLog(), log);
    EXPECT_STREQ(Log().Prefix(), "first : ");
    EXPECT_EQ(Log().ScreenLevel(), NO_MESSAGE);
    EXPECT_EQ(Log().FileLevel(), WARNING);
  }
  EXPECT_EQ(ExistingLog(), nullptr);
}

}  // namespace
