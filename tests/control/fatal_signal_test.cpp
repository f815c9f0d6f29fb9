#include "control/fatal_signal.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <random>
#include <thread>

#include "child_process.h"
#include "control/controller_ifc.h"
#include "logging/logging.h"

namespace {

struct SIGNAL_TEXT {
  int number;
  std::string text;
};

const std::vector<SIGNAL_TEXT> caught_signals = {{1, "hangup"},
                                                 {2, "interrupt (rubout)"},
                                                 {3, "quit (ASCII FS)"},
                                                 {4, "illegal instruction (not reset when caught)"},
                                                 {6, "IOT instruction"},
                                                 {7, "bus error"},
                                                 {8, "floating point exception"},
                                                 {11, "segmentation violation"},
                                                 {15, "software termination signal from kill"},
                                                 {23, "urgent socket condition"},
                                                 {24, "exceeded cpu limit"},
                                                 {25, "exceeded file size limit"},
                                                 {31, "bad argument to system call"}};

std::string Message(const SIGNAL_TEXT& signal) {
  return "got fatal signal " + std::to_string(signal.number) + ": " + signal.text;
}

const std::string log_begin = "ALARM : resample : ";
const std::string supervisor_begin = log_begin + "KVT_MSG|ERROR|tool ";

class FATAL_SIGNAL : public CHILD_PROCESS_TEST {
 protected:
  // Without a configuration file the screen would begin with a warning.
  FATAL_SIGNAL() { WriteFile(Path("pcf.run"), ""); }

  /// A body with a controller of the binary "tool" and the run "run".
  static std::function<void()> WithController(const std::function<void(CONTROLLER_IFC&)>& body,
                                              int supervisor_flag = 1) {
    return [=] {
      ARGUMENTS arguments({"/usr/bin/tool", "-pid", "run"});
      CONTROLLER_IFC controller;
      controller.init(arguments.Count(), arguments.Vector(), supervisor_flag);
      body(controller);
    };
  }

  /// What a run that the signal ended must leave behind.
  void ExpectReported(const CHILD_END& end, const SIGNAL_TEXT& signal) {
    EXPECT_EQ(end.exit_status, 1) << Message(signal);
    EXPECT_EQ(end.signal, 0) << Message(signal);
    EXPECT_EQ(Content("ERROR.run"), "1");
    EXPECT_FALSE(Exists("OK.run"));
    EXPECT_EQ(Count("log.run", log_begin + Message(signal)), 1) << Message(signal);
    EXPECT_EQ(Count("log.run", supervisor_begin + Message(signal)), 1) << Message(signal);
  }

