#include "stack/slurm_cluster.h"

#include <gtest/gtest.h>

#include <set>

namespace {

/// Jobs are shell scripts here: each task leaves "began.TASK.NODE", waits for the file "go" and
/// leaves "done.TASK.RESTARTS".
class SlurmCluster : public testing::Test {
 protected:
  void SetUp() override {
    if (const auto missing = SLURM_CLUSTER::MissingProgram()) {
      GTEST_SKIP() << "no " << *missing << " here: install munge, slurmctld, slurmd, slurm-client";
    }
    cluster = std::make_unique<SLURM_CLUSTER>(2);
    WriteFile(folder.Path() / "job",
              "#!/bin/sh\n"
              "touch began.$SLURM_ARRAY_TASK_ID.$SLURMD_NODENAME\n"
              "until [ -e go ]; do sleep 0.1; done\n"
              "touch done.$SLURM_ARRAY_TASK_ID.${SLURM_RESTART_COUNT:-0}\n");
  }

  void Submit(const std::string& tasks) const {
    cluster->Command("sbatch", {"--array=" + tasks, "--output=/dev/null",
                                "--chdir=" + folder.Path().string(), folder.File("job")});
  }

  /// What follows this begin in the names of files.
  std::set<std::string> Files(const std::string& begin) const {
    std::set<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path())) {
      const std::string name = entry.path().filename();
      if (name.starts_with(begin)) {
        found.insert(name.substr(begin.size()));
      }
    }
    return found;
  }

  TEMPORARY_DIRECTORY folder;
  std::unique_ptr<SLURM_CLUSTER> cluster;
};

TEST_F(SlurmCluster, RunsArraysThroughLossOfControllerAndNode) {
  Submit("1-6");
  ASSERT_TRUE(WaitUntil([this] { return Files("began.").size() == 4; }));
  EXPECT_EQ(cluster->Queue("%t").size(), 6U);
  const std::set<std::string> began = Files("began.");
  cluster->StopController();
  cluster->KillNode("n2");
  cluster->StartController();
  ASSERT_TRUE(WaitUntil([this] { return cluster->NodeState("n2") == "down*"; }));
  cluster->StartNode("n2");
  WriteFile(folder.Path() / "go", "");
  cluster->AwaitIdle();

  std::set<std::string> expected = {"5.0", "6.0"};
  for (const std::string& task : began) {
    expected.insert(task.substr(0, 2) + (task.ends_with("n2") ? "1" : "0"));
  }
  EXPECT_EQ(Files("done."), expected);
}

}  // namespace
