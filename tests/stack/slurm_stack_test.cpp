#include <grp.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <optional>

#include "stack/slurm_cluster.h"
#include "stack/stack_test.h"
#include "support/wait_until.h"

namespace {

namespace fs = std::filesystem;

/// A stack on a cluster of two nodes, with two runs at a time on each.
class SlurmStack : public STACK_TEST {
 protected:
  virtual SLURM_CLUSTER::SETTINGS Settings() const { return {}; }

  void SetUp() override {
    if (const auto missing = SLURM_CLUSTER::MissingProgram()) {
      GTEST_SKIP() << "no " << *missing << " here: install munge, slurmctld, slurmd, slurm-client";
    }
    cluster.emplace(Settings());
  }

  std::map<std::string, std::string> Environment() const override { return cluster->Environment(); }

  std::unique_ptr<COMMAND> StartOnCluster(std::vector<std::string> options = {}) const {
    options.insert(options.end(), {"--slurm", "--partition=debug", "--time=10", "--mem=200"});
    return Start(options);
  }

  std::optional<SLURM_CLUSTER> cluster;
};

TEST_F(SlurmStack, ComesToItsEndThroughFaultsAndResumptions) {
  MakeStack(24, {"s05", "s12"});
  const NAMES bad = {"s03", "s07"};
  fs::rename(Path("s07.ras"), Path("later"));
  const std::string whole = ReadFile(Path("s03.ras"));

  std::unique_ptr<COMMAND> start = StartOnCluster();
  ASSERT_TRUE(AwaitBegun(Slaves(1, 4)));
  EXPECT_EQ(InState("failed"), NAMES{"s07"});
  EXPECT_EQ(InState("running"), Slaves(1, 4));
  EXPECT_EQ(InState("waiting"), Without(Slaves(5, 24), bad));
  fs::resize_file(Path("s03.ras"), whole.size() - 1);
  Open(Slaves(1, 5));

  // A run is killed, and repeated.
  ::kill(Hold("s05").process, SIGKILL);
  ASSERT_TRUE(AwaitBegun({"s05"}, 2));

  // Runs end while the controller is away.
  ASSERT_TRUE(AwaitBegun({"s06", "s08", "s09"}));
  cluster->StopController();
  Open(NAMES{"s06", "s08", "s09"});
  ASSERT_TRUE(AwaitOk({"s06", "s08", "s09"}));
  cluster->StartController();

  // What computes when the stop comes goes on; nothing else begins.
  ASSERT_TRUE(AwaitBegun(Slaves(10, 13)));
  Open(NAMES{"s10", "s11", "s13"});
  ASSERT_TRUE(AwaitBegun(Slaves(14, 16)));
  Open("s12");
  const STOPPED_RUN held = Hold("s12");
  COMMAND stop(*this, {"stop", Path("stack.json")});
  EXPECT_EQ(stop.Wait(), 0) << stop.end.screen << stop.end.errors;
  ::kill(held.process, SIGCONT);
  Open("all");
  EXPECT_EQ(start->Wait(), 1) << start->end.screen << start->end.errors;
  cluster->AwaitIdle();
  EXPECT_EQ(InState("failed"), bad);
  EXPECT_EQ(InState("succeeded"), Without(Slaves(1, 13), bad));
  EXPECT_EQ(InState("stopped"), Slaves(14, 24));
  const nlohmann::json status = Status();
  EXPECT_EQ(status.at("done"), 11);
  EXPECT_EQ(status.at("failed"), 2);
  EXPECT_EQ(status.at("waiting"), 11);
  EXPECT_EQ(status.at("queued"), 0);
  EXPECT_EQ(Slave("s05").at("attempts").size(), 2U);
  EXPECT_EQ(Slave("s03").at("reason"),
            "MEM_MGR: file is shorter than its header declares: " + Path("s03.ras").string());
  ExpectOutputs(Without(Slaves(1, 13), bad));
  auto begun = AllBegun();

  // The second start goes on, and a node is lost with all that runs there.
  CloseAll();
  start = StartOnCluster();
  for (const std::string& name : Slaves(14, 17)) {
    ASSERT_TRUE(AwaitBegun({name}, begun[name] + 1));
  }
  for (const std::string& name : Without(Slaves(14, 24), bad)) {
    const bool is_lost = name < "s18" && Begun(name).back().starts_with("n2 ");
    begun[name] += is_lost ? 2 : 1;
  }
  cluster->KillNode("n2");
  ASSERT_TRUE(WaitUntil([this] { return cluster->NodeState("n2") == "down*"; }));
  cluster->StartNode("n2");
  Open("all");
  EXPECT_EQ(start->Wait(), 1) << start->end.screen << start->end.errors;
  EXPECT_EQ(InState("failed"), bad);
  EXPECT_EQ(InState("succeeded"), Without(names, bad));
  EXPECT_EQ(AllBegun(), begun);

  // With good inputs the rest is run, and then nothing any more.
  WriteFile(Path("s03.ras"), whole);
  fs::rename(Path("later"), Path("s07.ras"));
  EXPECT_EQ(StartOnCluster()->Wait(), 0);
  ++begun["s03"];
  ++begun["s07"];
  EXPECT_EQ(AllBegun(), begun);
  EXPECT_EQ(StartOnCluster()->Wait(), 0);
  EXPECT_EQ(AllBegun(), begun);

  // A changed input is run again.
  std::string image = ReadFile(Path("s10.ras"));
  image[image.size() / 2] = static_cast<char>(image[image.size() / 2] ^ 1);
  WriteFile(Path("s10.ras"), image);
  EXPECT_EQ(StartOnCluster()->Wait(), 0);
  ++begun["s10"];
  EXPECT_EQ(AllBegun(), begun);
  EXPECT_EQ(InState("succeeded"), names);
  ExpectOutputs(names);
}

TEST_F(SlurmStack, IsTakenOverFromAStarterThatWasKilled) {
  MakeStack(6, {"s02"});
  const std::unique_ptr<COMMAND> first = StartOnCluster();
  ASSERT_TRUE(AwaitBegun(Slaves(1, 4)));
  EXPECT_EQ(StartOnCluster()->Wait(), 2) << "two starters";
  first->Signal(SIGKILL);
  first->Wait();
  const std::unique_ptr<COMMAND> second = StartOnCluster();

  // What Slurm has started dies, and tells nobody.
  Open("s02");
  const STOPPED_RUN held = Hold("s02");
  ::kill(held.starter, SIGKILL);
  ::kill(held.process, SIGCONT);
  Open("all");
  EXPECT_EQ(second->Wait(), 0) << second->end.screen << second->end.errors;
  for (const auto& [name, times] : AllBegun()) {
    EXPECT_EQ(times, name == "s02" ? 2U : 1U) << name;
  }
  ExpectOutputs(names);
}

TEST_F(SlurmStack, RepeatsNoMoreThanItMay) {
  MakeStack(3, {"s01", "s02"});
  const auto start = StartOnCluster({"--retries", "1", "--concurrent", "1"});
  Open("all");
  for (std::size_t attempt = 1; attempt <= 2; ++attempt) {
    ASSERT_TRUE(AwaitBegun({"s01"}, attempt));
    const STOPPED_RUN held = Hold("s01");
    const std::vector<std::string> reasons = cluster->Queue("%r");
    EXPECT_EQ(std::count(reasons.begin(), reasons.end(), "JobArrayTaskLimit"), 2);
    ::kill(held.process, SIGKILL);
  }
  // What an operator cancels is not repeated either, whether it runs or waits.
  const STOPPED_RUN held = Hold("s02");
  cluster->Command("scancel", {"--user=" + std::to_string(::geteuid())});
  ::kill(held.process, SIGCONT);
  EXPECT_EQ(start->Wait(), 1) << start->end.screen << start->end.errors;
  EXPECT_EQ(InState("died"), NAMES{"s01"});
  EXPECT_EQ(InState("cancelled"), (NAMES{"s02", "s03"}));
  EXPECT_EQ(Slave("s01").at("attempts").size(), 2U);
  ExpectOutputs({});
  EXPECT_EQ(StartOnCluster()->Wait(), 0);
  ExpectOutputs(names);
}

/// The stack of a user who does not see the partition of the tasks, with arrays of three at most
/// and a node that lacks the stack's folder.
class SlurmStackOfOthers : public SlurmStack {
 protected:
  static constexpr unsigned user = 65534;