  void WaitForFile(std::string_view name) const {
    while (!Exists(name)) {
      std::this_thread::sleep_for(std::chrono::microseconds(10));
    }
  }
};

TEST_F(FATAL_SIGNAL, EverySignalOfTheListEndsTheRunAsFailed) {
  for (const SIGNAL_TEXT& signal : caught_signals) {
    const CHILD_END end = Run(WithController([&](CONTROLLER_IFC&) {
      WriteFile("OK.run", "0");
      ::raise(signal.number);
    }));
    ExpectReported(end, signal);
    EXPECT_EQ(end.screen, "\033[7m" + log_begin + Message(signal) + "\033[0m\n\033[7m" +
                              supervisor_begin + Message(signal) + "\033[0m\n");
  }
}

TEST_F(FATAL_SIGNAL, OtherSignalsKeepTheirAction) {
  for (const int number : {SIGALRM, SIGUSR1, SIGPIPE, SIGKILL}) {
    const CHILD_END end = Run(WithController([=](CONTROLLER_IFC&) { ::raise(number); }));
    EXPECT_EQ(end.signal, number);
    EXPECT_EQ(Content("ERROR.run"), "1") << "the start leaves it";
  }
}

TEST_F(FATAL_SIGNAL, IgnoredSignalIsCaughtNevertheless) {
  const auto with_controller = WithController([](CONTROLLER_IFC&) { ::raise(SIGHUP); });
  ExpectReported(Run([&] {
                   ::signal(SIGHUP, SIG_IGN);
                   with_controller();
                 }),
                 caught_signals.front());
}

TEST_F(FATAL_SIGNAL, SupervisorLineIsWrittenOnlyWhenAskedFor) {
  const auto raise = [](CONTROLLER_IFC&) { ::raise(SIGINT); };
  const CHILD_END quiet = Run(WithController(raise, 0));
  EXPECT_EQ(quiet.exit_status, 1);
  EXPECT_EQ(quiet.screen, "\033[7m" + log_begin + Message(caught_signals[1]) + "\033[0m\n");
  EXPECT_EQ(Content("ERROR.run"), "1");

  const auto asked_later = [](CONTROLLER_IFC& controller) {
    controller.SetSupervisorFlag();
    ::raise(SIGINT);
  };
  ExpectReported(Run(WithController(asked_later, 0)), caught_signals[1]);
}

TEST_F(FATAL_SIGNAL, WithoutControllerTheExitStatusIs255) {
  const CHILD_END end = Run([] {
    InstallFatalSignalHandler();
    Log().Open("log");
    ::raise(SIGQUIT);
  });
  EXPECT_EQ(end.exit_status, 255);
  EXPECT_EQ(Lines("log"), std::vector{log_begin + Message(caught_signals[2])});
}

TEST_F(FATAL_SIGNAL, SilentScreenStaysSilent) {
  const CHILD_END end = Run(WithController([](CONTROLLER_IFC&) {
    Log().SetScreenLevel(LOGGING_LEVEL_T::NO_MESSAGE);
    ::raise(SIGINT);
  }));
  ExpectReported(end, caught_signals[1]);
  EXPECT_EQ(end.screen, "");
}

TEST_F(FATAL_SIGNAL, EndlessProgramNameIsCut) {
  const CHILD_END end = Run([] {
    ARGUMENTS arguments({std::string(10000, 'n'), "-pid", "run"});
    CONTROLLER_IFC controller;
    controller.init(arguments.Count(), arguments.Vector(), 1);
    ::raise(SIGINT);
  });
  EXPECT_EQ(end.exit_status, 1);
  EXPECT_TRUE(Lines("log.run").back().starts_with(log_begin + "KVT_MSG|ERROR|nnn"));
  EXPECT_TRUE(end.screen.ends_with("nnn\033[0m\n"));
}

TEST_F(FATAL_SIGNAL, FaultsOfTheProgramAreReported) {
  const SIGNAL_TEXT bus_error = caught_signals[5];
  ExpectReported(Run(WithController([](CONTROLLER_IFC&) {
                   WriteFile("raster", std::string(8192, 'x'));
                   const int file = ::open("raster", O_RDWR);
                   void* const mapped = ::mmap(nullptr, 8192, PROT_READ, MAP_SHARED, file, 0);
                   ASSERT_EQ(::ftruncate(file, 0), 0);
                   const char first = *static_cast<const volatile char*>(mapped);
                   WriteFile("unreachable", std::string(1, first));
                 })),
                 bus_error);
  const SIGNAL_TEXT trap = caught_signals[6];
  ExpectReported(Run(WithController([](CONTROLLER_IFC&) {
                   volatile double zero = 0;
                   WriteFile("untrapped", std::to_string(1 / zero));
                   CONTROLLER_IFC::EnableFloatingPointTraps();
                   WriteFile("trapped", std::to_string(1 / zero));
                 })),
                 trap);
  EXPECT_EQ(Content("untrapped"), "inf");
  EXPECT_FALSE(Exists("trapped"));
  const SIGNAL_TEXT abort = caught_signals[4];
  ExpectReported(Run(WithController([](CONTROLLER_IFC&) { std::terminate(); })), abort);
}

/// Uses 4 KiB of stack a level, in a way that no optimisation turns into a loop.
int UseStack(int levels) {  // NOLINT(misc-no-recursion): that is the point
  std::array<char, 4096> block{};
  volatile char* const kept = block.data();
  kept[0] = static_cast<char>(levels);
  return levels == 0 ? 0 : UseStack(levels - 1) + kept[0];
}

TEST_F(FATAL_SIGNAL, StackOverflowOfTheMainThreadIsReported) {
  const SIGNAL_TEXT segmentation_violation = caught_signals[7];
  ExpectReported(Run(WithController([](CONTROLLER_IFC&) {
                   const rlimit one_mebibyte = {1 << 20, 1 << 20};
                   ASSERT_EQ(::setrlimit(RLIMIT_STACK, &one_mebibyte), 0);
                   WriteFile("unreachable", std::to_string(UseStack(1 << 20)));
                 })),
                 segmentation_violation);
}

TEST_F(FATAL_SIGNAL, SignalsInManyThreadsAtOnceAreReportedOnce) {
  for (int round = 0; round < 10; ++round) {
    const CHILD_END end = Run(WithController([](CONTROLLER_IFC&) {
      std::atomic<bool> go = false;
      std::vector<std::jthread> threads;
      for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&] {
          go.wait(false);
          ::raise(SIGTERM);
        });
      }
      go = true;
      go.notify_all();
    }));
    ExpectReported(end, caught_signals[8]);
  }
}

