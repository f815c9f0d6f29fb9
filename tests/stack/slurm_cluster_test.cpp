#include "stack/slurm_cluster.h"

#include <gtest/gtest.h>

#include <set>

#include "support/wait_until.h"

namespace {

/// Jobs are shell scripts here: each task leaves "began.TASK", waits for the file "go" and leaves
/// "done.TASK".
class SlurmCluster : public testing::Test {
 protected:
  void SetUp() override {
    if (const auto missing = SLURM_CLUSTER::MissingProgram()) {
      GTEST_SKIP() << "no " << *missing << " here: install munge, slurmctld, slurmd, slurm-client";
    }
    cluster = std::make_unique<SLURM_CLUSTER>(2);
    WriteFile(folder.Path() / "job",
              "#!/bin/sh\n"
              "touch began.$SLURM_ARRAY_TASK_ID\n"
              "until [ -e go ]; do sleep 0.1; done\n"
              "touch done.$SLURM_ARRAY_TASK_ID\n");
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

TEST_F(SlurmCluster, RunsArraysWhileItsControllerIsAway) {
  Submit("1-6");
  ASSERT_TRUE(WaitUntil([this] { return Files("began.").size() == 4; }));
  EXPECT_EQ(cluster->Queue("%t").size(), 6U);
  cluster->StopController();
  WriteFile(folder.Path() / "go", "");
  ASSERT_TRUE(WaitUntil([this] { return Files("done.").size() == 4; }));
  cluster->StartController();
  cluster->AwaitIdle();
  EXPECT_EQ(Files("done."), (std::set<std::string>{"1", "2", "3", "4", "5", "6"}));
}

}  // namespace
