#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>

#include "stack/stack_test.h"
#include "support/wait_until.h"

namespace {

namespace fs = std::filesystem;

/// A stack on this machine, two runs at a time.
class LocalStack : public STACK_TEST {
 protected:
  std::unique_ptr<COMMAND> StartHere(std::vector<std::string> options = {}) const {
    options.insert(options.end(), {"--local", "2"});
    return Start(options);
  }

  std::string ReasonOf(const std::string& name) const { return Slave(name).value("reason", ""); }
};

TEST_F(LocalStack, ComesToItsEndThroughFaultsAndResumptions) {
  MakeStack(8, {"s01", "s05"});
  const std::string image = ReadFile(Path("s03.ras"));
  fs::remove(Path("s04_mask.ras"));

  const auto start = StartHere();
  ASSERT_TRUE(AwaitBegun({"s01", "s02"}));
  EXPECT_EQ(InState("failed"), NAMES{"s04"});
  EXPECT_EQ(StartHere()->Wait(), 2) << "two starters";
  fs::resize_file(Path("s03.ras"), image.size() - 1);
  Open(Slaves(1, 2));

  // A run dies and is repeated.
  ::kill(Hold("s01").process, SIGKILL);
  ASSERT_TRUE(AwaitBegun({"s01"}, 2));
  Open(Slaves(3, 4));
  ASSERT_TRUE(AwaitBegun({"s05", "s06"}));

  // What computes when the stop comes goes on.
  Open("s05");
  const HELD_RUN held = Hold("s05");
  COMMAND stop(*this, {"stop", Path("stack.json")});
  EXPECT_EQ(stop.Wait(), 0) << stop.end.errors;
  ::kill(held.process, SIGCONT);
  Open("all");
  EXPECT_EQ(start->Wait(), 1) << start->end.screen << start->end.errors;
  EXPECT_EQ(InState("succeeded"), (NAMES{"s01", "s02", "s05"}));
  EXPECT_EQ(InState("stopped"), Slaves(6, 8));
  EXPECT_EQ(InState("failed"), (NAMES{"s03", "s04"}));
  EXPECT_EQ(ReasonOf("s03"),
            "MEM_MGR: file is shorter than its header declares: " + Path("s03.ras").string());
  EXPECT_EQ(ReasonOf("s04"), "MEM_MGR: can not open: " + Path("s04_mask.ras").string());
  EXPECT_EQ(Slave("s01").at("attempts").size(), 2U);
  ExpectOutputs({"s01", "s02", "s05"});

  // The next start mends what it can.
  auto begun = AllBegun();
  WriteFile(Path("s03.ras"), image);
  EXPECT_EQ(StartHere()->Wait(), 1);
  for (const char* name : {"s03", "s06", "s07", "s08"}) {
    ++begun[name];
  }
  EXPECT_EQ(AllBegun(), begun);
  ExpectOutputs(Without(names, {"s04"}));
}

TEST_F(LocalStack, RunsAgainWhatHasChangedAndNothingElse) {
  MakeStack(5, {});
  Open("all");
  ASSERT_EQ(StartHere()->Wait(), 0);
  auto begun = AllBegun();
  const auto expect_again = [&](const NAMES& again, const char* what) {
    EXPECT_EQ(StartHere()->Wait(), 0) << what;
    for (const std::string& name : again) {
      ++begun[name];
    }
    EXPECT_EQ(AllBegun(), begun) << what;
  };
  expect_again({}, "nothing");

  fs::last_write_time(Path("s01.ras"), fs::file_time_type::clock::now());
  fs::remove(Path("out/s02.ras"));
  fs::remove(Path("stack.stack/status/OK.s03"));
  WriteFile(Path("s04.pool"), ReadFile(Path("s04.pool")) + "\n# a comment\n");
  ChangeParameter("s05", "KERNEL_LENGTH", 6);
  expect_again({"s01", "s02", "s03", "s05"}, "image, output, OK file, parameter; not a comment");

  WriteFile(Path("s04.pool"), ReadFile(Path("s04.pool")) + "further INT_32 1\n");
  // A run that succeeded and was killed before its outputs had their names is not repeated.
  fs::rename(Path("out/s01.ras"), Path("out/s01.ras.partial"));
  expect_again({"s04"}, "pool entry; not outputs without their names");
  WriteFile(Path("insar.pool"), ReadFile(Path("insar.pool")) + "further INT_32 1\n");
  expect_again(names, "common pool");
  ExpectOutputs(names);
}

TEST_F(LocalStack, EndsItsRunsWithItself) {
  MakeStack(3, {"s01", "s02"});
  for (const int signal : {SIGTERM, SIGKILL}) {
    const auto start = StartHere();
    Open("s01");
    ASSERT_TRUE(AwaitBegun({"s01", "s02"}, signal == SIGTERM ? 1 : 2));
    Hold("s01");
    start->Signal(signal);
    EXPECT_EQ(start->Wait(), signal == SIGTERM ? 1 : -1);
    ASSERT_TRUE(WaitUntil([this] { return InState("cancelled") == NAMES{"s01", "s02"}; }));
    EXPECT_EQ(InState("waiting"), NAMES{"s03"});
    ExpectOutputs({});
  }
  Open("all");
  EXPECT_EQ(StartHere()->Wait(), 0);
  ExpectOutputs(names);
}

TEST_F(LocalStack, RepeatsNoMoreThanItMay) {
  MakeStack(2, {"s01"});
  Open("all");
  const auto start = StartHere({"--retries", "2"});
  for (std::size_t attempt = 1; attempt <= 3; ++attempt) {
    ASSERT_TRUE(AwaitBegun({"s01"}, attempt));
    const HELD_RUN held = Hold("s01");
    // Once it dies alone, then with its runner.
    ::kill(attempt == 1 ? held.process : held.starter, SIGKILL);
    ::kill(held.process, SIGCONT);
  }
  EXPECT_EQ(start->Wait(), 1);
  EXPECT_EQ(InState("died"), NAMES{"s01"});
  EXPECT_EQ(ReasonOf("s01"), "its machine, its job or its runner was lost");
  EXPECT_EQ(Slave("s01").at("attempts").at(0).at("how"), "died of signal 9: Killed");
  EXPECT_EQ(Slave("s01").at("attempts").size(), 3U);
  ExpectOutputs({"s02"});
}

TEST_F(LocalStack, TellsWhyARunLeftNothing) {
  MakeStack(4, {});
  Open("all");
  fs::create_directory(Path("out/s01.ras"));
  const std::string script = ReadFile(Path("program"));
  WriteFile(Path("program"),
            "#!/bin/sh\n"
            "case $2 in\n"
            "s02) exit 0 ;;\n"
            "s03) echo 'a library is missing' >&2; exit 127 ;;\n"
            "s04) exit 3 ;;\n"
            "esac\n" +
                script);
  EXPECT_EQ(StartHere()->Wait(), 1);
  EXPECT_EQ(InState("failed"), names);
  EXPECT_NE(ReasonOf("s01").find("Is a directory"), std::string::npos) << ReasonOf("s01");
  EXPECT_EQ(ReasonOf("s02"),
            "succeeded, but left no " + Path("stack.stack/status/OK.s02").string());
  EXPECT_EQ(ReasonOf("s03"), "a library is missing");
  EXPECT_EQ(ReasonOf("s04"), "exit status 3");

  // What the first one made gets its name once the way is free.
  fs::remove(Path("out/s01.ras"));
  WriteFile(Path("program"), script);
  WriteFile(Path("stack.stack/runs/s04/run.json"), "{\"state\": 5}");
  const auto begun = Begun("s01").size();
  const auto start = StartHere();
  EXPECT_EQ(start->Wait(), 0) << start->end.screen << start->end.errors;
  EXPECT_EQ(Begun("s01").size(), begun);
  ExpectOutputs(names);
}

TEST_F(LocalStack, IsWatchedByItsDirectory) {
  MakeStack(2, {});
  const auto start = StartHere();
  ASSERT_TRUE(AwaitBegun(names));
  COMMAND watch(*this, {"status", Path("stack.stack"), "--watch"});
  Open("all");
  EXPECT_EQ(start->Wait(), 0);
  EXPECT_EQ(watch.Wait(), 0);
  EXPECT_NE(watch.end.screen.find("stack: 2 slaves, 2 done, 0 running, 0 failed, 0 waiting"),
            std::string::npos)
      << watch.end.screen;
}

TEST_F(LocalStack, RefusesWhatItCanNotDo) {
  MakeStack(1, {});
  const auto refused = [this](std::vector<std::string> arguments, const char* reason) {
    COMMAND command(*this, arguments);
    EXPECT_EQ(command.Wait(), 2) << reason;
    EXPECT_NE((command.end.screen + command.end.errors).find(reason), std::string::npos)
        << reason << " not in:\n"
        << command.end.screen << command.end.errors;
  };
  const std::string stack = Path("stack.json");
  refused({"status", stack}, "the stack was never started");
  refused({"stop", stack}, "the stack was never started");
  refused({stack}, "either --local or --slurm");
  refused({stack, "--local", "--slurm"}, "either --local or --slurm");
  refused({stack, "--local", "0"}, "not in range");
  refused({stack, "--local", "--partition=debug"}, "--partition=debug");
  refused({stack, "--local", "--no-wait"}, "--local excludes --no-wait");
  refused({"--local"}, "STACK.json is required");
  refused({stack, "--local", "--program", Path("nothing")}, "can not start");
  refused({stack, "--slurm"}, "squeue does not answer");
  WriteFile(Path("stack.stack/start.json"), "[]");
  refused({"status", stack}, "resample-stack: ");
  EXPECT_EQ(AllBegun(), (std::map<std::string, std::size_t>{{"s01", 0}}));
}

}  // namespace
