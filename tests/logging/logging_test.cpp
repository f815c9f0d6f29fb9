#include "logging/logging.h"

#include <gtest/gtest.h>

#include <limits>
#include <regex>
#include <set>
#include <sstream>
#include <thread>
#include <vector>

#include "support/temporary_directory.h"

namespace {

using enum LOGGING_LEVEL_T;

/// What `body` writes to standard output.
template <class BODY>
std::string Screen(BODY body) {
  testing::internal::CaptureStdout();
  body();
  return testing::internal::GetCapturedStdout();
}

/// A log of its own as the program makes it, with a silent screen and an open file.
class LOG : public testing::Test {
 protected:
  LOG() { log_.Open(path_); }

  std::string Text() const { return ReadFile(path_); }

  TEMPORARY_DIRECTORY directory_;
  std::string path_ = directory_.File("log");
  LOGGING log_{"", "resample", NO_MESSAGE, TRACE};
};

TEST_F(LOG, BothStylesWriteOneLineOfTagPrefixAndText) {
  const std::string long_text(100000, 'x');
  log_.Message(INFO, "lines %d to %s\n", 7, "the end");
  log_.Message(INFO, "%s", long_text.c_str());
  log_ << WARNING << "text " << std::string("string ") << 'c' << ' ' << -3 << ' ' << 4U << ' '
       << short{-5} << '\n';
  log_ << DEBUG << std::numeric_limits<long long>::min() << ' '
       << std::numeric_limits<unsigned long>::max();
  log_ << TRACE << 1.5F << ' ' << 0.1 << ' ' << -1e9 << ' ' << 1e-7L << ' ' << 2.5e30L;
  log_ << INFO;
  log_ << NO_LEVEL << "below every threshold";
  log_.Message(INFO, "%lc", wint_t{0x20AC});  // has no bytes in this locale
  EXPECT_EQ(Text(), "INFO  : resample : lines 7 to the end\nINFO  : resample : " + long_text +
                        "\nWARN  : resample : text string c -3 4 -5\n"
                        "DEBUG : resample : -9223372036854775808 18446744073709551615\n"
                        "TRACE : resample : 1.500000 0.100000 -1000000000.000000 1E-07 2.5E+30\n"
                        "INFO  : resample : \nINFO  : resample : %lc\n");
  LOGGING log_without_name("", "", NO_MESSAGE, TRACE);
  log_without_name.Open(path_);
  log_without_name.Message(PARAMETER, "text");
  EXPECT_EQ(Text(), "PARAM : text\n");
}

TEST_F(LOG, EachThresholdLetsItsLevelAndAbovePass) {
  for (int screen = 1; screen <= 9; ++screen) {
    const int file = 10 - screen;  // other than the screen's, but for one
    log_.Open(path_);
    log_.SetScreenLevel(static_cast<LOGGING_LEVEL_T>(screen));
    log_.SetFileLevel(static_cast<LOGGING_LEVEL_T>(file));
    std::string expected_screen;
    std::string expected_file;
    const std::string shown = Screen([&] {
      for (int number = 1; number <= 8; ++number) {
        const auto level = static_cast<LOGGING_LEVEL_T>(number);
        log_.Message(level, "text\n");
        log_ << level << "text\n";
        const std::string line = LevelTag(level) + std::string(" : resample : text");
        const std::string highlighted = ScreenHighlight(level) + line + ScreenReset(level) + "\n";
        expected_screen += number >= screen ? highlighted + highlighted : "";
        expected_file += number >= file ? line + "\n" + line + "\n" : "";
      }
    });
    EXPECT_EQ(shown, expected_screen) << "screen level " << screen;
    EXPECT_EQ(Text(), expected_file) << "file level " << file;
  }
}

TEST_F(LOG, NothingCanBeLoggedAtNoMessage) {
  EXPECT_THROW(log_ << NO_MESSAGE << "text", const char*);
  try {
    log_.Message(NO_MESSAGE, "text");
    ADD_FAILURE();
  } catch (const char* text) {
    EXPECT_STREQ(text,
                 "LOGGING::Message: logging not allowed in level NO_MESSAGE. This level is only "
                 "provided to totally turn off screen logging.");
  }
  log_.Message(INFO, "the log is not locked");
  EXPECT_EQ(Text(), "INFO  : resample : the log is not locked\n");
}

TEST_F(LOG, RemembersQaWarningsAndTheLastMessageThatReachedTheScreen) {
  log_.SetScreenLevel(WARNING);
  Screen([&] {
    log_.Message(ALARM, "before");
    log_.KeepMessages(true);
    log_.Message(WARNING, "kept %d\n", 1);
    EXPECT_FALSE(log_.QaWarningLogged());
    log_.Message(QA_WARNING, "below the screen level");
    log_.KeepMessages(false);
    log_.Message(ALARM, "after");
  });
  EXPECT_EQ(log_.KeptMessage(), "kept 1\n");
  EXPECT_TRUE(log_.QaWarningLogged());
}

TEST_F(LOG, LinesOfThreadsNeverMix) {
  constexpr int thread_count = 6;
  constexpr int message_count = 150;
  log_.SetScreenLevel(INFO);
  const std::string shown = Screen([&] {
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < thread_count; ++thread) {
      threads.emplace_back([&, thread] {
        for (int i = 0; i < message_count; ++i) {
          log_ << INFO << "stream " << thread << " says " << i << " done\n";
          log_.Message(INFO, "format %d says %d done", thread, i);
        }
      });
    }
  });
  EXPECT_EQ(shown, Text());
  const std::regex pattern("INFO  : resample : (stream|format) [0-5] says [0-9]+ done");
  std::set<std::string> lines;
  std::istringstream text(shown);
  for (std::string line; std::getline(text, line);) {
    EXPECT_TRUE(std::regex_match(line, pattern)) << line;
    lines.insert(line);
  }
  EXPECT_EQ(lines.size(), 2U * thread_count * message_count);
}

TEST(LOGGING_USER, FirstUserCreatesTheLogAndTheLastOneEndsIt) {
  {
    const LOGGING_USER first("", "first", NO_MESSAGE, WARNING);
    const LOGGING* const log = ExistingLog();
    { const LOGGING_USER second("", "second", ALARM, TRACE); }
    EXPECT_EQ(ExistingLog(), log);
    EXPECT_EQ(&Log(), log);
    EXPECT_STREQ(log->Prefix(), "first : ");
    EXPECT_EQ(log->FileLevel(), WARNING);
  }
  EXPECT_EQ(ExistingLog(), nullptr);
}

}  // namespace
