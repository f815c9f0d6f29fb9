#include "control/keyboard.h"

#include <signal.h>
#include <unistd.h>

#include <array>
#include <cstdlib>

#include "child_process.h"
#include "logging/logging.h"

namespace {

class KEYBOARD : public CHILD_PROCESS_TEST {
 protected:
  static void LogEverything() {
    Log().SetFileLevel(LOGGING_LEVEL_T::TRACE);
    Log().Open("log");
  }
};

TEST_F(KEYBOARD, TakesOneWordPerQuestionAndLeavesTheRest) {
  const CHILD_END end = Run(
      [] {
        ::unsetenv("SECONDS_ON_PARAMETER_INPUT");
        LogEverything();
        std::string answers;
        for (const char* name : {"FIRST", "SECOND", "THIRD"}) {
          answers += AskAtKeyboard(name) + "|";
        }
        WriteFile("answers", answers);
        std::array<char, 8> rest{};
        const ssize_t length = ::read(STDIN_FILENO, rest.data(), rest.size());
        WriteFile("rest", {rest.data(), static_cast<std::size_t>(length)});
        WriteFile("alarm", std::to_string(::alarm(0)));
      },
      "\n  one two\r\n\tthree four");
  EXPECT_EQ(end.exit_status, body_returned);
  EXPECT_EQ(Content("answers"), "one|two|three|");
  EXPECT_EQ(Content("rest"), "four");
  EXPECT_EQ(Content("alarm"), "0") << "the alarm is still armed";
  EXPECT_NE(end.screen.find("FIRST := "), std::string::npos);
  const std::vector<std::string> expected = {
      "WARN  : resample : No configuration file or parameter not found!",
      "WARN  : resample : \t  Please input value of parameter : <FIRST>",
      "DEBUG : resample : waiting 120 seconds for input",
      "DEBUG : resample : Read from keyboard parameter FIRST = one"};
  std::vector<std::string> lines = Lines("log");
  lines.resize(expected.size());
  EXPECT_EQ(lines, expected);
}

TEST_F(KEYBOARD, LastWordNeedsNoLineEnd) {
  Run([] { WriteFile("answer", AskAtKeyboard("NAME")); }, "value");
  EXPECT_EQ(Content("answer"), "value");
}

TEST_F(KEYBOARD, EndOfInputNamesTheParameterAndThrowsAText) {
  Run(
      [] {
        LogEverything();
        try {
          AskAtKeyboard("SlaveIn");
        } catch (const char*) {
          WriteFile("caught", std::to_string(::alarm(0)));
        }
      },
      " \n ");
  EXPECT_EQ(Content("caught"), "0") << "the alarm is still armed";
  EXPECT_EQ(Lines("log").back(),
            "ALARM : resample : end of standard input, no value for parameter SlaveIn");
}

TEST_F(KEYBOARD, AlarmEndsTheProcessEvenWhenItWasIgnoredAndBlocked) {
  std::array<int, 2> silent_pipe{};
  ASSERT_EQ(::pipe(silent_pipe.data()), 0);
  const CHILD_END end = Run([&] {
    ::dup2(silent_pipe[0], STDIN_FILENO);
    ::signal(SIGALRM, SIG_IGN);
    sigset_t all;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_BLOCK, &all, nullptr);
    ::setenv("SECONDS_ON_PARAMETER_INPUT", "1", 1);
    LogEverything();
    AskAtKeyboard("NAME");
  });
  ::close(silent_pipe[0]);
  ::close(silent_pipe[1]);
  EXPECT_EQ(end.signal, SIGALRM);
  EXPECT_EQ(Lines("log").back(), "DEBUG : resample : waiting 1 seconds for input");
}

TEST_F(KEYBOARD, WaitThatIsNoPositiveNumberHasNoLimit) {
  for (const char* text : {"soon", "-5", "0"}) {
    Run(
        [=] {
          ::setenv("SECONDS_ON_PARAMETER_INPUT", text, 1);
          LogEverything();
          AskAtKeyboard("NAME");
        },
        "value");
    EXPECT_EQ(Count("log", "DEBUG : resample : waiting 0 seconds for input"), 1) << text;
  }
}

}  // namespace