  SLURM_CLUSTER::SETTINGS Settings() const override {
    return {.configuration = "MaxArraySize=4\n", .hidden_folder = Path("")};
  }

  void SetUp() override {
    if (::geteuid() != 0) {
      GTEST_SKIP() << "only root can become another user";
    }
    SlurmStack::SetUp();
  }

  std::map<std::string, std::string> Environment() const override {
    auto environment = SlurmStack::Environment();
    environment.insert({{"SQUEUE_STATES", "SUSPENDED"}, {"SLURM_JOB_ID", "1"}});
    return environment;
  }

  bool PrepareProcess() const override {
    return ::setgroups(0, nullptr) == 0 && ::setgid(user) == 0 && ::setuid(user) == 0;
  }

  std::unique_ptr<COMMAND> StartHidden(std::vector<std::string> options = {}) const {
    options.insert(options.end(), {"--slurm", "--partition=hidden", "--mem=200"});
    return Start(options);
  }
};

TEST_F(SlurmStackOfOthers, IsFoundAgainAndLeavesABadNode) {
  MakeStack(7, {});
  GiveTo(user);
  const auto first = StartHidden({"--no-wait"});
  EXPECT_EQ(first->Wait(), 0) << first->end.errors;
  ASSERT_TRUE(WaitUntil([this] { return cluster->Queue("%T").size() <= 5; }));

  // Another path to the same stack, and a slave whose task would make something else.
  ChangeParameter("s07", "KERNEL_LENGTH", 6);
  fs::create_directory_symlink(Path(""), Path("link"));
  COMMAND second(*this, {Path("link/stack.json"), "--program", Path("program"), "--slurm",
                         "--partition=hidden", "--mem=200"});
  Open("all");
  EXPECT_EQ(second.Wait(), 0) << second.end.screen << second.end.errors;
  for (const std::string& name : names) {
    const std::vector<std::string> begun = Begun(name);
    ASSERT_EQ(begun.size(), 1U) << name;
    EXPECT_TRUE(begun[0].starts_with("n1 ")) << begun[0];
  }
  ExpectOutputs(names);

  EXPECT_EQ(StartHidden({"--array=1-2"})->Wait(), 2) << "refused option";
}

TEST_F(SlurmStack, TellsWhatTheQueueDoesWithIt) {
  MakeStack(3, {});
  const auto first = StartOnCluster({"--no-wait", "--concurrent", "1"});
  ASSERT_EQ(first->Wait(), 0) << first->end.errors;
  ASSERT_TRUE(AwaitBegun({"s01"}));
  const std::string job = cluster->Queue("%F").at(0);
  cluster->Command("scontrol", {"hold", job + "_3"});
  ASSERT_TRUE(WaitUntil([this] { return InState("held") == NAMES{"s03"}; }));
  EXPECT_EQ(Slave("s02").value("reason", ""), "JobArrayTaskLimit");
  EXPECT_EQ(Status().at("queued"), 2);
  COMMAND watch(*this, {"status", Path("stack.json"), "--watch"});

  cluster->StopController();
  EXPECT_EQ(InState("running"), NAMES{"s01"});
  EXPECT_EQ(Status().at("queue_answers"), false);
  cluster->StartController();

  // What an operator puts back costs no retry, and what he cancels has not died.
  cluster->Command("scontrol", {"requeue", job + "_1"});
  Open("s02");
  ASSERT_TRUE(AwaitBegun({"s01"}, 2));
  EXPECT_EQ(Slave("s01").at("attempts").at(0).at("died"), false);
  cluster->Command("scancel", {job + "_1"});
  ASSERT_TRUE(WaitUntil([this] { return InState("cancelled") == NAMES{"s01"}; }));
  cluster->Command("scontrol", {"release", job + "_3"});
  Open("all");
  EXPECT_EQ(watch.Wait(), 1);
  EXPECT_EQ(InState("succeeded"), (NAMES{"s02", "s03"}));
  EXPECT_EQ(InState("cancelled"), NAMES{"s01"});
  ExpectOutputs({"s02", "s03"});
}

}  // namespace
