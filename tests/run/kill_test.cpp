#include <gtest/gtest.h>
#include <signal.h>

#include <algorithm>
#include <random>

#include "signalled_run.h"

namespace {

/// Waits until the log has grown to a size or the process has ended.
void AwaitLog(const RUN_FOLDER& folder, const PROCESS& process, std::uintmax_t size) {
  std::error_code missing;
  for (;;) {
    const std::uintmax_t length = std::filesystem::file_size(folder.Path("log.run"), missing);
    if ((!missing && length >= size) || process.HasEnded()) {
      return;
    }
    Pause(20);
  }
}

/// A pool that is updated in place must be there as it was or as it is to be, or else as the
/// complete temporary file beside it.
void ExpectNothingLost(const RUN_FOLDER& folder, const std::string& before) {
  const std::string last_entry = before.substr(before.rfind("\n\n", before.size() - 3));
  bool found = false;
  for (const auto& entry : std::filesystem::directory_iterator(folder.Directory())) {
    const std::string name = entry.path().filename();
    found = found || ((name == "insar.pool" || name.starts_with("pool_")) &&
                      ReadFile(entry.path()).find(last_entry) != std::string::npos);
  }
  EXPECT_TRUE(found) << folder.Content("insar.pool");
}

constexpr int kills = 52 * repetitions;

TEST(Kill, AtAnyMomentIsReported) {
  if (repetitions == 1) {
    GTEST_SKIP() << "signals meet the locks of the sanitizers' own runtimes, which then hang";
  }
  SCENE scene = OrdinaryScene();
  scene.kernel_length = 40;  // takes the workers some time
  // Polynomials stand at the end of the pool, behind the entry that the run replaces.
  scene.mapping = POLYNOMIAL_MAPPING_DATA{{1.5, 0, 0, 0, 0, 0}, {0.5, 0, 0, 0, 0, 0}};
  RUN_FOLDER folder(scene);
  const std::string pool = folder.Content("insar.pool");
  folder.parameters["lfl"] = "TRACE";
  folder.parameters["lsl"] = "TRACE";
  folder.parameters["MAPPING_FORMAT"] = "polynomial";
  folder.environment["PARALLEL"] = "4";
  ExpectSuccess(folder, folder.Run());
  const std::string log = folder.Content("log.run");
  const std::size_t start_of_workers = log.find("  - Run\n");

  std::mt19937 random(20200206);
  int reported = 0;
  for (unsigned round = 0; reported < kills && !testing::Test::HasFailure(); ++round) {
    SCOPED_TRACE("round " + std::to_string(round));
    const int signal = std::next(caught_signals.begin(), round % caught_signals.size())->first;
    folder.Write("insar.pool", pool);
    folder.Write("OK.run", "0");
    std::filesystem::remove(folder.Path("ERROR.run"));
    std::filesystem::remove(folder.Path("log.run"));
    PROCESS process(folder.Settings());
    // Any line of the log may be the last one, every other time one from the workers on, and
    // any time may have passed since.
    const std::size_t first = round % 2 == 0 ? 1 : start_of_workers;
    AwaitLog(folder, process, first + random() % (log.size() - first));
    Pause(static_cast<unsigned>(random() % 500));
    process.SignalThread(static_cast<unsigned>(random()), signal);
    const PROCESS_END end = process.Wait();
    ExpectNothingLost(folder, pool);
    if (end.exit_status == 0) {  // the run was faster
      ExpectSuccess(folder, end);
    } else {
      ExpectReported(folder, end, signal);
      ++reported;
    }
  }
}

TEST(Kill, OfARunWhoseScreenNobodyReadsIsReported) {
  RUN_FOLDER folder(OrdinaryScene());
  HELD_RUN run(folder);
  run.process->Signal(SIGTERM);  // while the run holds the log
  ExpectReported(folder, run.process->Wait(), SIGTERM);
}

}  // namespace
