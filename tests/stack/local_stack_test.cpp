#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/mount.h>
#include <unistd.h>

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
  const STOPPED_RUN held = Hold("s05");
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
  EXPECT_EQ(ReasonOf("s04"), "MEM_MGR: can not open: " + Path("s04_mask.ras").string() +
                                 ": No such file or directory");
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

  fs::resize_file(Path("out/s04.ras"), 100);
  EXPECT_EQ(InState("waiting"), NAMES{"s04"});
  expect_again({"s04"}, "a truncated output");
  WriteFile(Path("s04.pool"), ReadFile(Path("s04.pool")) + "further INT_32 1\n");
  // A run that succeeded and was killed before its outputs had their names is not repeated.
  fs::rename(Path("out/s01.ras"), Path("out/s01.ras.partial"));
  expect_again({"s04"}, "pool entry; not outputs without their names");
  WriteFile(Path("insar.pool"), ReadFile(Path("insar.pool")) + "further INT_32 1\n");
  expect_again(names, "common pool");
  ExpectOutputs(names);

  // A program of another content, and the same stack elsewhere.
  WriteFile(Path("program"), ReadFile(Path("program")) + "# another build\n");
  expect_again(names, "program");
  fs::create_directory(Path("elsewhere"));
  for (const auto& entry : fs::directory_iterator(Path(""))) {
    if (entry.path().filename() != "elsewhere" && entry.path().filename() != "program") {
      fs::rename(entry.path(), Path("elsewhere") / entry.path().filename());
    }
  }
  COMMAND moved(*this, {Path("elsewhere/stack.json"), "--program", Path("program"), "--local"});
  EXPECT_EQ(moved.Wait(), 0) << moved.end.screen << moved.end.errors;
  EXPECT_NE(moved.end.screen.find("5 are done, 0 are in the queue, 0 are started"),
            std::string::npos)
      << moved.end.screen;
}

TEST_F(LocalStack, LetsNoOtherHandIntoItsOutputs) {
  MakeStack(2, {"s01"});
  const auto start = StartHere();
  ASSERT_TRUE(AwaitBegun(names));

  // Another stack makes other images under the same names.
  std::string other = ReadFile(Path("stack.json"));
  other.replace(other.find("{name}_mask.ras"), 0, "");
  WriteFile(Path("other.json"), other);
  COMMAND other_start(*this, {Path("other.json"), "--program", Path("program"), "--local"});
  EXPECT_EQ(other_start.Wait(), 1);
  EXPECT_NE(other_start.end.screen.find("another run is at work on " +
                                        Path("out/s01.ras.partial").string()),
            std::string::npos)
      << other_start.end.screen;

  // Nobody but a run's own record proves its outputs, and inputs stay what they were.
  Open(names);
  const STOPPED_RUN held = Hold("s01");
  WriteFile(Path("stack.stack/status/OK.s01"), "");
  ::kill(held.starter, SIGKILL);
  ::kill(held.process, SIGCONT);
  ASSERT_TRUE(AwaitBegun({"s01"}, 2));
  Hold("s01");
  fs::last_write_time(Path("s01.ras"), fs::file_time_type::clock::now());
  ::kill(std::stoi(Begun("s01").back().substr(Begun("s01").back().find(' '))), SIGCONT);
  EXPECT_EQ(start->Wait(), 1);
  EXPECT_EQ(ReasonOf("s01"), "changed while the run was at work: s01.ras");
  ExpectOutputs({"s02"});
  EXPECT_EQ(StartHere()->Wait(), 0);
  ExpectOutputs(names);
}

TEST_F(LocalStack, GoesOnWithoutASlaveInTrouble) {
  MakeStack(4, {});
  const auto start = StartHere();
  ASSERT_TRUE(AwaitBegun({"s01", "s02"}));
  fs::remove_all(Path("stack.stack/runs/s03"));
  Open("all");
  EXPECT_EQ(start->Wait(), 1);
  EXPECT_NE(start->end.errors.find("s03: no complete plan in"), std::string::npos)
      << start->end.errors;
  ExpectOutputs({"s01", "s02", "s04"});

  // One alone, then one that is done, once more; and what they have left.
  EXPECT_EQ(StartHere({"--only", "s03"})->Wait(), 0);
  EXPECT_EQ(Begun("s03").size(), 1U);
  COMMAND retry(*this, {"retry", Path("stack.json"), "s04"});
  EXPECT_EQ(retry.Wait(), 0) << retry.end.errors;
  EXPECT_EQ(Begun("s04").size(), 2U);
  ExpectOutputs(names);
  WriteFile(Path("out/s04.ras.partial"), "left over");
  COMMAND clean(*this, {"clean", Path("stack.json")});
  EXPECT_EQ(clean.Wait(), 0) << clean.end.errors;
  EXPECT_EQ(clean.end.screen, "3 files removed\n") << "an output, log and screen";
  COMMAND both(*this, {"status", Path("stack.json"), Path("stack.stack"), "--json"});
  EXPECT_EQ(both.Wait(), 0);
  EXPECT_EQ(nlohmann::json::parse(both.end.screen).size(), 2U);
}

