#include "control/fatal_signal.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <random>
#include <thread>

#include "process_test.h"

namespace {

std::string Line(const std::string& text) {
  return "ALARM : resample : " + text + "\n";
}

std::string ScreenLine(const std::string& text) {
  return "\033[7mALARM : resample : " + text + "\033[0m\n";
}

class FATAL_SIGNAL : public PROCESS_TEST {
 protected:
  // Without a configuration file the screen would begin with a warning.
  FATAL_SIGNAL() { WriteFile(Path("pcf.run"), ""); }

  /// A body with a controller of the binary "tool" and the run "run".
  static BODY WithTool(const CONTROLLER_BODY& body, int supervisor_flag = 1) {
    return WithController({"/usr/bin/tool", "-pid", "run"}, body, supervisor_flag);
  }

  /// What a run that a signal ended must leave behind.
  void ExpectReported(const BODY& body, const std::string& message) const {
    EXPECT_EQ(Run(body).exit_status, 1) << message;
    EXPECT_EQ(Content("ERROR.run"), "1");
    EXPECT_FALSE(Exists("OK.run"));
    const std::string log = Content("log.run");
    const std::string lines = Line(message) + Line("KVT_MSG|ERROR|tool " + message);
    EXPECT_TRUE(log.ends_with(lines)) << log;
    EXPECT_EQ(log.find(Line(message)), log.size() - lines.size()) << "reported again";
  }
};

const std::string interrupt = "got fatal signal 2: interrupt (rubout)";

TEST_F(FATAL_SIGNAL, SupervisorLineAndScreenAreWrittenAsAskedFor) {
  const CONTROLLER_BODY quiet = [](CONTROLLER_IFC&) { ::raise(SIGINT); };
  EXPECT_EQ(Run(WithTool(quiet, 0)).screen, ScreenLine(interrupt));
  const CONTROLLER_BODY asked_later = [](CONTROLLER_IFC& controller) {
    controller.SetSupervisorFlag();
    ::raise(SIGINT);
  };
  EXPECT_EQ(Run(WithTool(asked_later, 0)).screen,
            ScreenLine(interrupt) + ScreenLine("KVT_MSG|ERROR|tool " + interrupt));
  const CONTROLLER_BODY silent = [](CONTROLLER_IFC&) {
    Log().SetScreenLevel(LOGGING_LEVEL_T::NO_MESSAGE);
    ::raise(SIGINT);
  };
  EXPECT_EQ(Run(WithTool(silent)).screen, "");
}

TEST_F(FATAL_SIGNAL, LeavesNoTemporaryLog) {
  Run([] {
    InstallFatalSignalHandler();
    Log() << LOGGING_LEVEL_T::INFO << "the real log is not open yet";
    WriteFile("name", std::filesystem::read_symlink("/proc/self/fd/" +
                                                    std::to_string(Log().FileDescriptor()))
                          .string());
    ::raise(SIGTERM);
  });
  EXPECT_TRUE(Content("name").starts_with("/tmp/log."));
  EXPECT_FALSE(std::filesystem::exists(Content("name")));
}

TEST_F(FATAL_SIGNAL, EndlessProgramNameIsCut) {
  const PROCESS_END end = RunController({std::string(10000, 'n'), "-pid", "run"},
                                        [](CONTROLLER_IFC&) { ::raise(SIGINT); });
  EXPECT_EQ(end.exit_status, 1);
  EXPECT_TRUE(end.screen.ends_with("nnn\033[0m\n"));
  EXPECT_TRUE(Content("log.run").ends_with("nnn\n"));
}

TEST_F(FATAL_SIGNAL, ProgramNameSteersNoTerminal) {
  RunController({"t\033[2J\nool", "-pid", "run"}, [](CONTROLLER_IFC&) { ::raise(SIGINT); });
  EXPECT_TRUE(Content("log.run").ends_with(Line("KVT_MSG|ERROR|t?[2J?ool " + interrupt)));
}

/// Uses 4 KiB of stack a level, in a way that no optimisation turns into a loop.
int UseStack(int levels) {  // NOLINT(misc-no-recursion): that is the point
  std::array<char, 4096> block{};
  volatile char* const kept = block.data();
  kept[0] = static_cast<char>(levels);
  return levels == 0 ? 0 : UseStack(levels - 1) + kept[0];
}

TEST_F(FATAL_SIGNAL, FaultsOfTheProgramAreReported) {
  ExpectReported(WithTool([](CONTROLLER_IFC&) { std::terminate(); }),
                 "got fatal signal 6: IOT instruction");
  ExpectReported(WithTool([](CONTROLLER_IFC&) {
                   volatile double zero = 0;
                   CONTROLLER_IFC::EnableFloatingPointTraps();
                   WriteFile("trapped", std::to_string(1 / zero));
                 }),
                 "got fatal signal 8: floating point exception");
  EXPECT_FALSE(Exists("trapped"));
  ExpectReported(WithTool([](CONTROLLER_IFC&) {
                   const rlimit one_mebibyte = {1 << 20, 1 << 20};
                   ASSERT_EQ(::setrlimit(RLIMIT_STACK, &one_mebibyte), 0);
                   WriteFile("unreachable", std::to_string(UseStack(1 << 20)));
                 }),
                 "got fatal signal 11: segmentation violation");
}

TEST_F(FATAL_SIGNAL, SignalsInManyThreadsAreReportedOnceThoughNobodyReadsTheScreen) {
  const BODY raise_in_threads = WithTool([](CONTROLLER_IFC&) {
    std::array<int, 2> full_pipe{};
    ASSERT_EQ(::pipe2(full_pipe.data(), O_NONBLOCK), 0);
    while (::write(full_pipe[1], "x", 1) == 1) {
    }
    ::dup2(full_pipe[1], STDOUT_FILENO);
    std::vector<std::jthread> threads;
    for (int i = 0; i < 8; ++i) {
      threads.emplace_back([] { ::raise(SIGTERM); });
    }
  });
  const BODY although_ignored = [&] {
    ::signal(SIGTERM, SIG_IGN);
    raise_in_threads();
  };
  ExpectReported(although_ignored, "got fatal signal 15: software termination signal from kill");
}

TEST_F(FATAL_SIGNAL, SignalAroundTheEndOfTheRunLeavesOneOutcome) {
#ifdef __SANITIZE_THREAD__  // whose _exit() waits for a lock that a fault leaves taken
  constexpr std::array signals = {SIGTERM};
#else
  constexpr std::array signals = {SIGTERM, SIGSEGV};
#endif
  std::mt19937 random(20200206);
  const auto sleep = [](unsigned microseconds) {
    std::this_thread::sleep_for(std::chrono::microseconds(microseconds));
  };
  for (unsigned round = 0; round < 200; ++round) {
    for (const char* file : {"started", "OK.run", "ERROR.run"}) {
      std::filesystem::remove(Path(file));
    }
    PROCESS process = Start(WithTool([&](CONTROLLER_IFC& controller) {
      WriteFile("started", "");
      sleep(100);
      controller.FinishSuccessExit();
    }));
    while (!Exists("started")) {
      sleep(10);
    }
    sleep(static_cast<unsigned>(random() % 200));
    process.Signal(signals[round % signals.size()]);
    const int exit_status = process.Wait().exit_status;
    EXPECT_TRUE(exit_status == 0 || exit_status == 1) << exit_status;
    EXPECT_EQ(Exists("OK.run"), exit_status == 0);
    EXPECT_EQ(Exists("ERROR.run"), exit_status == 1);
  }
}

}  // namespace
