#include "control/keyboard.h"

#include <signal.h>
#include <unistd.h>

#include <array>

#include "process_test.h"

namespace {

using KEYBOARD = PROCESS_TEST;

TEST_F(KEYBOARD, TakesOneWordPerQuestionAndLeavesTheRest) {
  Run(
      [] {
        std::string answers;
        ::setenv("SECONDS_ON_PARAMETER_INPUT", "7", 1);
        for (const char* name : {"FIRST", "SECOND", "THIRD"}) {
          answers += AskAtKeyboard(name, "") + "|";
        }
        std::array<char, 8> rest{};
        const ssize_t length = ::read(STDIN_FILENO, rest.data(), rest.size());
        answers.append(rest.data(), static_cast<std::size_t>(length));
        WriteFile("answers", answers + "|" + std::to_string(::alarm(0)));
      },
      "\n  one two\r\n\tthree four");
  EXPECT_EQ(Content("answers"), "one|two|three|four|0") << "or the alarm is still armed";
}

TEST_F(KEYBOARD, AlarmEndsTheProcessEvenWhenItWasIgnoredAndBlocked) {
  std::array<int, 2> silent_pipe{};
  ASSERT_EQ(::pipe(silent_pipe.data()), 0);
  const PROCESS_END end = Run([&] {
    ::dup2(silent_pipe[0], STDIN_FILENO);
    ::signal(SIGALRM, SIG_IGN);
    sigset_t all;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_BLOCK, &all, nullptr);
    ::setenv("SECONDS_ON_PARAMETER_INPUT", "1", 1);
    AskAtKeyboard("NAME", "");
  });
  ::close(silent_pipe[0]);
  ::close(silent_pipe[1]);
  EXPECT_EQ(end.signal, SIGALRM);
}

}  // namespace
