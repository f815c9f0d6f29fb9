#include "status/stack_status.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>

#include "basics/file_lock.h"
#include "run/slave_record.h"
#include "support/temporary_directory.h"

namespace {

TEST(StackStatus, TellsOfARunThatOutlivesItsPlaceInTheQueue) {
  const TEMPORARY_DIRECTORY directory;
  const STACK_FOLDER stack(directory.Path());
  const SLAVE_FOLDER run = stack.Run("s01");
  std::filesystem::create_directories(run.Path());
  SLAVE_RECORD record;
  record.state = SLAVE_STATE::RUNNING;
  WriteSlaveRecord(run, record);
  STACK_WATCH watch(stack,
                    {.name = "stack", .description = "", .arguments = {}, .slaves = {"s01"}});
  ACTIVE_SLAVES active(std::in_place);
  (*active)["s01"] = {.state = QUEUE_STATE::WAITING, .reason = "BeginTime"};
  const auto reason = [&] { return watch.Look(active, true).slaves.at(0).reason; };
  std::optional<FILE_LOCK> runner;
  runner.emplace(run.LockFile(), FILE_LOCK::WAY::TRY);
  EXPECT_EQ(reason(), "BeginTime; its last run is still at work");
  runner.reset();
  EXPECT_EQ(reason(), "BeginTime");
}

}  // namespace