TEST_F(LocalStack, ComputesOnScratchDisks) {
  MakeStack(2, {});
  Open("all");
  fs::create_directory(Path("scratch"));
  EXPECT_EQ(StartHere({"--scratch", Path("scratch").string()})->Wait(), 0);
  EXPECT_NE(ReadFile(Path("stack.stack/runs/s01/pcf.s01")).find(Path("scratch").string()),
            std::string::npos);
  EXPECT_TRUE(fs::is_empty(Path("scratch")));
  ExpectOutputs(names);
}

/// With a full disk below the outputs, and what a shell or nohup may have ignored.
class LocalStackInTrouble : public LocalStack {
 protected:
  bool PrepareProcess() const override {
    std::signal(SIGHUP, SIG_IGN);
    std::signal(SIGCHLD, SIG_IGN);
    return true;
  }
};

TEST_F(LocalStackInTrouble, OutlivesItsTerminalAndTellsOfAFullDisk) {
  MakeStack(2, {"s01"});
  const bool is_full = ::mount("none", Path("out").c_str(), "tmpfs", 0, "size=1m") == 0;
  const auto start = StartHere();
  ASSERT_TRUE(AwaitBegun(names));
  start->Signal(SIGHUP);
  if (is_full) {
    WriteFile(Path("out/filler"), std::string(700000, ' '));
  }
  Open("all");
  EXPECT_EQ(start->Wait(), is_full ? 1 : 0) << start->end.screen;
  EXPECT_EQ(Begun("s01").size(), 1U);
  if (is_full) {
    EXPECT_EQ(ReasonOf("s01"), Path("out/s01.ras.partial").string() + ": No space left on device");
    ::umount(Path("out").c_str());
  }
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
    const STOPPED_RUN held = Hold("s01");
    // Once it dies alone, then with its runner.
    ::kill(attempt == 1 ? held.process : held.starter, SIGKILL);
    ::kill(held.process, SIGCONT);
  }
  EXPECT_EQ(start->Wait(), 1);
  EXPECT_EQ(InState("died"), NAMES{"s01"});
  EXPECT_EQ(ReasonOf("s01"), "its machine or its runner was lost");
  EXPECT_EQ(Slave("s01").at("attempts").at(0).at("how"), "died of signal 9: Killed");
  EXPECT_EQ(Slave("s01").at("attempts").size(), 3U);
  ExpectOutputs({"s02"});
}

TEST_F(LocalStack, TellsWhyARunLeftNothing) {
  MakeStack(4, {});
  Open("all");
  fs::create_directory(Path("out/s01.ras"));
  WriteFile(Path("broken"), "");
  WriteFile(Path("program"),
            "#!/bin/sh\n"
            "[ -e '" +
                Path("broken").string() +
                "' ] && case $2 in\n"
                "s02) exit 0 ;;\n"
                "s03) echo 'a library is missing' >&2; exit 127 ;;\n"
                "s04) exit 3 ;;\n"
                "esac\n" +
                ReadFile(Path("program")));
  EXPECT_EQ(StartHere()->Wait(), 1);
  EXPECT_EQ(InState("failed"), names);
  EXPECT_NE(ReasonOf("s01").find("Is a directory"), std::string::npos) << ReasonOf("s01");
  EXPECT_EQ(ReasonOf("s02"),
            "succeeded, but left no " + Path("stack.stack/status/OK.s02").string());
  EXPECT_EQ(ReasonOf("s03"), "a library is missing");
  EXPECT_EQ(ReasonOf("s04"), "exit status 3");

  // What the first one made gets its name once the way is free.
  fs::remove(Path("out/s01.ras"));
  fs::remove(Path("broken"));
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

TEST_F(LocalStack, TakesStatusAndStopWhileItIsPrepared) {
  MakeStack(2, {});
  const int pool = ::open(Path("insar.pool").c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_EQ(::flock(pool, LOCK_EX), 0);
  const auto start = StartHere();
  ASSERT_TRUE(WaitUntil([this] { return fs::exists(Path("stack.stack/runs/s01/plan.json")); }));
  EXPECT_EQ(InState("waiting"), names);
  EXPECT_EQ(COMMAND(*this, {"stop", Path("stack.json")}).Wait(), 0);
  ::close(pool);
  EXPECT_EQ(start->Wait(), 1);
  EXPECT_EQ(InState("stopped"), names);
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