TEST_F(FATAL_SIGNAL, ThreadThatHoldsTheLogAndAScreenThatNobodyReadsDoNotHang) {
  std::array<int, 2> screen{};
  ASSERT_EQ(::pipe(screen.data()), 0);
  const pid_t child = Start(WithController([&](CONTROLLER_IFC&) {
    ::dup2(screen[1], STDOUT_FILENO);
    // The file gets the line only after the screen, so that this stops where the pipe is full.
    for (int line = 0;; ++line) {
      WriteFile("lines", std::to_string(line));
      Log() << LOGGING_LEVEL_T::INFO << std::string(1000, 'x');
    }
  }));
  const auto lines_so_far = [&] { return Exists("lines") ? Content("lines") : ""; };
  std::string lines;
  do {
    lines = lines_so_far();
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
  } while (lines.empty() || lines != lines_so_far());
  ASSERT_EQ(::kill(child, SIGTERM), 0);
  ExpectReported(Wait(child), caught_signals[8]);
  ::close(screen[0]);
  ::close(screen[1]);
}

/// Everything that takes a lock in the middle of a run: the log and the allocator.
void KeepBusy(const std::atomic<bool>& stop, unsigned seed) {
  std::mt19937 random(seed);
  while (!stop) {
    const std::vector<char> block(random() % 300000);
    Log() << LOGGING_LEVEL_T::TRACE << "block of " << block.size();
    Log().Message(LOGGING_LEVEL_T::INFO, "block of %zu", block.size());
  }
}

TEST_F(FATAL_SIGNAL, BusyThreadsAreEndedAtAnyMoment) {
  std::mt19937 random(20200206);
  for (unsigned round = 0; round < 52; ++round) {
    std::filesystem::remove(Path("started"));
    const SIGNAL_TEXT& signal =
        caught_signals[static_cast<std::size_t>(round) % caught_signals.size()];
    const pid_t child = Start(WithController([&](CONTROLLER_IFC&) {
      Log().SetFileLevel(LOGGING_LEVEL_T::TRACE);
      WriteFile("started", "");
      const std::atomic<bool> stop = false;
      std::vector<std::jthread> threads;
      for (unsigned i = 0; i < 4; ++i) {
        threads.emplace_back([&stop, i] { KeepBusy(stop, i); });
      }
    }));
    WaitForFile("started");
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 10000));
    ASSERT_EQ(::kill(child, signal.number), 0);
    ExpectReported(Wait(child), signal);
  }
}

TEST_F(FATAL_SIGNAL, SignalAroundTheEndOfTheRunLeavesOneOutcome) {
  std::mt19937 random(20200206);
  for (unsigned round = 0; round < 200; ++round) {
    for (const char* file : {"started", "OK.run", "ERROR.run"}) {
      std::filesystem::remove(Path(file));
    }
    const pid_t child = Start(WithController([](CONTROLLER_IFC& controller) {
      WriteFile("started", "");
      std::this_thread::sleep_for(std::chrono::microseconds(100));
      controller.FinishSuccessExit();
    }));
    WaitForFile("started");
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 200));
    ::kill(child, caught_signals[round % caught_signals.size()].number);
    const int exit_status = Wait(child).exit_status;
    EXPECT_TRUE(exit_status == 0 || exit_status == 1) << exit_status;
    EXPECT_EQ(Exists("OK.run"), exit_status == 0);
    EXPECT_EQ(Exists("ERROR.run"), exit_status == 1);
  }
}

}  // namespace
